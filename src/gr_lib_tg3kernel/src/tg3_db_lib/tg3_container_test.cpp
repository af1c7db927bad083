#include <gtest/gtest.h>

#include <vector>

#include "gr_lib_tg3kernel/src/tg3_db_lib/tg3_fileSimpleContainer.h"
#include "gr_lib_tg3kernel/src/tg3_db_lib/tg3_metadataTool.h"
#include "gr_lib_utils/include/gr_status.h"
#include "tests/support/tg3_memoryFile.h"
#include "tests/support/tg3_writer.h"

namespace {

using Bytes = std::vector<gr_uint8>;

constexpr gr_uint32 ANY = TG3PacketType::ANY;

TG3TestImage imageNumber(gr_uint32 number) {
  TG3TestImage image;
  image.image = number;
  image.width = 5;
  image.height = 3;
  return image;
}

GR_STATUS openStatus(const Bytes& bytes) { return TG3MemoryFile(bytes).status; }

TEST(TG3ContainerTest, OpensAPreambleWithoutPackets) {
  TG3MemoryFile file(TG3Writer().bytes());
  EXPECT_EQ(file.status, GR_STATUS_OK);
  EXPECT_EQ(file.container.getNumImages(), 0u);
  EXPECT_STREQ(file.container.getVersion().toText().data(), "3.0.26.t");
}

TEST(TG3ContainerTest, FailsOnAShortPreamble) {
  const Bytes whole = TG3Writer().bytes();
  for (size_t length = 0; length < whole.size(); ++length) {
    EXPECT_EQ(openStatus({whole.begin(), whole.begin() + static_cast<int>(length)}),
              TG3_STATUS_READ_ERROR);
  }
}

TEST(TG3ContainerTest, TakesLettersUpToItsOwnAsSignedNumbers) {
  const auto status = [](gr_uint8 letter) {
    const gr_uint8 version[] = {3, 0, 26, letter};
    return openStatus(TG3Writer(version).bytes());
  };
  for (const gr_uint8 letter : {'o', 'q', 'r', 's', 't', 'a', '\0'}) {
    EXPECT_EQ(status(letter), GR_STATUS_OK) << letter;
  }
  EXPECT_EQ(status(0x80), GR_STATUS_OK);
  EXPECT_EQ(status(0xFF), GR_STATUS_OK);
  EXPECT_EQ(status('u'), TG3_STATUS_BAD_VERSION);
  EXPECT_EQ(status(0x7F), TG3_STATUS_BAD_VERSION);
}

TEST(TG3ContainerTest, RefusesOtherVersionsAndMagics) {
  for (const Bytes& version :
       {Bytes{3, 0, 25, 't'}, Bytes{3, 0, 27, 'a'}, Bytes{3, 1, 26, 't'}, Bytes{2, 0, 26, 't'}}) {
    EXPECT_EQ(openStatus(TG3Writer(version).bytes()), TG3_STATUS_BAD_VERSION);
  }
  Bytes other = TG3Writer().bytes();
  other[0] = 'T';
  EXPECT_EQ(openStatus(other), TG3_STATUS_BAD_VERSION);
}

TEST(TG3ContainerTest, RefusesToInitializeTwice) {
  TG3MemoryFile file(TG3Writer().bytes());
  EXPECT_EQ(file.container.initialize(), TG3_STATUS_BAD_CONTEXT);
}

TEST(TG3ContainerTest, ListsImagesInTheOrderOfTheFileAndEachOnce) {
  TG3Writer writer;
  writer.addHeader(imageNumber(7));
  writer.addPacket({.type = 7, .image = 2}, Bytes(5));
  writer.addHeader(imageNumber(7));
  writer.addPacket({.type = 7, .image = 7}, Bytes(5));
  writer.addHeader(imageNumber(0));
  TG3MemoryFile file(writer.bytes());
  ASSERT_EQ(file.status, GR_STATUS_OK);
  const std::vector<TG3ImageDesc> images(file.container.getImages().begin(),
                                         file.container.getImages().end());
  EXPECT_EQ(images, (std::vector<TG3ImageDesc>{
                        {7, TG3_IMAGE_TG3}, {2, TG3_IMAGE_TG2}, {0, TG3_IMAGE_TG3}}));
  EXPECT_TRUE(file.container.hasTG2Image());

  TG3ImageDesc desc;
  EXPECT_EQ(file.container.getDesc(2, desc), GR_STATUS_OK);
  EXPECT_EQ(desc.kind, TG3_IMAGE_TG2);
  EXPECT_EQ(file.container.getDesc(1, desc), TG3_STATUS_BAD_ARGUMENT);
}

TEST(TG3ContainerTest, FindsNoHeaderWhereAnImageHasTwo) {
  TG3Writer writer;
  writer.addHeader(imageNumber(7));
  writer.addHeader(imageNumber(7));
  TG3MemoryFile file(writer.bytes());
  const TG3HeaderPacket* header = nullptr;
  EXPECT_EQ(file.container.getHeader(7, header), TG3_STATUS_BAD_CONTEXT);
  EXPECT_EQ(file.container.getHeader(6, header), TG3_STATUS_BAD_CONTEXT);
  const TG3PlanesetPacket* planeset = nullptr;
  EXPECT_EQ(file.container.getPlaneset(7, planeset), TG3_STATUS_BAD_CONTEXT);
}

TEST(TG3ContainerTest, HandlesTheImageNumberThatStandsForAny) {
  TG3Writer writer;
  writer.addHeader(imageNumber(ANY));
  TG3MemoryFile file(writer.bytes());
  const TG3HeaderPacket* header = nullptr;
  EXPECT_EQ(file.container.getHeader(ANY, header), GR_STATUS_OK);
  EXPECT_EQ(file.container.getHeader(5, header), GR_STATUS_OK);
  writer.addHeader(imageNumber(5));
  TG3MemoryFile two(writer.bytes());
  EXPECT_EQ(two.container.getHeader(5, header), TG3_STATUS_BAD_CONTEXT);
  EXPECT_EQ(two.container.getHeader(ANY, header), TG3_STATUS_BAD_CONTEXT);
}

TEST(TG3ContainerTest, EndsTheChainAtAPacketWithAnOpenEnd) {
  TG3Writer writer;
  writer.addPacket({.type = 6, .isOpenEnded = true}, Bytes(3));
  writer.addHeader(imageNumber(0));
  TG3MemoryFile file(writer.bytes());
  EXPECT_EQ(file.status, GR_STATUS_OK);
  EXPECT_EQ(file.container.getNumImages(), 0u);
}

TEST(TG3ContainerTest, AcceptsAPacketThatPassesTheEndUntilItsBodyIsRead) {
  for (const gr_uint64 length : {gr_uint64{41}, gr_uint64{1} << 40, gr_uint64{1} << 63,
                                 ~gr_uint64{0} - 1, gr_uint64{0x7FFFFFFFFFFFFFFF}}) {
    SCOPED_TRACE(length);
    TG3Writer writer;
    writer.addPacket({.type = 1, .length = length}, Bytes(8));
    TG3MemoryFile file(writer.bytes());
    EXPECT_EQ(file.status, GR_STATUS_OK);
    EXPECT_EQ(file.container.getNumImages(), 1u);
    const TG3HeaderPacket* header = nullptr;
    EXPECT_EQ(file.container.getHeader(0, header), TG3_STATUS_READ_ERROR);
  }
}

TEST(TG3ContainerTest, ReadsLengthsOfAnyWidth) {
  for (const gr_uint32 width : {1, 2, 4, 8}) {
    TG3Writer writer;
    writer.addPacket({.type = 6, .lengthBytes = width}, Bytes(200));
    writer.addHeader(imageNumber(0));
    EXPECT_EQ(TG3MemoryFile(writer.bytes()).container.getNumImages(), 1u) << width;
  }
}

TEST(TG3ContainerTest, FailsAtAHeaderThatTheStreamCuts) {
  TG3Writer writer;
  writer.addHeader(imageNumber(4));
  const size_t first = writer.bytes().size();
  writer.addHeader(imageNumber(5));
  const Bytes& whole = writer.bytes();
  for (size_t length = first + 1; length < first + 14; ++length) {
    EXPECT_EQ(openStatus({whole.begin(), whole.begin() + static_cast<int>(length)}),
              TG3_STATUS_READ_ERROR);
  }
}

TEST(TG3ContainerTest, StepsOverPacketsWithoutClass) {
  TG3Writer writer;
  for (const gr_uint8 type : {3, 6, 8, 15}) writer.addPacket({.type = type}, Bytes(9));
  writer.addHeader(imageNumber(0));
  TG3MemoryFile file(writer.bytes());
  ASSERT_EQ(file.status, GR_STATUS_OK);
  EXPECT_EQ(file.container.getNumImages(), 1u);
  for (const gr_int32 type : {3, 6, 8, 15}) {
    const TG3Packet* packet = nullptr;
    EXPECT_EQ(file.container.getPacket(TG3PacketType::query(type, ANY, ANY, 0), packet),
              TG3_STATUS_BAD_CONTEXT);
  }
}

TEST(TG3ContainerTest, StopsAtReservedBits) {
  TG3Writer writer;
  writer.addHeader(imageNumber(0));
  Bytes bytes = writer.bytes();
  bytes[8] |= 0x80;
  EXPECT_EQ(openStatus(bytes), TG3_STATUS_BAD_VERSION);
}

TEST(TG3ContainerTest, ReadsAPacketOnce) {
  TG3Writer writer;
  writer.addHeader(imageNumber(0));
  TG3MemoryFile file(writer.bytes());
  const TG3HeaderPacket* first = nullptr;
  const TG3HeaderPacket* second = nullptr;
  ASSERT_EQ(file.container.getHeader(0, first), GR_STATUS_OK);
  ASSERT_EQ(file.container.getHeader(0, second), GR_STATUS_OK);
  EXPECT_EQ(first, second);
}

TEST(TG3ContainerTest, LeavesTheStreamAsItWas) {
  TG3Writer writer;
  writer.addHeader(imageNumber(0));
  const auto stream = tg3_memoryStream(writer.bytes());
  ASSERT_EQ(stream->close(), GR_STATUS_OK);
  TG3FileSimpleContainer container(*stream, false);
  ASSERT_EQ(container.initialize(), GR_STATUS_OK);
  EXPECT_FALSE(stream->isOpen());
  const TG3HeaderPacket* header = nullptr;
  ASSERT_EQ(container.getHeader(0, header), GR_STATUS_OK);
  EXPECT_FALSE(stream->isOpen());

  TG3FileSimpleContainer open(*stream, true);
  ASSERT_EQ(open.initialize(), GR_STATUS_OK);
  EXPECT_TRUE(stream->isOpen());
}

TEST(TG3ContainerTest, GivesAnEmbeddedFileAStreamOfItsOwn) {
  TG3Writer writer;
  writer.addPacket({.type = 7, .image = 1}, Bytes{10, 11, 12});
  writer.addPacket({.type = 6}, Bytes(4));
  writer.addPacket({.type = 7, .image = 2, .length = 9}, Bytes{1});
  TG3MemoryFile file(writer.bytes());
  std::unique_ptr<GRIOStreamInf> stream;
  ASSERT_EQ(file.container.makeTG2Stream(1, stream), GR_STATUS_OK);
  ASSERT_EQ(stream->open(), GR_STATUS_OK);
  Bytes read(10);
  EXPECT_EQ(stream->read(read.data(), 10), 3u);
  EXPECT_EQ(read[2], 12);
  EXPECT_EQ(file.container.makeTG2Stream(2, stream), TESRA_STATUS_INVALID_FORMAT);
  EXPECT_EQ(file.container.makeTG2Stream(3, stream), TG3_STATUS_BAD_CONTEXT);
}

TEST(TG3ContainerTest, GivesAnEmbeddedFileWithAnOpenEndNoBytes) {
  TG3Writer writer;
  writer.addPacket({.type = 7, .image = 1, .isOpenEnded = true}, Bytes{10, 11, 12});
  TG3MemoryFile file(writer.bytes());
  std::unique_ptr<GRIOStreamInf> stream;
  ASSERT_EQ(file.container.makeTG2Stream(1, stream), GR_STATUS_OK);
  ASSERT_EQ(stream->open(), GR_STATUS_OK);
  gr_uint8 byte = 0;
  EXPECT_EQ(stream->read(&byte, 1), 0u);
}

TEST(TG3ContainerTest, FindsItsWayAmongManyPackets) {
  TG3TestBytes body;
  for (gr_uint32 image = 1; image <= 50000; ++image) {
    body.put(0x01, 1).put(0x04, 1).put(image % 40000, 4).put(0, 1);
  }
  Bytes bytes = TG3Writer().bytes();
  bytes.insert(bytes.end(), body.bytes().begin(), body.bytes().end());
  TG3MemoryFile file(bytes);
  ASSERT_EQ(file.status, GR_STATUS_OK);
  EXPECT_EQ(file.container.getNumImages(), 40000u);
  for (const TG3ImageDesc& desc : file.container.getImages()) {
    const TG3HeaderPacket* header = nullptr;
    ASSERT_NE(file.container.getHeader(desc.image, header), GR_STATUS_OK);
  }
}

TEST(TG3ContainerTest, RefusesAListThatDwarfsItsStream) {
  Bytes bytes = TG3Writer().bytes();
  bytes.resize(bytes.size() + size_t{3} * 800000);  // packets of type 0 without a body
  EXPECT_EQ(openStatus(bytes), TG3_STATUS_NO_MEMORY);
}

TEST(TG3ContainerTest, AnswersEveryTruncationAndEveryWrongByteWithAStatus) {
  TG3Writer writer;
  TG3TestImage image = imageNumber(1);
  image.virtualSupport = {0, 0, 3, 2, 0};
  writer.addImage(image, {std::vector<gr_int32>(15, 77)});
  writer.addMetadata(3, 0, 1, tg3_georefBlock({.geo = std::vector<double>{0, 5, 3, 0, 1, -1}}));
  const Bytes whole = writer.bytes();
  const auto use = [](const Bytes& bytes) {
    TG3MemoryFile file(bytes);
    if (!GR_SUCCESS(file.status)) return;
    for (const TG3ImageDesc& desc : file.container.getImages()) {
      const TG3HeaderPacket* header = nullptr;
      const TG3PlanesetPacket* planeset = nullptr;
      if (!GR_SUCCESS(file.container.getHeader(desc.image, header))) continue;
      static_cast<void>(file.container.getPlaneset(desc.image, planeset));
      TG3GeorefData georef;
      static_cast<void>(TG3MetadataTool(file.container).readGeoref(header->getImageInfo(), georef));
    }
  };
  for (size_t i = 0; i < whole.size(); ++i) {
    use({whole.begin(), whole.begin() + static_cast<int>(i)});
    for (int value = 0; value < 256; ++value) {
      Bytes wrong = whole;
      wrong[i] = static_cast<gr_uint8>(value);
      use(wrong);
    }
  }
}

class TG3MetadataToolTest : public testing::Test {
 protected:
  TG3MetadataToolTest() {
    m_writer.addHeader(imageNumber(0));
    m_writer.addMetadata(1, 0, 0, Bytes{1, 2, 3});
    m_writer.addMetadata(9, 8, 0, Bytes());
    m_writer.addMetadata(5, 5, 0, Bytes{1});
    m_writer.addMetadata(5, 5, 0, Bytes{2});
  }
  TG3Writer m_writer;
};

TEST_F(TG3MetadataToolTest, GivesBlocksByTheirKeys) {
  TG3MemoryFile file(m_writer.bytes());
  TG3MetadataTool tool(file.container);
  EXPECT_TRUE(tool.has(TG3MetadataDesc::classical(0)));
  EXPECT_FALSE(tool.has(TG3MetadataDesc::classical(1)));
  EXPECT_FALSE(tool.has(TG3MetadataDesc::georef(0)));
  std::span<const gr_uint8> data;
  ASSERT_EQ(tool.get(TG3MetadataDesc::classical(0), data), GR_STATUS_OK);
  EXPECT_EQ(Bytes(data.begin(), data.end()), (Bytes{1, 2, 3}));
  EXPECT_EQ(tool.get(TG3MetadataDesc::georef(0), data), TG3_STATUS_BAD_ARGUMENT);
}

TEST_F(TG3MetadataToolTest, WritesNothingForAnEmptyBlock) {
  TG3MemoryFile file(m_writer.bytes());
  const auto stream = GRIOStreamUtils::openMemStream();
  EXPECT_EQ(TG3MetadataTool(file.container).get({9, 8, 0}, *stream), GR_STATUS_OK);
  EXPECT_EQ(stream->getSize(), 0u);
}

TEST_F(TG3MetadataToolTest, FindsNeitherOfTwoBlocksWithTheSameKeys) {
  TG3MemoryFile file(m_writer.bytes());
  TG3MetadataTool tool(file.container);
  EXPECT_TRUE(tool.has({5, 5, 0}));
  std::span<const gr_uint8> data;
  EXPECT_EQ(tool.get({5, 5, 0}, data), TG3_STATUS_BAD_ARGUMENT);
}

TEST_F(TG3MetadataToolTest, KnowsWhereABlockLies) {
  TG3MemoryFile file(m_writer.bytes());
  gr_uint64 offset = 0;
  gr_uint64 length = 0;
  ASSERT_EQ(TG3MetadataTool(file.container).getPlace({1, 0, 0}, offset, length), GR_STATUS_OK);
  EXPECT_EQ(length, 3u);
  EXPECT_EQ(m_writer.bytes()[offset], 1);
  EXPECT_EQ(m_writer.bytes()[offset + 2], 3);
}

TEST_F(TG3MetadataToolTest, RefusesABlockThatItsPacketOrTheStreamCuts) {
  TG3TestBytes body;
  body.put(0xFFFFFFFF, 4).put(0, 8);
  m_writer.addPacket({.type = 2, .subType = 4}, body.bytes());
  m_writer.addPacket({.type = 2, .subType = 6, .length = 0xFFFFFFFFFF}, body.bytes());
  TG3MemoryFile file(m_writer.bytes());
  TG3MetadataTool tool(file.container);
  std::span<const gr_uint8> data;
  EXPECT_EQ(tool.get({4, 0, 0}, data), TG3_STATUS_READ_ERROR);
  EXPECT_EQ(tool.get({6, 0, 0}, data), TG3_STATUS_READ_ERROR);
}

TEST_F(TG3MetadataToolTest, ReadsTheGeoreferenceInsideOfItsBlockOnly) {
  TG3ImageInfo info;
  info.numComponents = 1;
  info.datatype = TG3_DATATYPE_UINT8;
  const Bytes block =
      tg3_georefBlock({.geo = std::vector<double>{0, 5, 3, 0, 1, -1}, .zNumber = 3});
  TG3GeorefData georef;
  {
    TG3Writer writer;
    writer.addMetadata(3, 0, 0, block);
    TG3MemoryFile file(writer.bytes());
    EXPECT_EQ(TG3MetadataTool(file.container).readGeoref(info, georef), GR_STATUS_OK);
    EXPECT_TRUE(georef.geo && *georef.zNumber == 3);
  }
  {
    TG3Writer writer;
    TG3TestBytes body;
    body.put(block.size() - 1, 4).put(block);
    writer.addPacket({.type = 2, .subType = 3}, body.bytes());
    TG3MemoryFile file(writer.bytes());
    EXPECT_EQ(TG3MetadataTool(file.container).readGeoref(info, georef), TG3_STATUS_READ_ERROR);
  }
  TG3MemoryFile none(TG3Writer().bytes());
  EXPECT_EQ(TG3MetadataTool(none.container).readGeoref(info, georef), GR_STATUS_OK);
  EXPECT_FALSE(georef.geo.has_value());
}

}  // namespace
