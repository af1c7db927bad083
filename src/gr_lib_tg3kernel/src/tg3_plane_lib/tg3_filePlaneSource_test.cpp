#include "gr_lib_tg3kernel/src/tg3_plane_lib/tg3_filePlaneSource.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <map>
#include <random>
#include <vector>

#include "gr_lib_utils/include/gr_status.h"
#include "tests/support/tg3_memoryFile.h"
#include "tests/support/tg3_writer.h"

namespace {

using Bytes = std::vector<gr_uint8>;
using Subblocks = std::vector<TG3TestSubblock>;

/// Sets an environment variable for a while; null removes it.
class Environment {
 public:
  Environment(const char* name, const char* value) : m_name(name) {
    value != nullptr ? setenv(name, value, 1) : unsetenv(name);
  }
  ~Environment() { unsetenv(m_name); }
  Environment(const Environment&) = delete;
  Environment& operator=(const Environment&) = delete;

 private:
  const char* m_name;
};

// Random planes in some of the subblocks; slot 0 of a subblock stays empty, as it does in files.
Subblocks randomSubblocks(const TG3TestImage& image, std::mt19937& random) {
  const TG3TestGeometry geometry = image.geometry();
  const gr_uint32 density = 1 + random() % 4;
  Subblocks subblocks;
  for (gr_uint32 band = 0; band < geometry.bands().size(); ++band) {
    for (gr_uint32 block = 0; block < geometry.bands()[band].numBlocks(); ++block) {
      if (random() % 4 >= density) continue;
      TG3TestSubblock subblock = {band, block, {}};
      for (gr_uint16 component = 0; component < image.numComponents; ++component) {
        const gr_uint8 first = static_cast<gr_uint8>(random() % image.numPlanes);
        for (gr_uint8 plane = first; plane < image.numPlanes; ++plane) {
          if ((component == 0 && plane == 0) || random() % 8 == 0) continue;
          Bytes bytes(random() % (random() % 9 == 0 ? 3000 : 40));
          for (gr_uint8& byte : bytes) byte = static_cast<gr_uint8>(random());
          subblock.planes.push_back({component, plane, random() % 3 == 0, bytes});
        }
      }
      if (!subblock.planes.empty()) subblocks.push_back(std::move(subblock));
    }
  }
  return subblocks;
}

TG3TestImage randomImage(std::mt19937& random) {
  TG3TestImage image;
  image.image = random() % 2 * 9;
  image.width = 16 + random() % 120;
  image.height = 1 + random() % 150;
  image.numLevels = static_cast<gr_uint8>(random() % 4);
  image.blockSize = static_cast<gr_uint16>(3 + random() % 20);
  image.numComponents = static_cast<gr_uint16>(1 + random() % 4);
  image.imageColorSpace = 5;
  image.numPlanes = static_cast<gr_uint8>(2 + random() % 31);
  image.hasMse = random() % 2 != 0;
  image.ordering = random() % 2 != 0 ? 1 : 5;
  constexpr gr_uint8 STORAGES[] = {0, 2, 3};
  image.storage = STORAGES[random() % 3];
  image.is64Bit = random() % 2 != 0;
  image.numRegions = 1 + random() % 4;
  if (random() % 2 != 0) image.longestSkip = 1 + random() % 100;
  constexpr gr_uint32 WIDTHS[] = {4, 8};
  image.planesetLengthBytes = WIDTHS[random() % 2];
  return image;
}

Bytes writeFile(const TG3TestImage& image, const Subblocks& subblocks) {
  TG3Writer writer;
  writer.addHeader(image);
  writer.addPlaneset(image, subblocks);
  return writer.bytes();
}

std::vector<TG3TestPlane> copyOf(TG3SubblockPlanes planes) {
  std::vector<TG3TestPlane> copy;
  for (const TG3PlaneData& plane : planes) {
    copy.push_back(
        {plane.component, plane.plane, plane.bypass, Bytes(plane.data, plane.data + plane.length)});
  }
  return copy;
}

void expectPlanes(TG3FileSimplePlaneSource& source, const Subblocks& subblocks,
                  std::mt19937& random) {
  std::map<std::pair<gr_uint32, gr_uint64>, const TG3TestSubblock*> expected;
  for (const TG3TestSubblock& subblock : subblocks) {
    expected[{subblock.subband, subblock.subblock}] = &subblock;
  }
  std::vector<std::pair<gr_uint32, gr_uint32>> all;
  const TG3ImageInfo& info = source.getImageInfo();
  for (gr_uint32 band = 0; band < info.getNumSubbands(); ++band) {
    for (gr_uint32 block = 0; block < info.getNumSubblocks(band); ++block)
      all.push_back({band, block});
  }
  // In order, as a decoder reads, then in any.
  for (int pass = 0; pass < 2; ++pass) {
    for (const auto& [band, block] : all) {
      SCOPED_TRACE(testing::Message() << "pass " << pass << " band " << band << " block " << block);
      TG3SubblockPlanes planes;
      ASSERT_EQ(source.getClient().readSubblock(band, block, planes), GR_STATUS_OK);
      const auto found = expected.find({band, block});
      const bool isStored = found != expected.end();
      ASSERT_EQ(copyOf(planes), isStored ? found->second->planes : std::vector<TG3TestPlane>());
      ASSERT_EQ(source.getClient().hasData(band, block, block), isStored);
    }
    std::shuffle(all.begin(), all.end(), random);
  }
}

TEST(TG3FileSimplePlaneSourceTest, ReadsThePlanesOfEverySubblockInEveryLayout) {
  std::mt19937 random(21);
  for (int i = 0; i < 60; ++i) {
    const TG3TestImage image = randomImage(random);
    SCOPED_TRACE(testing::Message()
                 << "case " << i << " storage " << int{image.storage} << " ordering "
                 << int{image.ordering} << " 64 bits " << image.is64Bit);
    const Subblocks subblocks = randomSubblocks(image, random);
    TG3MemoryFile file(writeFile(image, subblocks));
    ASSERT_EQ(file.status, GR_STATUS_OK);
    for (const TesraMemoryUsage usage : {TESRA_MEMORY_SMALL, TESRA_MEMORY_LARGE}) {
      for (const char* const buffers : {static_cast<const char*>(nullptr), ""}) {
        const Environment environment("TG3_USE_STREAM_BUFFERS", buffers);
        TG3FileSimplePlaneSource source;
        ASSERT_EQ(source.initialize(file.container, image.image, usage), GR_STATUS_OK);
        const bool canBePartial = image.ordering == 1 && image.storage == 2;
        EXPECT_EQ(source.getMemoryModel(), usage == TESRA_MEMORY_SMALL && canBePartial
                                               ? TG3_MEMORY_PARTIAL
                                               : TG3_MEMORY_FULL);
        expectPlanes(source, subblocks, random);
        if (HasFatalFailure()) return;
      }
    }
  }
}

// An image of one subblock with two planes in it, the body of whose planeset tests write.
TG3TestImage smallImage() {
  TG3TestImage image;
  image.width = 4;
  image.height = 4;
  image.blockSize = 4;
  image.numPlanes = 8;
  return image;
}

GR_STATUS populate(const TG3TestImage& image, const TG3TestPacket& packet, const Bytes& body,
                   TG3FileSimplePlaneSource& source, bool cutStream = true) {
  TG3Writer writer;
  writer.addHeader(image);
  writer.addPacket(packet, body);
  if (!cutStream) writer.addPacket({.type = 6}, Bytes(40));
  TG3MemoryFile file(writer.bytes());
  return source.initialize(file.container, image.image, TESRA_MEMORY_LARGE);
}

GR_STATUS populateStatus(gr_uint8 storage, const Bytes& payload, bool is64Bit = false) {
  Bytes body = {1, storage, 0, 0, 0, 0, 0, 0, 0, 2};
  body.insert(body.end(), payload.begin(), payload.end());
  TG3FileSimplePlaneSource source;
  return populate(smallImage(), {.type = 4, .versionMinor = static_cast<gr_uint8>(is64Bit ? 1 : 0)},
                  body, source, false);
}

TEST(TG3FilePlaneReaderTest, AcceptsSkipsInPiecesUpToTheLastSlot) {
  EXPECT_EQ(populateStatus(0, {0x08}), GR_STATUS_OK);
  EXPECT_EQ(populateStatus(0, {0x03, 0x01, 0x04}), GR_STATUS_OK);
  EXPECT_EQ(populateStatus(0, {0x06, 0x81, 0xAA, 0x80}), GR_STATUS_OK);
}

TEST(TG3FilePlaneReaderTest, RefusesSlotsThatDoNotAddUp) {
  EXPECT_EQ(populateStatus(0, {0x09}), TG3_STATUS_READ_ERROR);
  EXPECT_EQ(populateStatus(0, {0x06, 0x03}), TG3_STATUS_READ_ERROR);
  EXPECT_EQ(populateStatus(0, {0x07}), TG3_STATUS_READ_ERROR);
  EXPECT_EQ(populateStatus(0, {0x00}), TG3_STATUS_READ_ERROR);
}

TEST(TG3FilePlaneReaderTest, RefusesARecordThatIsTooLong) {
  EXPECT_EQ(populateStatus(0, {0x28, 0x80, 0x80, 0x80, 0x80, 0x80, 0x80, 0x80, 0x00}, true),
            TG3_STATUS_BAD_CONTEXT);
}

TEST(TG3FilePlaneReaderTest, FindsTheTableByItsOffset) {
  // The header has 10 bytes as writers make it, the payload begins 10 bytes behind it.
  EXPECT_EQ(populateStatus(2, {0, 0, 0, 24, 0x08}), GR_STATUS_OK);
  EXPECT_EQ(populateStatus(2, {0, 0, 0, 26, 9, 9, 0x08}), GR_STATUS_OK);
  EXPECT_EQ(populateStatus(2, {0, 0, 0, 0, 0, 0, 0, 18, 0x08}, true), GR_STATUS_OK);
  EXPECT_EQ(populateStatus(2, {0, 0, 0, 23, 0x08}), TG3_STATUS_READ_ERROR);
  EXPECT_EQ(populateStatus(2, {0, 0, 0, 0, 0x08}), TG3_STATUS_READ_ERROR);
  EXPECT_EQ(populateStatus(2, {0, 0, 0, 25, 0x08}), TG3_STATUS_READ_ERROR);
  EXPECT_EQ(populateStatus(2, {0xFF, 0xFF, 0xFF, 0xFF, 0x08}), TG3_STATUS_READ_ERROR);
  const Bytes wraps = {0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xF0, 0x08};
  EXPECT_EQ(populateStatus(2, wraps, true), TG3_STATUS_READ_ERROR);
}

TEST(TG3FilePlaneReaderTest, FindsTheTableWhateverTheWidthOfTheLength) {
  for (const gr_uint32 width : {1, 2, 4, 8}) {
    const Bytes body = {1, 2, 0, 0, 0, 0, 0, 0, 0, 2, 0, 0, 0, 24, 0x08};
    TG3FileSimplePlaneSource source;
    EXPECT_EQ(populate(smallImage(), {.type = 4, .lengthBytes = width}, body, source),
              GR_STATUS_OK);
  }
}

TEST(TG3FilePlaneReaderTest, FindsTheTablesOfRasterBlocksByTheirOwnPlaces) {
  // Two regions: one with a table 43 bytes behind its begin, one with a table right behind the
  // field. Equal regions have equal fields, wherever they lie.
  Bytes payload = {0, 0, 0, 0, 0, 0, 0, 2, 0, 0, 0, 0x3F};
  payload.resize(8 + 43);
  payload.insert(payload.end(), {0x07, 0x81, 0, 0, 0, 0x18, 0x08});
  EXPECT_EQ(populateStatus(3, payload), GR_STATUS_OK);
  payload[8 + 43 + 2 + 3] = 0x17;
  EXPECT_EQ(populateStatus(3, payload), TG3_STATUS_READ_ERROR);
}

TEST(TG3FilePlaneReaderTest, RefusesMoreRasterBlocksThanFit) {
  EXPECT_EQ(populateStatus(3, {0, 0, 0, 0, 0, 0, 0, 0}), GR_STATUS_OK);
  EXPECT_EQ(populateStatus(3, {0, 0, 0, 0, 0, 0, 0, 2, 0, 0, 0, 24, 0x08}), TG3_STATUS_READ_ERROR);
  EXPECT_EQ(populateStatus(3, {0xFF, 0, 0, 0, 0, 0, 0, 1, 0, 0, 0, 24, 0x08}),
            TG3_STATUS_READ_ERROR);
}

TEST(TG3FilePlaneReaderTest, TakesTheFirstOfTwoRasterBlocksWithOneSubblock) {
  const Bytes payload = {0,    0,    0,    0, 0, 0, 0,  2,    0,    0,    0,   25,
                         0xAA, 0x07, 0x81, 0, 0, 0, 25, 0xBB, 0x06, 0x81, 0x01};
  Bytes body = {1, 3, 0, 0, 0, 0, 0, 0, 0, 2};
  body.insert(body.end(), payload.begin(), payload.end());
  TG3Writer writer;
  writer.addHeader(smallImage());
  writer.addPacket({.type = 4}, body);
  TG3MemoryFile file(writer.bytes());
  TG3FileSimplePlaneSource source;
  ASSERT_EQ(source.initialize(file.container, 0, TESRA_MEMORY_LARGE), GR_STATUS_OK);
  TG3SubblockPlanes planes;
  ASSERT_EQ(source.getClient().readSubblock(0, 0, planes), GR_STATUS_OK);
  EXPECT_EQ(copyOf(planes), (std::vector<TG3TestPlane>{{0, 7, false, {0xAA}}}));
}

TEST(TG3FilePlaneReaderTest, ReadsUpToAnOverlongSkipAtTheEndOfASubblock) {
  // Two subblocks; the skip behind the only plane covers the rest of the first and the second.
  TG3TestImage image = smallImage();
  image.width = 8;
  const Bytes body = {1, 0, 0, 0, 0, 0, 0, 0, 0, 1, 0x05, 0x81, 0xAA, 0x0A};
  TG3Writer writer;
  writer.addHeader(image);
  writer.addPacket({.type = 4}, body);
  TG3MemoryFile file(writer.bytes());
  TG3FileSimplePlaneSource source;
  ASSERT_EQ(source.initialize(file.container, 0, TESRA_MEMORY_LARGE), GR_STATUS_OK);
  TG3SubblockPlanes planes;
  ASSERT_EQ(source.getClient().readSubblock(0, 0, planes), GR_STATUS_OK);
  EXPECT_EQ(copyOf(planes), (std::vector<TG3TestPlane>{{0, 5, false, {0xAA}}}));
  ASSERT_EQ(source.getClient().readSubblock(0, 1, planes), GR_STATUS_OK);
  EXPECT_TRUE(planes.empty());
}

TEST(TG3FilePlaneReaderTest, FindsNothingWhereEverySlotIsSkipped) {
  for (const gr_uint8 storage : {0, 2, 3}) {
    TG3TestImage image = smallImage();
    image.width = 300;
    image.storage = storage;
    TG3MemoryFile file(writeFile(image, {}));
    for (const TesraMemoryUsage usage : {TESRA_MEMORY_SMALL, TESRA_MEMORY_LARGE}) {
      TG3FileSimplePlaneSource source;
      ASSERT_EQ(source.initialize(file.container, 0, usage), GR_STATUS_OK);
      EXPECT_FALSE(source.getClient().hasData(0, 0, 74));
      TG3SubblockPlanes planes;
      EXPECT_EQ(source.getClient().readSubblock(0, 74, planes), GR_STATUS_OK);
      EXPECT_TRUE(planes.empty());
    }
  }
}

TEST(TG3FilePlaneReaderTest, RefusesAPlaneThatItsPacketOrTheStreamCuts) {
  for (const gr_uint8 storage : {0, 2, 3}) {
    for (const bool useBuffers : {false, true}) {
      SCOPED_TRACE(testing::Message() << "storage " << int{storage} << " buffers " << useBuffers);
      const Environment environment("TG3_USE_STREAM_BUFFERS", useBuffers ? "1" : nullptr);
      TG3TestImage image = smallImage();
      image.hasMse = true;
      image.storage = storage;
      const Subblocks subblocks = {{0, 0, {{0, 6, false, Bytes(20, 3)}, {0, 7, false, Bytes(5)}}}};
      Bytes whole = writeFile(image, subblocks);
      if (storage == 0) {
        // The last plane lies at the end: a shorter stream ends inside of it.
        whole.resize(whole.size() - 3);
      } else {
        // The record of the last plane lies at the end: it claims more than there is.
        whole.back() = 0x9F;
      }
      TG3MemoryFile file(whole);
      TG3FileSimplePlaneSource source;
      ASSERT_EQ(source.initialize(file.container, 0, TESRA_MEMORY_LARGE), GR_STATUS_OK);
      TG3SubblockPlanes planes;
      EXPECT_EQ(source.getClient().readSubblock(0, 0, planes), TG3_STATUS_READ_ERROR);
      EXPECT_TRUE(planes.empty());
    }
  }
}

TEST(TG3FilePlaneReaderTest, CallsACutHeadOfAPlaneAFormatErrorWithBuffers) {
  for (const bool useBuffers : {false, true}) {
    const Environment environment("TG3_USE_STREAM_BUFFERS", useBuffers ? "" : nullptr);
    TG3TestImage image = smallImage();
    image.hasMse = true;
    Bytes whole = writeFile(image, {{0, 0, {{0, 7, false, {}}}}});
    whole.pop_back();
    TG3MemoryFile file(whole);
    TG3FileSimplePlaneSource source;
    ASSERT_EQ(source.initialize(file.container, 0, TESRA_MEMORY_LARGE), GR_STATUS_OK);
    TG3SubblockPlanes planes;
    EXPECT_EQ(source.getClient().readSubblock(0, 0, planes),
              useBuffers ? TG3_STATUS_FORMAT_ERROR : TG3_STATUS_READ_ERROR);
  }
}

TEST(TG3FilePlaneReaderTest, StepsOverWhatStandsInFrontOfAPlane) {
  for (const gr_uint8 keyWidth : {0, 1, 2, 4}) {
    for (const gr_uint8 storage : {0, 2, 3}) {
      TG3TestImage image = smallImage();
      image.hasMse = true;
      image.isLocked = true;
      image.keyWidth = keyWidth;
      image.storage = storage;
      const Subblocks subblocks = {
          {0, 0, {{0, 5, false, {1, 2, 3}}, {0, 6, true, {}}, {0, 7, false, {4}}}}};
      TG3MemoryFile file(writeFile(image, subblocks));
      TG3FileSimplePlaneSource source;
      ASSERT_EQ(source.initialize(file.container, 0, TESRA_MEMORY_LARGE), GR_STATUS_OK);
      struct NoLock : TG3PlaneLock {
        GR_STATUS decipher(const TG3PlaneDesc&, std::span<gr_uint8>) override { return 0; }
      } lock;
      source.getClient().setLock(&lock);
      TG3SubblockPlanes planes;
      ASSERT_EQ(source.getClient().readSubblock(0, 0, planes), GR_STATUS_OK);
      EXPECT_EQ(copyOf(planes), subblocks[0].planes);
    }
  }
}

TEST(TG3FilePlaneStoreClientTest, RefusesLockedPlanesWithoutALockButNotEmptyOnes) {
  TG3TestImage image = smallImage();
  image.width = 12;
  image.isLocked = true;
  TG3MemoryFile file(writeFile(image, {{0, 0, {{0, 5, false, {1}}}}, {0, 1, {{0, 5, false, {}}}}}));
  TG3FileSimplePlaneSource source;
  ASSERT_EQ(source.initialize(file.container, 0, TESRA_MEMORY_LARGE), GR_STATUS_OK);
  TG3SubblockPlanes planes;
  EXPECT_EQ(source.getClient().readSubblock(0, 0, planes), TG3_STATUS_SECURITY);
  EXPECT_TRUE(planes.empty());
  EXPECT_EQ(source.getClient().readSubblock(0, 1, planes), GR_STATUS_OK);
  EXPECT_EQ(planes.size(), 1u);
  EXPECT_EQ(source.getClient().readSubblock(0, 2, planes), GR_STATUS_OK);
}

TEST(TG3FilePlaneStoreClientTest, DeciphersAPlaneAfreshAtEachRead) {
  struct Inverter : TG3PlaneLock {
    GR_STATUS decipher(const TG3PlaneDesc& plane, std::span<gr_uint8> bytes) override {
      EXPECT_EQ(plane, (TG3PlaneDesc{0, 0, 0, 5}));
      for (gr_uint8& byte : bytes) byte = static_cast<gr_uint8>(~byte);
      return GR_STATUS_OK;
    }
  } lock;
  TG3TestImage image = smallImage();
  image.isLocked = true;
  TG3MemoryFile file(writeFile(image, {{0, 0, {{0, 5, false, {1, 2}}}}}));
  TG3FileSimplePlaneSource source;
  ASSERT_EQ(source.initialize(file.container, 0, TESRA_MEMORY_LARGE), GR_STATUS_OK);
  source.getClient().setLock(&lock);
  for (int i = 0; i < 3; ++i) {
    TG3SubblockPlanes planes;
    ASSERT_EQ(source.getClient().readSubblock(0, 0, planes), GR_STATUS_OK);
    EXPECT_EQ(copyOf(planes)[0].bytes, (Bytes{0xFE, 0xFD}));
  }
}

TEST(TG3FilePlaneStoreClientTest, ReopensItsStreamAfterTheEndOfAUse) {
  const Subblocks subblocks = {{0, 0, {{0, 5, false, {1, 2}}}}};
  const auto stream = tg3_memoryStream(writeFile(smallImage(), subblocks));
  TG3FileSimpleContainer container(*stream, false);
  ASSERT_EQ(container.initialize(), GR_STATUS_OK);
  TG3FileSimplePlaneSource source;
  ASSERT_EQ(source.initialize(container, 0, TESRA_MEMORY_LARGE), GR_STATUS_OK);
  for (int i = 0; i < 2; ++i) {
    TG3SubblockPlanes planes;
    ASSERT_EQ(source.getClient().readSubblock(0, 0, planes), GR_STATUS_OK);
    EXPECT_EQ(copyOf(planes), subblocks[0].planes);
    source.getClient().endUse();
  }
}

TEST(TG3FileSimplePlaneSourceTest, NeedsOneHeaderAndOnePlaneset) {
  TG3Writer writer;
  writer.addHeader(smallImage());
  TG3MemoryFile none(writer.bytes());
  TG3FileSimplePlaneSource source;
  EXPECT_EQ(source.initialize(none.container, 0, TESRA_MEMORY_LARGE), TG3_STATUS_BAD_CONTEXT);
  EXPECT_EQ(source.initialize(none.container, 1, TESRA_MEMORY_LARGE), TG3_STATUS_BAD_CONTEXT);
  writer.addPlaneset(smallImage(), {});
  writer.addPlaneset(smallImage(), {});
  TG3MemoryFile two(writer.bytes());
  EXPECT_EQ(two.container.getNumImages(), 1u);
  EXPECT_EQ(source.initialize(two.container, 0, TESRA_MEMORY_LARGE), TG3_STATUS_BAD_CONTEXT);
}

TEST(TG3FileSimplePlaneSourceTest, RefusesAMemoryUsageThatIsNone) {
  TG3MemoryFile file(writeFile(smallImage(), {}));
  for (const gr_int32 usage : {0, 5, -1}) {
    TG3FileSimplePlaneSource source;
    EXPECT_EQ(source.initialize(file.container, 0, static_cast<TesraMemoryUsage>(usage)),
              TG3_STATUS_BAD_ARGUMENT);
  }
}

TEST(TG3FileSimplePlaneSourceTest, RefusesThePipelineOrderOfAnImageThatHasNone) {
  TG3TestImage image = smallImage();
  image.blockSize = 2;
  image.ordering = 5;
  Bytes bytes = writeFile(image, {});
  TG3MemoryFile good(bytes);
  TG3FileSimplePlaneSource source;
  EXPECT_EQ(source.initialize(good.container, 0, TESRA_MEMORY_LARGE), GR_STATUS_OK);
  bytes[8 + 10 + 40 + 10] = 1;
  TG3MemoryFile bad(bytes);
  EXPECT_EQ(source.initialize(bad.container, 0, TESRA_MEMORY_LARGE), TG3_STATUS_BAD_ARGUMENT);
}

// Opens a file and reads all subblocks of a small image, or some of a large one.
void readAll(const Bytes& bytes) {
  TG3MemoryFile file(bytes);
  if (!GR_SUCCESS(file.status)) return;
  for (const TG3ImageDesc& desc : file.container.getImages()) {
    for (const TesraMemoryUsage usage : {TESRA_MEMORY_SMALL, TESRA_MEMORY_LARGE}) {
      TG3FileSimplePlaneSource source;
      if (!GR_SUCCESS(source.initialize(file.container, desc.image, usage))) continue;
      const TG3ImageInfo& info = source.getImageInfo();
      for (gr_uint32 band = 0; band < info.getNumSubbands(); ++band) {
        const gr_uint32 count = std::min(info.getNumSubblocks(band), 40u);
        for (gr_uint32 block = 0; block < count; ++block) {
          TG3SubblockPlanes planes;
          static_cast<void>(source.getClient().readSubblock(band, block, planes));
          gr_uint32 sum = 0;
          for (const TG3PlaneData& plane : planes) {
            for (gr_uint32 i = 0; i < plane.length + TG3PlaneData::PADDING; ++i)
              sum += plane.data[i];
          }
          ASSERT_LE(sum, 255 * bytes.size() * 256);
        }
      }
    }
  }
}

TEST(TG3FileSimplePlaneSourceTest, AnswersEveryTruncationAndManyWrongBytesWithAStatus) {
  std::mt19937 random(8);
  for (const gr_uint8 storage : {0, 2, 3}) {
    for (const bool is64Bit : {false, true}) {
      TG3TestImage image;
      image.width = 14;
      image.height = 9;
      image.numLevels = 1;
      image.blockSize = 4;
      image.numComponents = 2;
      image.imageColorSpace = 5;
      image.numPlanes = 9;
      image.storage = storage;
      image.is64Bit = is64Bit;
      image.numRegions = 2;
      image.hasMse = is64Bit;
      Subblocks subblocks = randomSubblocks(image, random);
      for (TG3TestSubblock& subblock : subblocks) {
        for (TG3TestPlane& plane : subblock.planes) plane.bytes.resize(random() % 3);
      }
      const Bytes whole = writeFile(image, subblocks);
      for (size_t i = 0; i < whole.size(); ++i) {
        SCOPED_TRACE(testing::Message() << "storage " << int{storage} << " byte " << i);
        readAll({whole.begin(), whole.begin() + static_cast<int>(i)});
        for (const int flip : {0x01, 0x20, 0x80, 0xFF}) {
          Bytes wrong = whole;
          wrong[i] ^= static_cast<gr_uint8>(flip);
          readAll(wrong);
        }
        if (HasFatalFailure()) return;
      }
    }
  }
}

TEST(TG3FileSimplePlaneSourceTest, TakesLittleMemoryForHugeClaims) {
  // Dense tables of these images would take gigabytes; their files have a few bytes.
  for (const bool isWide : {false, true}) {
    TG3TestImage image;
    image.width = isWide ? 0x7FFFFFFF : 65535;
    image.height = isWide ? 0x7FFFFFFF : 65535;
    image.numLevels = isWide ? 31 : 0;
    image.blockSize = isWide ? 32768 : 1;
    image.numComponents = 65535;
    image.imageColorSpace = 5;
    image.ordering = isWide ? 1 : 5;
    image.storage = 2;
    image.is64Bit = true;
    const gr_uint32 band = image.numLevels * 4u;
    const gr_uint64 last = image.geometry().bands()[band].numBlocks() - 1;
    const Subblocks subblocks = {{0, 0, {{0, 9, false, {1}}}}, {band, last, {{7, 9, false, {2}}}}};
    const Bytes bytes = writeFile(image, subblocks);
    EXPECT_LT(bytes.size(), 300u);
    TG3MemoryFile file(bytes);
    for (const TesraMemoryUsage usage : {TESRA_MEMORY_SMALL, TESRA_MEMORY_LARGE}) {
      TG3FileSimplePlaneSource source;
      ASSERT_EQ(source.initialize(file.container, 0, usage), GR_STATUS_OK);
      TG3SubblockPlanes planes;
      ASSERT_EQ(source.getClient().readSubblock(band, static_cast<gr_uint32>(last), planes),
                GR_STATUS_OK);
      EXPECT_EQ(copyOf(planes), subblocks[1].planes);
      ASSERT_EQ(source.getClient().readSubblock(0, 0, planes), GR_STATUS_OK);
      EXPECT_EQ(copyOf(planes), subblocks[0].planes);
    }
  }
}

// The model chosen for a planeset that claims some planes.
TG3MemoryModel chosenModel(TesraMemoryUsage usage, gr_uint64 numPlanes, gr_uint8 storage = 2,
                           gr_uint8 ordering = 1, gr_uint8 numSlots = 8) {
  TG3TestImage image = smallImage();
  image.numPlanes = numSlots;
  image.storage = storage;
  image.ordering = ordering;
  image.claimedNumPlanes = numPlanes;
  TG3MemoryFile file(writeFile(image, {}));
  const TG3HeaderPacket* header = nullptr;
  const TG3PlanesetPacket* planeset = nullptr;
  EXPECT_EQ(file.container.getHeader(0, header), GR_STATUS_OK);
  EXPECT_EQ(file.container.getPlaneset(0, planeset), GR_STATUS_OK);
  return tg3_chooseMemoryModel(usage, header->getImageInfo(), *planeset);
}

TEST(TG3MemoryModelTest, FollowsTheMemoryUsage) {
  EXPECT_EQ(chosenModel(TESRA_MEMORY_DEFAULT, 0), TG3_MEMORY_FULL);
  EXPECT_EQ(chosenModel(TESRA_MEMORY_SMALL, 0), TG3_MEMORY_PARTIAL);
  EXPECT_EQ(chosenModel(TESRA_MEMORY_NORMAL, 0), TG3_MEMORY_FULL);
  EXPECT_EQ(chosenModel(TESRA_MEMORY_LARGE, 0), TG3_MEMORY_FULL);
  EXPECT_EQ(chosenModel(static_cast<TesraMemoryUsage>(7), 0), TG3_MEMORY_NONE);
}

TEST(TG3MemoryModelTest, TurnsPartialAt256MiBOfEstimate) {
  // One component, 8 slots: truncate(n * 3.4 + 64) + 11814. The first n at which this is
  // 0x10000000 or more is the first with n * 3.4 >= 268423578.
  EXPECT_EQ(chosenModel(TESRA_MEMORY_DEFAULT, 78948111), TG3_MEMORY_FULL);
  EXPECT_EQ(chosenModel(TESRA_MEMORY_DEFAULT, 78948112), TG3_MEMORY_PARTIAL);
  EXPECT_EQ(chosenModel(TESRA_MEMORY_DEFAULT, ~gr_uint64{0}), TG3_MEMORY_PARTIAL);
}

TEST(TG3MemoryModelTest, CountsAnEstimateOfJust256MiBAsLarge) {
  // 17 slots: 78948090 * 3.4 + 136 + 11814.
  EXPECT_EQ(chosenModel(TESRA_MEMORY_DEFAULT, 78948089, 2, 1, 17), TG3_MEMORY_FULL);
  EXPECT_EQ(chosenModel(TESRA_MEMORY_DEFAULT, 78948090, 2, 1, 17), TG3_MEMORY_PARTIAL);
}

TEST(TG3MemoryModelTest, StaysFullWhereRecordsCannotBeWalkedOver) {
  EXPECT_EQ(chosenModel(TESRA_MEMORY_SMALL, 0, 0), TG3_MEMORY_FULL);
  EXPECT_EQ(chosenModel(TESRA_MEMORY_SMALL, 0, 3), TG3_MEMORY_FULL);
  EXPECT_EQ(chosenModel(TESRA_MEMORY_SMALL, 0, 2, 5), TG3_MEMORY_FULL);
}

TEST(TG3MemoryModelTest, ComparesTheEnvironmentVariableByItsFirstCharacters) {
  const TG3MemoryModel before = TG3_MEMORY_DEFAULT;
  EXPECT_EQ(tg3_overrideMemoryModel(before, "partial"), TG3_MEMORY_PARTIAL);
  EXPECT_EQ(tg3_overrideMemoryModel(before, "partia"), TG3_MEMORY_PARTIAL);
  EXPECT_EQ(tg3_overrideMemoryModel(before, "partiality"), TG3_MEMORY_PARTIAL);
  EXPECT_EQ(tg3_overrideMemoryModel(before, "parti"), before);
  EXPECT_EQ(tg3_overrideMemoryModel(before, "full"), TG3_MEMORY_FULL);
  EXPECT_EQ(tg3_overrideMemoryModel(before, "fully"), TG3_MEMORY_FULL);
  EXPECT_EQ(tg3_overrideMemoryModel(before, "ful"), before);
  EXPECT_EQ(tg3_overrideMemoryModel(TG3_MEMORY_FULL, "default"), TG3_MEMORY_DEFAULT);
  EXPECT_EQ(tg3_overrideMemoryModel(TG3_MEMORY_FULL, "defaults"), TG3_MEMORY_DEFAULT);
  EXPECT_EQ(tg3_overrideMemoryModel(TG3_MEMORY_FULL, "defaul"), TG3_MEMORY_FULL);
  EXPECT_EQ(tg3_overrideMemoryModel(before, "Full"), before);
  EXPECT_EQ(tg3_overrideMemoryModel(before, ""), before);
  EXPECT_EQ(tg3_overrideMemoryModel(before, nullptr), before);
}

TEST(TG3MemoryModelTest, HeedsTheEnvironmentVariable) {
  const Environment environment("GR_TG3_MEMORY_MODEL", "partia");
  EXPECT_EQ(chosenModel(TESRA_MEMORY_LARGE, 0), TG3_MEMORY_PARTIAL);
  EXPECT_EQ(chosenModel(TESRA_MEMORY_LARGE, 0, 0), TG3_MEMORY_FULL);
}

}  // namespace
