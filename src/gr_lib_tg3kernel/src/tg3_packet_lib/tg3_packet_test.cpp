#include "gr_lib_tg3kernel/src/tg3_packet_lib/tg3_packet.h"

#include <gtest/gtest.h>

#include <functional>
#include <limits>
#include <vector>

#include "gr_lib_tg3kernel/src/tg3_packet_lib/tg3_georefData.h"
#include "gr_lib_tg3kernel/src/tg3_packet_lib/tg3_headerPacket.h"
#include "gr_lib_utils/include/gr_status.h"
#include "tests/support/tg3_memoryFile.h"
#include "tests/support/tg3_writer.h"

namespace {

using Bytes = std::vector<gr_uint8>;

TG3TestImage smallImage() {
  TG3TestImage image;
  image.image = 3;
  image.width = 20;
  image.height = 10;
  image.numLevels = 2;
  image.numComponents = 2;
  image.imageColorSpace = 5;
  image.blockSize = 8;
  return image;
}

// The header packet of an image, through a file.
GR_STATUS readHeader(const TG3TestImage& image, TG3ImageInfo& info) {
  TG3Writer writer;
  writer.addHeader(image);
  TG3MemoryFile file(writer.bytes());
  GR_RETURN_IF_FAILED(file.status);
  const TG3HeaderPacket* header = nullptr;
  GR_RETURN_IF_FAILED(file.container.getHeader(image.image, header));
  info = header->getImageInfo();
  return GR_STATUS_OK;
}

GR_STATUS statusOf(const std::function<void(TG3TestImage&)>& change) {
  TG3TestImage image = smallImage();
  change(image);
  TG3ImageInfo info;
  return readHeader(image, info);
}

TEST(TG3HeaderPacketTest, ReadsEveryField) {
  TG3TestImage image = smallImage();
  image.domainBits = 15;
  image.dynamicRangeMin = -5;
  image.dynamicRangeMax = 1000;
  image.waveletColorSpace = 10;
  image.colorTransform = 4;
  image.boundary = 7;
  image.wavelet = 6;
  image.lastByte = 5;
  image.hasMse = true;
  image.isLocked = true;
  image.keyWidth = 2;
  image.virtualSupport = {1, 2, 18, 9, 1};
  TG3ImageInfo info;
  ASSERT_EQ(readHeader(image, info), GR_STATUS_OK);
  EXPECT_EQ(info.image, 3u);
  EXPECT_EQ(info.width, 20u);
  EXPECT_EQ(info.height, 10u);
  EXPECT_EQ(info.numLevels, 2);
  EXPECT_EQ(info.numComponents, 2);
  EXPECT_EQ(info.numPlanes, 32);
  EXPECT_EQ(info.subblockSize, 8);
  EXPECT_EQ(info.datatype, TG3_DATATYPE_SINT16);
  EXPECT_EQ(info.dynamicRangeMin, -5);
  EXPECT_EQ(info.dynamicRangeMax, 1000);
  EXPECT_EQ(info.imageColorSpace, 5);
  EXPECT_EQ(info.waveletColorSpace, 10);
  EXPECT_EQ(info.colorTransform, 4);
  EXPECT_EQ(info.boundary, 7);
  EXPECT_EQ(info.wavelet, 6);
  EXPECT_EQ(info.lastHeaderByte, 5);
  EXPECT_TRUE(info.hasMse);
  EXPECT_TRUE(info.locked);
  EXPECT_EQ(info.keyWidth, 2);
  EXPECT_TRUE(info.hasVirtualImageProps);
  EXPECT_EQ(info.virtualSupport, (TG3Rect{1, 2, 18, 9}));
  EXPECT_EQ(info.numLevelsRemoved, 1);
}

TEST(TG3HeaderPacketTest, TakesOrRefusesEachFlag) {
  for (int bit = 0; bit < 64; ++bit) {
    SCOPED_TRACE(bit);
    const bool isFree = (bit >= 1 && bit <= 5) || bit == 7 || bit == 16;
    if (bit == 15) continue;  // brings a block of its own
    EXPECT_EQ(statusOf([&](TG3TestImage& image) { image.flags = gr_uint64{1} << bit; }),
              isFree ? GR_STATUS_OK : TG3_STATUS_BAD_VERSION);
  }
}

TEST(TG3HeaderPacketTest, KnowsTheKeyWidthsOfLockedImagesOnly) {
  const auto keyWidth = [](gr_uint64 flags) {
    TG3TestImage image = smallImage();
    image.flags = flags;
    TG3ImageInfo info;
    EXPECT_EQ(readHeader(image, info), GR_STATUS_OK);
    return info.keyWidth;
  };
  EXPECT_EQ(keyWidth(0x08), 0);
  EXPECT_EQ(keyWidth(0x28), 1);
  EXPECT_EQ(keyWidth(0x18), 2);
  EXPECT_EQ(keyWidth(0x38), 4);
  EXPECT_EQ(keyWidth(0x30), 0);
}

TEST(TG3HeaderPacketTest, TakesALastByteOfOneToFive) {
  for (int value = 0; value < 256; ++value) {
    SCOPED_TRACE(value);
    EXPECT_EQ(statusOf([&](TG3TestImage& image) { image.lastByte = static_cast<gr_uint8>(value); }),
              value >= 1 && value <= 5 ? GR_STATUS_OK : TG3_STATUS_READ_ERROR);
  }
}

TEST(TG3HeaderPacketTest, RefusesWhatNoImageIs) {
  const auto refuses = [](const std::function<void(TG3TestImage&)>& change) {
    return statusOf(change) == TG3_STATUS_FORMAT_ERROR;
  };
  EXPECT_TRUE(refuses([](auto& image) { image.width = 0; }));
  EXPECT_TRUE(refuses([](auto& image) { image.height = 0x80000000; }));
  EXPECT_TRUE(refuses([](auto& image) { image.numLevels = 32; }));
  EXPECT_TRUE(refuses([](auto& image) { image.numComponents = 0; }));
  EXPECT_TRUE(refuses([](auto& image) { image.numPlanes = 0; }));
  EXPECT_TRUE(refuses([](auto& image) { image.numPlanes = 33; }));
  EXPECT_TRUE(refuses([](auto& image) { image.blockSize = 0; }));
  EXPECT_TRUE(refuses([](auto& image) { image.dynamicRangeMin = 255; }));
  EXPECT_TRUE(refuses([](auto& image) { image.dynamicRangeMin = 256; }));
  EXPECT_TRUE(refuses([](auto& image) { image.virtualSupport = {5, 0, 4, 9, 0}; }));
  EXPECT_TRUE(refuses([](auto& image) { image.virtualSupport = {0, 0, 20, 9, 0}; }));
  EXPECT_TRUE(refuses([](auto& image) { image.virtualSupport = {0, 0, 19, 9, 3}; }));
}

TEST(TG3HeaderPacketTest, LeavesColourAndTransformToTheirUsers) {
  EXPECT_EQ(statusOf([](auto& image) {
              image.imageColorSpace = 99;
              image.domainBits = 3;
              image.colorTransform = 200;
            }),
            GR_STATUS_OK);
}

TEST(TG3HeaderPacketTest, RefusesAVersion) {
  const Bytes body(57);
  TG3Writer writer;
  TG3TestBytes fields;
  fields.put(0x2, 8).put(5, 4).put(3, 4).put(1, 1).put(1, 2).put(32, 1).put(4, 2).put(8, 1);
  fields.put(0, 4).put(255, 4).put(0x010101, 3).put(0, 4).put(0, 1).put(1, 1);
  writer.addPacket({.type = 1, .versionMinor = 1}, fields.bytes());
  TG3MemoryFile file(writer.bytes());
  const TG3HeaderPacket* header = nullptr;
  EXPECT_EQ(file.status, GR_STATUS_OK);
  EXPECT_EQ(file.container.getHeader(0, header), TG3_STATUS_READ_ERROR);
}

TEST(TG3HeaderPacketTest, FailsOnEveryTruncationOfTheBodyOrTheStream) {
  TG3TestImage image = smallImage();
  image.virtualSupport = {1, 2, 18, 9, 1};
  TG3Writer writer;
  writer.addHeader(image);
  const Bytes& whole = writer.bytes();
  const size_t bodyStart = whole.size() - 57;
  for (size_t cut = 1; cut <= 57; ++cut) {
    SCOPED_TRACE(cut);
    const TG3HeaderPacket* header = nullptr;
    TG3MemoryFile shortStream({whole.data(), whole.size() - cut});
    EXPECT_EQ(shortStream.container.getHeader(3, header), TG3_STATUS_READ_ERROR);

    TG3Writer shortWriter;
    shortWriter.addPacket({.type = 1, .image = 3},
                          {whole.data() + bodyStart, whole.size() - bodyStart - cut});
    shortWriter.addPacket({.type = 6}, Bytes(100));
    TG3MemoryFile shortBody(shortWriter.bytes());
    EXPECT_EQ(shortBody.container.getHeader(3, header), TG3_STATUS_READ_ERROR);
  }
}

GR_STATUS planesetStatus(const TG3TestPacket& packet, const Bytes& body) {
  TG3Writer writer;
  writer.addPacket(packet, body);
  TG3MemoryFile file(writer.bytes());
  const TG3PlanesetPacket* planeset = nullptr;
  return file.container.getPlaneset(0, planeset);
}

Bytes planesetBody(gr_uint8 ordering, gr_uint8 storage) {
  return {ordering, storage, 0, 0, 0, 0, 0, 0, 0, 7};
}

TEST(TG3PlanesetPacketTest, ReadsItsHead) {
  TG3Writer writer;
  writer.addPacket({.type = 4, .versionMinor = 1}, planesetBody(5, 2));
  TG3MemoryFile file(writer.bytes());
  const TG3PlanesetPacket* planeset = nullptr;
  ASSERT_EQ(file.container.getPlaneset(0, planeset), GR_STATUS_OK);
  EXPECT_EQ(planeset->getOrdering(), TG3_ORDERING_SBCP);
  EXPECT_EQ(planeset->getStorage(), TG3_STORAGE_DATA_FIRST);
  EXPECT_EQ(planeset->getNumPlanes(), 7u);
  EXPECT_TRUE(planeset->is64Bit());
  EXPECT_EQ(planeset->getPayloadOffset(), 8u + 12 + 10);
}

TEST(TG3PlanesetPacketTest, TakesTwoVersions) {
  EXPECT_EQ(planesetStatus({.type = 4}, planesetBody(1, 0)), GR_STATUS_OK);
  EXPECT_EQ(planesetStatus({.type = 4, .versionMinor = 1}, planesetBody(1, 0)), GR_STATUS_OK);
  EXPECT_EQ(planesetStatus({.type = 4, .versionMinor = 2}, planesetBody(1, 0)),
            TG3_STATUS_BAD_VERSION);
  EXPECT_EQ(planesetStatus({.type = 4, .versionMajor = 1}, planesetBody(1, 0)),
            TG3_STATUS_BAD_VERSION);
}

TEST(TG3PlanesetPacketTest, RefusesOtherOrderingsAndStorages) {
  for (int value = 0; value < 256; ++value) {
    SCOPED_TRACE(value);
    const gr_uint8 byte = static_cast<gr_uint8>(value);
    EXPECT_EQ(planesetStatus({.type = 4}, planesetBody(byte, 0)),
              value == 1 || value == 5 ? GR_STATUS_OK : TG3_STATUS_BAD_ARGUMENT);
    EXPECT_EQ(planesetStatus({.type = 4}, planesetBody(1, byte)),
              value == 0 || value == 2 || value == 3 ? GR_STATUS_OK : TG3_STATUS_FORMAT_ERROR);
  }
}

TEST(TG3PlanesetPacketTest, FailsOnAShortBody) {
  const Bytes whole = planesetBody(1, 0);
  for (size_t length = 0; length < whole.size(); ++length) {
    EXPECT_EQ(
        planesetStatus({.type = 4}, {whole.begin(), whole.begin() + static_cast<int>(length)}),
        TG3_STATUS_READ_ERROR);
  }
}

GR_STATUS securityStatus(const Bytes& body, gr_uint64 claimed) {
  TG3Writer writer;
  writer.addPacket({.type = 5, .versionMajor = 1, .length = claimed}, body);
  TG3MemoryFile file(writer.bytes());
  const TG3SecurityPacket* security = nullptr;
  return file.container.getSecurity(0, security);
}

TEST(TG3SecurityPacketTest, KeepsTheDataOfItsLock) {
  TG3Writer writer;
  writer.addPacket({.type = 5, .versionMajor = 1}, Bytes{1, 1, 2, 9, 8, 7});
  TG3MemoryFile file(writer.bytes());
  const TG3SecurityPacket* security = nullptr;
  ASSERT_EQ(file.container.getSecurity(0, security), GR_STATUS_OK);
  ASSERT_NE(security, nullptr);
  EXPECT_EQ(security->getLockKind(), TG3_LOCK_SCALE);
  EXPECT_FALSE(security->isLegacy());
  EXPECT_EQ(Bytes(security->getLockData().begin(), security->getLockData().end()),
            (Bytes{9, 8, 7}));
}

TEST(TG3SecurityPacketTest, RefusesUnknownCiphersDigestsAndKinds) {
  EXPECT_EQ(securityStatus({1, 1, 1}, 3), GR_STATUS_OK);
  EXPECT_EQ(securityStatus({0, 1, 1}, 3), TG3_STATUS_FORMAT_ERROR);
  EXPECT_EQ(securityStatus({1, 2, 1}, 3), TG3_STATUS_FORMAT_ERROR);
  EXPECT_EQ(securityStatus({1, 1, 0}, 3), TG3_STATUS_FORMAT_ERROR);
  EXPECT_EQ(securityStatus({1, 1, 4}, 3), TG3_STATUS_FORMAT_ERROR);
}

TEST(TG3SecurityPacketTest, FailsWhenItsBodyIsShort) {
  EXPECT_EQ(securityStatus({1, 1}, 2), TG3_STATUS_READ_ERROR);
  EXPECT_EQ(securityStatus({1, 1, 1}, 4), TG3_STATUS_READ_ERROR);
  EXPECT_EQ(securityStatus({1, 1, 1}, gr_uint64{1} << 62), TG3_STATUS_READ_ERROR);
}

TEST(TG3UnknownPacketTest, KeepsItsBytes) {
  TG3Writer writer;
  writer.addPacket({.type = 0}, Bytes{1, 2, 3});
  TG3MemoryFile file(writer.bytes());
  const TG3Packet* packet = nullptr;
  EXPECT_EQ(file.container.getPacket(TG3PacketType::query(0, 0, 0, 0), packet), GR_STATUS_OK);
  EXPECT_NE(packet, nullptr);
}

TEST(TG3UnknownPacketTest, RefusesBodiesOf4GiB) {
  TG3Writer writer;
  writer.addPacket({.type = 0, .length = 0xFFFFFFFF}, Bytes{1, 2, 3});
  TG3MemoryFile file(writer.bytes());
  const TG3Packet* packet = nullptr;
  EXPECT_EQ(file.container.getPacket(TG3PacketType::query(0, 0, 0, 0), packet),
            TG3_STATUS_FORMAT_ERROR);
}

class TG3GeorefDataTest : public testing::Test {
 protected:
  TG3GeorefDataTest() {
    m_info.numComponents = 2;
    m_info.datatype = TG3_DATATYPE_SINT16;
  }

  GR_STATUS read(const Bytes& bytes) {
    return m_data.read(*tg3_memoryStream(bytes), bytes.size(), m_info);
  }

  static TG3TestGeoref wholeRecord() {
    return {.geo = std::vector<double>{100, 200, 140, 180, 2, -2},
            .zNumber = 31,
            .pixelDatatype = 8,
            .noData = std::vector<gr_int32>{-3, 4},
            .background = std::vector<gr_int32>{500, -600}};
  }

  TG3ImageInfo m_info;
  TG3GeorefData m_data;
};

TEST_F(TG3GeorefDataTest, ReadsAllOfIt) {
  ASSERT_EQ(read(tg3_georefBlock(wholeRecord())), GR_STATUS_OK);
  ASSERT_TRUE(m_data.geo && m_data.zNumber && m_data.noData && m_data.background);
  EXPECT_EQ(m_data.geo->xUL, 100);
  EXPECT_EQ(m_data.geo->yUL, 200);
  EXPECT_EQ(m_data.geo->xLR, 140);
  EXPECT_EQ(m_data.geo->yLR, 180);
  EXPECT_EQ(m_data.geo->xRes, 2);
  EXPECT_EQ(m_data.geo->yRes, -2);
  EXPECT_EQ(*m_data.zNumber, 31u);
  EXPECT_EQ(m_data.noData->values[0], -3);
  EXPECT_EQ(m_data.noData->values[1], 4);
  EXPECT_EQ(m_data.background->values[0], 500);
  EXPECT_EQ(m_data.background->values[1], -600);
}

TEST_F(TG3GeorefDataTest, ReadsNothingFromAnEmptyRecord) {
  ASSERT_EQ(read({0}), GR_STATUS_OK);
  EXPECT_FALSE(m_data.geo || m_data.zNumber || m_data.noData || m_data.background);
}

TEST_F(TG3GeorefDataTest, ReadsBytesOfEitherSign) {
  m_info.datatype = TG3_DATATYPE_SINT8;
  ASSERT_EQ(read({0x04, 0, 2, 6, 0xFF, 0x7F}), GR_STATUS_OK);
  EXPECT_EQ(m_data.noData->values[0], -1);
  EXPECT_EQ(m_data.noData->values[1], 127);
  m_info.datatype = TG3_DATATYPE_UINT8;
  ASSERT_EQ(read({0x08, 0, 2, 5, 0xFF, 0x7F}), GR_STATUS_OK);
  EXPECT_EQ(m_data.background->values[0], 255);
  EXPECT_FALSE(m_data.noData);
}

TEST_F(TG3GeorefDataTest, RefusesReservedBits) {
  for (const gr_uint8 bits : {0x10, 0x20, 0x40, 0x80}) {
    EXPECT_EQ(read({bits}), TG3_STATUS_FORMAT_ERROR);
  }
}

TEST_F(TG3GeorefDataTest, RefusesNumbersThatAreNoPlace) {
  const double bad[] = {std::numeric_limits<double>::quiet_NaN(),
                        std::numeric_limits<double>::infinity()};
  for (size_t i = 0; i < 6; ++i) {
    for (const double number : bad) {
      TG3TestGeoref georef = wholeRecord();
      (*georef.geo)[i] = number;
      EXPECT_EQ(read(tg3_georefBlock(georef)), TG3_STATUS_FORMAT_ERROR);
    }
  }
  for (const size_t resolution : {4, 5}) {
    TG3TestGeoref georef = wholeRecord();
    (*georef.geo)[resolution] = 0;
    EXPECT_EQ(read(tg3_georefBlock(georef)), TG3_STATUS_FORMAT_ERROR);
  }
}

TEST_F(TG3GeorefDataTest, RefusesPixelsOfOtherImages) {
  TG3TestGeoref georef = wholeRecord();
  georef.noData = std::vector<gr_int32>{1};
  EXPECT_EQ(read(tg3_georefBlock(georef)), TG3_STATUS_FORMAT_ERROR);
  georef = wholeRecord();
  georef.pixelDatatype = 7;
  EXPECT_EQ(read(tg3_georefBlock(georef)), TG3_STATUS_FORMAT_ERROR);
  m_info.datatype = TG3_DATATYPE_UINT32;
  georef.pixelDatatype = 9;
  EXPECT_EQ(read(tg3_georefBlock(georef)), TG3_STATUS_FORMAT_ERROR);
}

TEST_F(TG3GeorefDataTest, FailsOnEveryTruncationAndKeepsWhatItHad) {
  const Bytes whole = tg3_georefBlock(wholeRecord());
  ASSERT_EQ(read(whole), GR_STATUS_OK);
  for (size_t length = 0; length < whole.size(); ++length) {
    SCOPED_TRACE(length);
    EXPECT_NE(read({whole.begin(), whole.begin() + static_cast<int>(length)}), GR_STATUS_OK);
    EXPECT_TRUE(m_data.geo && m_data.background);
  }
}

}  // namespace
