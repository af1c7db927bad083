// Tesra images on streams of the host's: whose they are, and when they are open.
#include <gtest/gtest.h>

#include <algorithm>

#include "tests/support/host_stream.h"
#include "tests/tesra/tesra_testFile.h"

namespace {

class TesraStreamTest : public testing::Test {
 public:
  ~TesraStreamTest() override {
    EXPECT_FALSE(m_host.wasUsedClosed());
    EXPECT_FALSE(m_host.wasWritten());
  }

 protected:
  GR_STATUS decode(gric_image image, gr_uint32 row, gr_uint32 numRows) {
    m_samples.assign(size_t{m_image.width} * numRows, 0);
    void* band = m_samples.data();
    return gric_decode(image, 0, row, m_image.width, numRows, 1.0, &band);
  }
  /// What the file holds of these rows.
  TesraBytes expected(gr_uint32 row, gr_uint32 numRows) const {
    const std::vector<gr_int32> all = tesra_noise(m_image)[0];
    const auto first = all.begin() + static_cast<std::ptrdiff_t>(row) * m_image.width;
    TesraBytes rows(size_t{m_image.width} * numRows);
    std::transform(first, first + static_cast<std::ptrdiff_t>(rows.size()), rows.begin(),
                   [](gr_int32 sample) { return static_cast<gr_uint8>(sample); });
    return rows;
  }

  TG3TestImage m_image = tesra_grayImage(40, 70, 2);
  TesraBytes m_bytes = tesra_fileOf(m_image);
  HostStream m_host{m_bytes};
  TesraBytes m_samples;
};

TEST_F(TesraStreamTest, AStreamHandedInClosedIsClosedAgainAfterEveryUse) {
  gric_image image = nullptr;
  ASSERT_EQ(gric_openTesraImageStream(&image, m_host.handle()), 0u);
  EXPECT_FALSE(m_host.isOpen());
  EXPECT_GT(m_host.numOpenings(), 0u);
  for (const gr_uint32 row : {0u, 33u}) {
    ASSERT_EQ(decode(image, row, 30), 0u);
    EXPECT_EQ(m_samples, expected(row, 30));
    EXPECT_EQ(m_host.numOpen(), 0u);
  }
  EXPECT_EQ(gric_closeImage(image), 0u);
  EXPECT_EQ(m_host.numOpen(), 0u);
}

TEST_F(TesraStreamTest, AStreamHandedInOpenStaysOpen) {
  ASSERT_EQ(gr_ioCStreamOpen(m_host.handle()), 0);
  gric_image image = nullptr;
  ASSERT_EQ(gric_openTesraImageStream(&image, m_host.handle()), 0u);
  ASSERT_EQ(decode(image, 0, 70), 0u);
  EXPECT_EQ(m_samples, expected(0, 70));
  EXPECT_EQ(gric_closeImage(image), 0u);
  EXPECT_TRUE(m_host.isOpen());
  EXPECT_EQ(m_host.numOpenings(), 1u);  // never closed in between
}

TEST_F(TesraStreamTest, AFailedOpeningLeavesTheStreamAsItWas) {
  for (const size_t length : {size_t{0}, size_t{4}, size_t{8}, size_t{30}, m_bytes.size() / 2}) {
    SCOPED_TRACE(length);
    const TesraBytes bytes(m_bytes.begin(), m_bytes.begin() + static_cast<std::ptrdiff_t>(length));
    const HostStream cut(bytes);
    gric_image image = nullptr;
    if (gric_openTesraImageStream(&image, cut.handle()) == 0) gric_closeImage(image);
    EXPECT_EQ(cut.numOpen(), 0u);
  }
}

}  // namespace
