#include "gr_lib_tg3kernel/src/tg3_db_lib/tg3_metadataTool.h"

#include <gtest/gtest.h>

#include <optional>
#include <vector>

#include "gr_lib_tg3kernel/src/tg3_plane_lib/tg3_filePlaneSource.h"
#include "gr_lib_utils/include/gr_status.h"
#include "tests/support/tg3_memoryFile.h"
#include "tests/support/tg3_writer.h"

namespace {

using Bytes = std::vector<gr_uint8>;

constexpr TG3MetadataDesc FIRST = {1, 0, 0};
constexpr TG3MetadataDesc WIDE = {0x12345, 0x300, 7};
constexpr TG3MetadataDesc EMPTY = {9, 8, 0};
constexpr TG3MetadataDesc TWICE = {5, 5, 0};
constexpr TG3MetadataDesc NEW = {70, 0, 3};

TG3TestImage testImage() {
  TG3TestImage image;
  image.width = 20;
  image.height = 13;
  image.numLevels = 2;
  image.blockSize = 4;
  image.storage = 2;
  return image;
}

/// The packets of a file: of every type, with headers that a writer of ours wouldn't make.
struct Parts {
  static void image(TG3Writer& writer) {
    std::vector<gr_int32> samples(size_t{20} * 13);
    for (size_t i = 0; i < samples.size(); ++i) samples[i] = static_cast<gr_int32>(i * 31 % 256);
    writer.addImage(testImage(), {samples});
  }
  static void first(TG3Writer& writer, const Bytes& block = {1, 2, 3}) {
    writer.addMetadata(1, 0, 0, block);
  }
  static void wide(TG3Writer& writer) {
    TG3TestPacket packet = {.type = 2, .subType = 0x12345, .subSubType = 0x300, .image = 7};
    packet.sequence = 99;
    packet.versionMinor = 4;
    packet.lengthBytes = 1;
    writer.addPacket(packet, Bytes{0, 0, 0, 2, 8, 9, 0xEE});  // a byte more than the block
  }
  static void empty(TG3Writer& writer) { writer.addMetadata(9, 8, 0, Bytes()); }
  static void twice(TG3Writer& writer) {
    writer.addMetadata(5, 5, 0, Bytes{1});
    writer.addPacket({.type = 3}, Bytes{4, 4});  // no class
    writer.addMetadata(5, 5, 0, Bytes{2});
  }
  static void security(TG3Writer& writer) { writer.addPacket({.type = 5}, Bytes{1, 1, 1, 0}); }
};

Bytes wholeFile() {
  TG3Writer writer;
  Parts::first(writer);
  Parts::image(writer);
  Parts::wide(writer);
  Parts::empty(writer);
  Parts::twice(writer);
  Parts::security(writer);
  return writer.bytes();
}

/// Makes a block of some bytes, and counts.
class Adder : public TG3MetadataAdderDelegate {
 public:
  explicit Adder(Bytes bytes, bool knowsLength = false)
      : m_bytes(std::move(bytes)), m_knowsLength(knowsLength) {}
  GR_STATUS write(GRIOStreamInf& stream) override {
    ++timesAsked;
    if (status != GR_STATUS_OK) return status;
    const auto length = static_cast<gr_uint32>(m_bytes.size());
    return stream.write(m_bytes.data(), length) == length ? GR_STATUS_OK : TG3_STATUS_WRITE_ERROR;
  }
  std::optional<gr_uint32> getLength() override {
    if (!m_knowsLength) return std::nullopt;
    return promisedLength.value_or(static_cast<gr_uint32>(m_bytes.size()));
  }

  int timesAsked = 0;
  GR_STATUS status = GR_STATUS_OK;
  std::optional<gr_uint32> promisedLength;

 private:
  Bytes m_bytes;
  bool m_knowsLength;
};

/// Puts a byte in front of a block.
class Prefixer : public TG3MetadataModifierDelegate {
 public:
  explicit Prefixer(gr_uint8 prefix, bool knowsLength = false)
      : m_prefix(prefix), m_knowsLength(knowsLength) {}
  GR_STATUS write(std::span<const gr_uint8> old, GRIOStreamInf& stream) override {
    const auto length = static_cast<gr_uint32>(old.size());
    return stream.write(&m_prefix, 1) == 1 && stream.write(old.data(), length) == length
               ? GR_STATUS_OK
               : TG3_STATUS_WRITE_ERROR;
  }
  std::optional<gr_uint32> getLength(std::span<const gr_uint8> old) override {
    if (!m_knowsLength) return std::nullopt;
    return static_cast<gr_uint32>(old.size() + 1);
  }

 private:
  gr_uint8 m_prefix;
  bool m_knowsLength;
};

/// A file that is edited.
struct Edit {
  explicit Edit(const Bytes& bytes, TG3MetadataCopyMode mode = TG3_METADATA_COPY_ALL)
      : file(bytes), tool(file.container) {
    EXPECT_EQ(file.status, GR_STATUS_OK);
    EXPECT_EQ(tool.beginEdit(mode), GR_STATUS_OK);
  }
  Bytes written() {
    const auto stream = GRIOStreamUtils::openMemStream();
    EXPECT_EQ(tool.apply(*stream), GR_STATUS_OK);
    return {stream->getData(), stream->getData() + stream->getSize()};
  }
  GR_STATUS applyStatus() {
    const auto stream = GRIOStreamUtils::openMemStream();
    return tool.apply(*stream);
  }

  TG3MemoryFile file;
  TG3MetadataTool tool;
};

/// What a file of `bytes` has for a block.
std::optional<Bytes> blockOf(const Bytes& bytes, const TG3MetadataDesc& desc) {
  TG3MemoryFile file(bytes);
  EXPECT_EQ(file.status, GR_STATUS_OK);
  std::span<const gr_uint8> data;
  if (!GR_SUCCESS(TG3MetadataTool(file.container).get(desc, data))) return std::nullopt;
  return Bytes(data.begin(), data.end());
}

Bytes joined(Bytes front, const Bytes& back) {
  front.insert(front.end(), back.begin(), back.end());
  return front;
}

/// The bytes of a metadata packet as a writer makes it.
Bytes packetOf(const TG3MetadataDesc& desc, const Bytes& block) {
  TG3Writer writer;
  writer.addMetadata(desc.subType, desc.subSubType, desc.image, block);
  return {writer.bytes().begin() + 8, writer.bytes().end()};
}

TEST(TG3MetadataEditTest, NeedsToBegin) {
  TG3MemoryFile file(wholeFile());
  TG3MetadataTool tool(file.container);
  Adder adder({1});
  Prefixer prefixer(1);
  const auto stream = GRIOStreamUtils::openMemStream();
  EXPECT_EQ(tool.add(NEW, adder), TG3_STATUS_BAD_CONTEXT);
  EXPECT_EQ(tool.copy(FIRST), TG3_STATUS_BAD_CONTEXT);
  EXPECT_EQ(tool.modify(FIRST, prefixer), TG3_STATUS_BAD_CONTEXT);
  EXPECT_EQ(tool.remove(FIRST), TG3_STATUS_BAD_CONTEXT);
  EXPECT_EQ(tool.apply(*stream), TG3_STATUS_BAD_CONTEXT);
}

TEST(TG3MetadataEditTest, CopiesEveryByteWhereNothingIsEdited) {
  const Bytes whole = wholeFile();
  EXPECT_EQ(Edit(whole).written(), whole);
  const gr_uint8 version[] = {3, 0, 26, 'o'};
  EXPECT_EQ(Edit(TG3Writer(version).bytes()).written(), TG3Writer(version).bytes());
}

TEST(TG3MetadataEditTest, AddsABlockBehindAllOthers) {
  for (const bool knowsLength : {false, true}) {
    for (const Bytes& block : {Bytes{7, 7, 7}, Bytes(), Bytes(100000, 5)}) {
      Edit edit(wholeFile());
      Adder adder(block, knowsLength);
      ASSERT_EQ(edit.tool.add(NEW, adder), GR_STATUS_OK);
      EXPECT_TRUE(edit.tool.has(NEW));
      EXPECT_EQ(adder.timesAsked, 0);
      const Bytes written = edit.written();
      EXPECT_EQ(adder.timesAsked, 1);
      EXPECT_EQ(written, joined(wholeFile(), packetOf(NEW, block)));
      EXPECT_EQ(blockOf(written, NEW), block);
    }
  }
}

TEST(TG3MetadataEditTest, ABlockThatIsYetToBeWrittenHasNeitherBytesNorAPlace) {
  Edit edit(wholeFile());
  Adder adder({7});
  ASSERT_EQ(edit.tool.add(NEW, adder), GR_STATUS_OK);
  std::span<const gr_uint8> data;
  EXPECT_EQ(edit.tool.get(NEW, data), TG3_STATUS_BAD_ARGUMENT);
  gr_uint64 offset = 0;
  gr_uint64 length = 0;
  EXPECT_EQ(edit.tool.getPlace(NEW, offset, length), 1u);
  EXPECT_EQ(edit.tool.getPlace(FIRST, offset, length), GR_STATUS_OK);
}

TEST(TG3MetadataEditTest, AddsABlockOnceWithTheFirstDelegate) {
  Edit edit(wholeFile());
  Adder first({1});
  Adder second({2});
  ASSERT_EQ(edit.tool.add(NEW, first), GR_STATUS_OK);
  ASSERT_EQ(edit.tool.add(NEW, second), GR_STATUS_OK);
  EXPECT_EQ(edit.written(), joined(wholeFile(), packetOf(NEW, {1})));
  EXPECT_EQ(second.timesAsked, 0);
}

TEST(TG3MetadataEditTest, AddsNoBlockThatIsThere) {
  Edit edit(wholeFile());
  Adder adder({1});
  ASSERT_EQ(edit.tool.add(FIRST, adder), GR_STATUS_OK);
  EXPECT_EQ(edit.written(), wholeFile());
  EXPECT_EQ(adder.timesAsked, 0);
}

TEST(TG3MetadataEditTest, RemovesABlockAndNothingElse) {
  TG3Writer without;
  Parts::first(without);
  Parts::image(without);
  Parts::empty(without);
  Parts::twice(without);
  Parts::security(without);
  Edit edit(wholeFile());
  ASSERT_EQ(edit.tool.remove(WIDE), GR_STATUS_OK);
  EXPECT_FALSE(edit.tool.has(WIDE));
  EXPECT_EQ(edit.written(), without.bytes());
  ASSERT_EQ(edit.tool.remove(NEW), GR_STATUS_OK);  // which isn't there
  EXPECT_EQ(edit.written(), without.bytes());
  std::span<const gr_uint8> data;
  EXPECT_EQ(edit.tool.get(WIDE, data), TG3_STATUS_BAD_ARGUMENT);
}

TEST(TG3MetadataEditTest, RemovesAllBlocksOfTheSameKeys) {
  TG3Writer without;
  Parts::first(without);
  Parts::image(without);
  Parts::wide(without);
  Parts::empty(without);
  without.addPacket({.type = 3}, Bytes{4, 4});
  Parts::security(without);
  Edit edit(wholeFile());
  ASSERT_EQ(edit.tool.remove(TWICE), GR_STATUS_OK);
  EXPECT_EQ(edit.written(), without.bytes());
}

TEST(TG3MetadataEditTest, LeavesNothingOfABlockThatWasAddedAndRemoved) {
  Edit edit(wholeFile());
  Adder adder({1});
  ASSERT_EQ(edit.tool.add(NEW, adder), GR_STATUS_OK);
  ASSERT_EQ(edit.tool.remove(NEW), GR_STATUS_OK);
  EXPECT_FALSE(edit.tool.has(NEW));
  EXPECT_EQ(edit.written(), wholeFile());
  EXPECT_EQ(adder.timesAsked, 0);
}

TEST(TG3MetadataEditTest, PutsAnotherBlockInPlaceOfOneThatWasRemoved) {
  Edit edit(wholeFile());
  Adder adder({6, 6});
  ASSERT_EQ(edit.tool.remove(FIRST), GR_STATUS_OK);
  ASSERT_EQ(edit.tool.add(FIRST, adder), GR_STATUS_OK);
  EXPECT_EQ(blockOf(edit.written(), FIRST), (Bytes{6, 6}));
}

TEST(TG3MetadataEditTest, CopiesABlockThatWasRemovedAfterAll) {
  Edit edit(wholeFile());
  ASSERT_EQ(edit.tool.remove(WIDE), GR_STATUS_OK);
  ASSERT_EQ(edit.tool.copy(WIDE), GR_STATUS_OK);
  EXPECT_TRUE(edit.tool.has(WIDE));
  ASSERT_EQ(edit.tool.copy(NEW), GR_STATUS_OK);  // which isn't in the file
  EXPECT_FALSE(edit.tool.has(NEW));
  EXPECT_EQ(edit.written(), wholeFile());
}

TEST(TG3MetadataEditTest, ModifiesABlockInItsPlace) {
  for (const bool knowsLength : {false, true}) {
    TG3Writer changed;
    Parts::first(changed, {50, 1, 2, 3});
    Parts::image(changed);
    Parts::wide(changed);
    Parts::empty(changed);
    Parts::twice(changed);
    Parts::security(changed);
    Edit edit(wholeFile());
    Prefixer prefixer(50, knowsLength);
    ASSERT_EQ(edit.tool.modify(FIRST, prefixer), GR_STATUS_OK);
    EXPECT_EQ(edit.written(), changed.bytes());
  }
}

TEST(TG3MetadataEditTest, KeepsTheSequenceAndVersionOfABlockThatItModifies) {
  Edit edit(wholeFile());
  Prefixer prefixer(50);
  ASSERT_EQ(edit.tool.modify(WIDE, prefixer), GR_STATUS_OK);
  const Bytes written = edit.written();
  EXPECT_EQ(blockOf(written, WIDE), (Bytes{50, 8, 9}));
  TG3MemoryFile file(written);
  const TG3MetadataPacket* packet = nullptr;
  ASSERT_EQ(file.container.getMetadata(0x12345, 0x300, 7, packet), GR_STATUS_OK);
  EXPECT_EQ(packet->getType().sequence, 99u);
  EXPECT_EQ(packet->getType().versionMinor, 4u);
}

TEST(TG3MetadataEditTest, ModifiesOnlyWhatTheFileHasAndTheLastTimeCounts) {
  Edit edit(wholeFile());
  Prefixer first(1);
  Prefixer last(2);
  ASSERT_EQ(edit.tool.modify(NEW, first), GR_STATUS_OK);
  EXPECT_FALSE(edit.tool.has(NEW));
  ASSERT_EQ(edit.tool.remove(EMPTY), GR_STATUS_OK);
  ASSERT_EQ(edit.tool.modify(EMPTY, first), GR_STATUS_OK);
  ASSERT_EQ(edit.tool.modify(EMPTY, last), GR_STATUS_OK);
  EXPECT_EQ(blockOf(edit.written(), EMPTY), Bytes{2});
}

TEST(TG3MetadataEditTest, CannotModifyOneOfTwo) {
  Edit edit(wholeFile());
  Prefixer prefixer(1);
  ASSERT_EQ(edit.tool.modify(TWICE, prefixer), GR_STATUS_OK);
  EXPECT_EQ(edit.applyStatus(), TG3_STATUS_BAD_ARGUMENT);
}

TEST(TG3MetadataEditTest, LeavesOutWhatNobodyNamesWhereNothingIsCopied) {
  TG3Writer expected;
  Parts::first(expected, {4, 1, 2, 3});
  Parts::image(expected);
  Parts::wide(expected);
  expected.addPacket({.type = 3}, Bytes{4, 4});
  Parts::security(expected);
  Edit edit(wholeFile(), TG3_METADATA_COPY_NOTHING);
  Prefixer prefixer(4);
  ASSERT_EQ(edit.tool.modify(FIRST, prefixer), GR_STATUS_OK);
  ASSERT_EQ(edit.tool.copy(WIDE), GR_STATUS_OK);
  EXPECT_EQ(edit.written(), expected.bytes());
}

TEST(TG3MetadataEditTest, AddsInFrontOfAPacketThatEndsWithTheStream) {
  for (const bool isOpenEnded : {false, true}) {
    TG3Writer writer;
    Parts::first(writer);
    const size_t place = writer.bytes().size();
    TG3TestPacket packet = {.type = 9, .isOpenEnded = isOpenEnded};
    if (!isOpenEnded) packet.length = 1000;  // more than there is
    writer.addPacket(packet, Bytes(10, 3));
    Bytes expected = writer.bytes();
    const Bytes added = packetOf(NEW, {1, 2});
    expected.insert(expected.begin() + static_cast<std::ptrdiff_t>(place), added.begin(),
                    added.end());
    Edit edit(writer.bytes());
    Adder adder({1, 2});
    ASSERT_EQ(edit.tool.add(NEW, adder), GR_STATUS_OK);
    EXPECT_EQ(edit.written(), expected);
    EXPECT_EQ(blockOf(expected, NEW), (Bytes{1, 2}));
  }
}

TEST(TG3MetadataEditTest, LeavesThePlanesReadableThatItMoves) {
  for (const gr_uint8 storage : {0, 2, 3}) {
    TG3TestImage image = testImage();
    image.storage = storage;
    TG3Writer writer;
    Parts::first(writer);
    writer.addImage(image, {std::vector<gr_int32>(size_t{20} * 13, 77)});
    Edit edit(writer.bytes());
    Prefixer prefixer(1);
    ASSERT_EQ(edit.tool.modify(FIRST, prefixer), GR_STATUS_OK);
    TG3MemoryFile before(writer.bytes());
    TG3MemoryFile after(edit.written());
    TG3FileSimplePlaneSource sources[2];
    ASSERT_EQ(sources[0].initialize(before.container, 0, TESRA_MEMORY_LARGE), GR_STATUS_OK);
    ASSERT_EQ(sources[1].initialize(after.container, 0, TESRA_MEMORY_LARGE), GR_STATUS_OK);
    Bytes planes[2];
    for (int i = 0; i < 2; ++i) {
      TG3SubblockPlanes read;
      ASSERT_EQ(sources[i].getClient().readSubblock(0, 0, read), GR_STATUS_OK);
      for (const TG3PlaneData& plane : read) {
        planes[i].insert(planes[i].end(), plane.data, plane.data + plane.length);
      }
    }
    EXPECT_FALSE(planes[0].empty());
    EXPECT_EQ(planes[0], planes[1]);
  }
}

TEST(TG3MetadataEditTest, EndsWithTheStatusOfADelegate) {
  for (const bool knowsLength : {false, true}) {
    Edit edit(wholeFile());
    Adder adder({1}, knowsLength);
    adder.status = 4711;
    ASSERT_EQ(edit.tool.add(NEW, adder), GR_STATUS_OK);
    EXPECT_EQ(edit.applyStatus(), 4711u);
  }
}

TEST(TG3MetadataEditTest, HoldsADelegateToTheLengthThatItSaid) {
  for (const gr_uint32 promised : {0, 2, 4, 1000}) {
    Edit edit(wholeFile());
    Adder adder({1, 2, 3}, true);
    adder.promisedLength = promised;
    ASSERT_EQ(edit.tool.add(NEW, adder), GR_STATUS_OK);
    EXPECT_EQ(edit.applyStatus(), TG3_STATUS_WRITE_ERROR);
  }
}

/// Takes some bytes and no more.
class FullStream : public GRIODynamicMemStream {
 public:
  explicit FullStream(gr_uint32 capacity) : m_left(capacity) {}
  gr_uint32 write(const gr_uint8* buffer, gr_uint32 length) override {
    const gr_uint32 taken = std::min(length, m_left);
    m_left -= taken;
    return GRIODynamicMemStream::write(buffer, taken);
  }

 private:
  gr_uint32 m_left;
};

TEST(TG3MetadataEditTest, TellsOfEveryShortWrite) {
  for (const bool knowsLength : {false, true}) {
    Edit edit(wholeFile());
    Adder adder({1, 2, 3}, knowsLength);
    Prefixer prefixer(9, knowsLength);
    ASSERT_EQ(edit.tool.add(NEW, adder), GR_STATUS_OK);
    ASSERT_EQ(edit.tool.modify(FIRST, prefixer), GR_STATUS_OK);
    const auto whole = static_cast<gr_uint32>(edit.written().size());
    for (gr_uint32 capacity = 0; capacity <= whole; ++capacity) {
      FullStream stream(capacity);
      ASSERT_EQ(stream.initialize(16, 1.5F), GR_STATUS_OK);
      ASSERT_EQ(stream.open(), GR_STATUS_OK);
      EXPECT_EQ(edit.tool.apply(stream), capacity < whole ? TG3_STATUS_WRITE_ERROR : GR_STATUS_OK)
          << capacity;
    }
  }
}

TEST(TG3MetadataEditTest, ForgetsAnEarlierEdit) {
  Edit edit(wholeFile());
  ASSERT_EQ(edit.tool.remove(FIRST), GR_STATUS_OK);
  ASSERT_EQ(edit.tool.beginEdit(), GR_STATUS_OK);
  EXPECT_EQ(edit.written(), wholeFile());
}

TEST(TG3MetadataToolRangeTest, GivesTheRangeOfAnImageAndOfItsDataType) {
  struct Type {
    gr_uint8 domainBits;
    gr_int64 low;
    gr_int64 high;
  };
  for (const Type& type :
       {Type{8, 0, 255}, Type{7, -128, 127}, Type{16, 0, 65535}, Type{15, -32768, 32767},
        Type{32, 0, 4294967295}, Type{31, -2147483648, 2147483647}}) {
    TG3TestImage image = testImage();
    image.domainBits = type.domainBits;
    image.dynamicRangeMin = -5;
    image.dynamicRangeMax = 99;
    TG3Writer writer;
    writer.addHeader(image);
    TG3MemoryFile file(writer.bytes());
    TG3MetadataTool tool(file.container);
    gr_int64 low = 0;
    gr_int64 high = 0;
    ASSERT_EQ(tool.getImageBounds(0, low, high), GR_STATUS_OK);
    EXPECT_EQ(low, -5);
    EXPECT_EQ(high, 99);
    ASSERT_EQ(tool.getDefaultRange(0, low, high), GR_STATUS_OK);
    EXPECT_EQ(low, type.low);
    EXPECT_EQ(high, type.high);
    EXPECT_EQ(tool.getImageBounds(1, low, high), TG3_STATUS_BAD_CONTEXT);
    EXPECT_EQ(tool.getDefaultRange(1, low, high), TG3_STATUS_BAD_CONTEXT);
  }
}

}  // namespace
