/// @file
/// What the tests of the readers of uncompressed NITF images share.
#pragma once

#include <memory>
#include <utility>

#include "nitf/nitf_rawBlockReader.h"
#include "tests/support/nitf_testFiles.h"

/// A stream that counts the bytes read from the one below.
class CountingStream : public GRIOStreamInf {
 public:
  explicit CountingStream(std::unique_ptr<GRIOStreamInf> below) : m_below(std::move(below)) {}

  bool isEOF() override { return m_below->isEOF(); }
  bool isOpen() override { return m_below->isOpen(); }
  GR_STATUS open() override { return m_below->open(); }
  GR_STATUS close() override { return m_below->close(); }
  gr_uint32 read(gr_uint8* buffer, gr_uint32 length) override {
    const gr_uint32 count = m_below->read(buffer, length);
    m_numBytes += count;
    return count;
  }
  gr_uint32 write(const gr_uint8*, gr_uint32) override { return 0; }
  GR_STATUS seek(gr_int64 offset, GRIOSeekDir origin) override {
    return m_below->seek(offset, origin);
  }
  gr_int64 tell() override { return m_below->tell(); }
  GRIOStreamInf* duplicate() override { return nullptr; }
  GR_STATUS getLastError() override { return m_below->getLastError(); }
  const char* getID() override { return "counting:"; }

  /// Bytes since the last call.
  gr_uint64 takeCount() { return std::exchange(m_numBytes, 0); }

 private:
  std::unique_ptr<GRIOStreamInf> m_below;
  gr_uint64 m_numBytes = 0;
};

/// Decodes parts of images, and counts what is read for them.
class NITFRawReaderTest : public NITFFileTest {
 protected:
  /// A block reader over a stream that counts.
  void openCounting(const NITFTestSegment& segment) {
    ASSERT_EQ(open(nitfTestFileOf(segment)), GR_STATUS_OK);
    std::unique_ptr<GRIOStreamInf> stream;
    ASSERT_EQ(image().getImageStream(stream), GR_STATUS_OK);
    auto counting = std::make_unique<CountingStream>(std::move(stream));
    m_count = counting.get();
    m_manager->retain();
    m_reader = NITFReaderPointer(new NITFRawBlockReader);
    ASSERT_EQ(m_reader->initialize(std::move(counting), NITFManagerPointer(m_manager.get()),
                                   image(), false),
              GR_STATUS_OK);
  }
  /// Holds a decoded rectangle equal to the pixels that were written.
  void expectRectangle(const NITFTestPixels& pixels, gr_uint32 col, gr_uint32 row,
                       gr_uint32 numCols, gr_uint32 numRows) {
    SCOPED_TRACE(testing::Message() << col << ' ' << row << ' ' << numCols << ' ' << numRows);
    NITFBands bands;
    ASSERT_EQ(decode(*m_reader, col, row, numCols, numRows, bands), GR_STATUS_OK);
    for (gr_uint32 band = 0; band < pixels.numBands; ++band) {
      const Bytes all = pixels.decoded(band);
      Bytes expected;
      for (gr_uint32 r = row; r < row + numRows; ++r) {
        const auto first = all.begin() + (size_t{r} * pixels.numCols + col) * pixels.sampleBytes;
        expected.insert(expected.end(), first, first + size_t{numCols} * pixels.sampleBytes);
      }
      ASSERT_EQ(bands[band], expected) << "band " << band;
    }
  }

  NITFRawBlockReader& blockReader() { return dynamic_cast<NITFRawBlockReader&>(*m_reader); }

  CountingStream* m_count = nullptr;  // the reader's
};
