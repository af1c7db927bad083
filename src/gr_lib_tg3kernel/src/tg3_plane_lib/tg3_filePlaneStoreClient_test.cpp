#include "gr_lib_tg3kernel/src/tg3_plane_lib/tg3_filePlaneStoreClient.h"

#include <gtest/gtest.h>

#include <vector>

#include "gr_lib_tg3kernel/src/tg3_plane_lib/tg3_filePlaneSource.h"
#include "gr_lib_utils/include/gr_status.h"
#include "tests/support/tg3_memoryFile.h"
#include "tests/support/tg3_writer.h"

namespace {

using Bytes = std::vector<gr_uint8>;

/// A stream of which all duplicates count their reads together.
class CountingStream final : public GRIOStreamInf {
 public:
  CountingStream(std::unique_ptr<GRIOStreamInf> stream, int& numReads)
      : m_stream(std::move(stream)), m_numReads(numReads) {}

  bool isEOF() override { return m_stream->isEOF(); }
  bool isOpen() override { return m_stream->isOpen(); }
  GR_STATUS open() override { return m_stream->open(); }
  GR_STATUS close() override { return m_stream->close(); }
  gr_uint32 read(gr_uint8* buffer, gr_uint32 length) override {
    ++m_numReads;
    return m_stream->read(buffer, length);
  }
  gr_uint32 write(const gr_uint8*, gr_uint32) override { return 0; }
  GR_STATUS seek(gr_int64 offset, GRIOSeekDir origin) override {
    return m_stream->seek(offset, origin);
  }
  gr_int64 tell() override { return m_stream->tell(); }
  GRIOStreamInf* duplicate() override {
    return std::make_unique<CountingStream>(std::unique_ptr<GRIOStreamInf>(m_stream->duplicate()),
                                            m_numReads)
        .release();
  }
  GR_STATUS getLastError() override { return m_stream->getLastError(); }
  const char* getID() override { return m_stream->getID(); }

 private:
  std::unique_ptr<GRIOStreamInf> m_stream;
  int& m_numReads;
};

/// Inverts the bytes of every second subblock.
struct Inverter final : TG3PlaneLock {
  GR_STATUS decipher(const TG3PlaneDesc& plane, std::span<gr_uint8> bytes) override {
    if (plane.subblock % 2 == 0) return GR_STATUS_OK;
    for (gr_uint8& byte : bytes) byte = static_cast<gr_uint8>(~byte);
    return GR_STATUS_OK;
  }
};

constexpr gr_uint32 NUM_SUBBLOCKS = 10;

/// Reads all subblocks of an image twice, and counts the reads of the stream.
int countReads(const TG3TestImage& image, const std::vector<TG3TestSubblock>& subblocks) {
  TG3Writer writer;
  writer.addHeader(image);
  writer.addPlaneset(image, subblocks);
  int numReads = 0;
  CountingStream stream(tg3_memoryStream(writer.bytes()), numReads);
  TG3FileSimpleContainer container(stream, true);
  EXPECT_EQ(container.initialize(), GR_STATUS_OK);
  TG3FileSimplePlaneSource source;
  EXPECT_EQ(source.initialize(container, 0, TESRA_MEMORY_LARGE), GR_STATUS_OK);
  Inverter lock;
  source.getClient().setLock(&lock);
  numReads = 0;
  for (int pass = 0; pass < 2; ++pass) {
    for (gr_uint32 subblock = 0; subblock < NUM_SUBBLOCKS; ++subblock) {
      TG3SubblockPlanes planes;
      EXPECT_EQ(source.getClient().readSubblock(0, subblock, planes), GR_STATUS_OK);
      const bool isInverted = image.isLocked && subblock % 2 == 1;
      EXPECT_EQ(planes.size(), subblocks[subblock].planes.size());
      for (size_t i = 0; i < planes.size(); ++i) {
        Bytes expected = subblocks[subblock].planes[i].bytes;
        if (isInverted) {
          EXPECT_EQ(lock.decipher({0, 1, 0, 0}, expected), GR_STATUS_OK);
        }
        EXPECT_EQ(Bytes(planes[i].data, planes[i].data + planes[i].length), expected);
      }
    }
  }
  return numReads;
}

TEST(TG3FilePlaneStoreClientTest, ReadsALockedImageNoOftenerThanAnOpenOne) {
  TG3TestImage image;
  image.width = 4 * NUM_SUBBLOCKS;
  image.height = 4;
  image.numLevels = 0;
  image.blockSize = 4;
  std::vector<TG3TestSubblock> subblocks;
  for (gr_uint32 i = 0; i < NUM_SUBBLOCKS; ++i) {
    const auto number = static_cast<gr_uint8>(i);
    subblocks.push_back({0, i, {{0, 5, false, {number, 2, 3}}, {0, 6, false, {4, number}}}});
  }
  for (const gr_uint8 storage : {0, 2, 3}) {
    SCOPED_TRACE(int{storage});
    image.storage = storage;
    image.isLocked = false;
    const int expected = countReads(image, subblocks);
    image.isLocked = true;
    EXPECT_EQ(countReads(image, subblocks), expected);
  }
}

}  // namespace
