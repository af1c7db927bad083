#include "gr_lib_utils/include/gr_ioSubStream.h"

#include <gtest/gtest.h>

#include <limits>

#include "gr_lib_utils/include/gr_memory.h"
#include "gr_lib_utils/include/gr_status.h"
#include "gr_lib_utils/src/gr_testUtils.h"

namespace {

/// A window on the bytes 10 to 20 of 0, 1, 2, ... 29.
class GRIOSubStreamTest : public testing::Test {
 protected:
  GRIOSubStreamTest() : m_below(memStreamOf(countingBytes(30))) {
    EXPECT_EQ(m_window.initialize(m_below.get(), 10, 20, false), GR_STATUS_OK);
    EXPECT_EQ(m_window.open(), GR_STATUS_OK);
  }

  std::unique_ptr<GRIODynamicMemStream> m_below;
  GRIOSubStream m_window;
};

TEST_F(GRIOSubStreamTest, StartsAtPositionZeroAndStopsAtItsEnd) {
  EXPECT_EQ(m_window.tell(), 0);
  const Bytes bytes = readBytes(m_window, 100);
  ASSERT_EQ(bytes.size(), 10u);
  EXPECT_EQ(bytes.front(), 10);
  EXPECT_EQ(bytes.back(), 19);
  EXPECT_TRUE(m_window.isEOF());
  EXPECT_EQ(m_window.tell(), 10);
}

TEST_F(GRIOSubStreamTest, AReadUpToItsEndIsNoEof) {
  EXPECT_EQ(readBytes(m_window, 10).size(), 10u);
  EXPECT_FALSE(m_window.isEOF());
  EXPECT_EQ(readBytes(m_window, 1), Bytes{});
  EXPECT_TRUE(m_window.isEOF());
}

TEST_F(GRIOSubStreamTest, GivesNothingWhenTheStreamBelowStandsOutside) {
  for (const gr_int64 position : {0, 9, 20, 25, 30}) {
    SCOPED_TRACE(position);
    ASSERT_EQ(m_below->seek(position, GRIO_SEEK_BEGIN), GR_STATUS_OK);
    EXPECT_EQ(readBytes(m_window, 5), Bytes{});
    EXPECT_TRUE(m_window.isEOF());
  }
  ASSERT_EQ(m_window.seek(0, GRIO_SEEK_BEGIN), GR_STATUS_OK);
  EXPECT_FALSE(m_window.isEOF());
}

TEST_F(GRIOSubStreamTest, SeeksInsideOfItsWindowAlone) {
  EXPECT_EQ(m_window.seek(3, GRIO_SEEK_BEGIN), GR_STATUS_OK);
  EXPECT_EQ(readBytes(m_window, 1), Bytes{13});
  EXPECT_EQ(m_window.seek(2, GRIO_SEEK_CURRENT), GR_STATUS_OK);
  EXPECT_EQ(m_window.tell(), 6);
  EXPECT_EQ(m_window.seek(-1, GRIO_SEEK_END), GR_STATUS_OK);
  EXPECT_EQ(readBytes(m_window, 5), Bytes{19});
  EXPECT_EQ(m_window.seek(0, GRIO_SEEK_END), GR_STATUS_OK);

  EXPECT_EQ(m_window.seek(5, GRIO_SEEK_BEGIN), GR_STATUS_OK);
  EXPECT_EQ(m_window.seek(-1, GRIO_SEEK_BEGIN), GR_STATUS_FAILURE);
  EXPECT_EQ(m_window.seek(11, GRIO_SEEK_BEGIN), GR_STATUS_FAILURE);
  EXPECT_EQ(m_window.seek(-6, GRIO_SEEK_CURRENT), GR_STATUS_FAILURE);
  EXPECT_EQ(m_window.seek(1, GRIO_SEEK_END), GR_STATUS_FAILURE);
  EXPECT_EQ(m_window.seek(0, static_cast<GRIOSeekDir>(5)), GR_STATUS_FAILURE);
  EXPECT_EQ(m_window.seek(std::numeric_limits<gr_int64>::max(), GRIO_SEEK_CURRENT),
            GR_STATUS_FAILURE);
  EXPECT_EQ(m_window.seek(std::numeric_limits<gr_int64>::min(), GRIO_SEEK_END), GR_STATUS_FAILURE);
  EXPECT_EQ(m_window.tell(), 5);
}

TEST_F(GRIOSubStreamTest, WritesInsideOfItsWindowAlone) {
  const Bytes marks(20, 99);
  ASSERT_EQ(m_window.seek(8, GRIO_SEEK_BEGIN), GR_STATUS_OK);
  EXPECT_EQ(m_window.write(marks.data(), 20), 2u);
  ASSERT_EQ(m_below->seek(17, GRIO_SEEK_BEGIN), GR_STATUS_OK);
  EXPECT_EQ(readBytes(*m_below, 4), (Bytes{17, 99, 99, 20}));
}

TEST_F(GRIOSubStreamTest, OpensAndClosesTheStreamBelow) {
  EXPECT_EQ(m_window.close(), GR_STATUS_OK);
  EXPECT_FALSE(m_below->isOpen());
  EXPECT_FALSE(m_window.isOpen());
  EXPECT_EQ(m_window.tell(), -1);
  EXPECT_EQ(readBytes(m_window, 5), Bytes{});
  EXPECT_EQ(m_window.open(), GR_STATUS_OK);
  EXPECT_TRUE(m_below->isOpen());
  EXPECT_EQ(m_window.tell(), 0);
}

TEST_F(GRIOSubStreamTest, ADuplicateSharesThePosition) {
  const std::unique_ptr<GRIOStreamInf> copy(m_window.duplicate());
  ASSERT_NE(copy, nullptr);
  EXPECT_EQ(readBytes(m_window, 4).size(), 4u);
  EXPECT_EQ(copy->tell(), 4);
  EXPECT_EQ(readBytes(*copy, 1), Bytes{14});
}

TEST_F(GRIOSubStreamTest, LeavesAStreamThatItDoesNotOwn) {
  {
    GRIOSubStream other;
    ASSERT_EQ(other.initialize(m_below.get(), 0, 5, false), GR_STATUS_OK);
  }
  EXPECT_TRUE(m_below->isOpen());
}

TEST_F(GRIOSubStreamTest, ForgetsItsFormerWindow) {
  const auto other = memStreamOf(countingBytes(5));
  ASSERT_EQ(m_window.initialize(other.get(), 1, 3, false), GR_STATUS_OK);
  EXPECT_FALSE(m_below->isOpen());
  ASSERT_EQ(m_window.open(), GR_STATUS_OK);
  EXPECT_EQ(readBytes(m_window, 9), (Bytes{1, 2}));
}

TEST(GRIOSubStreamOwnershipTest, OwnsTheStreamAlsoWhenTheWindowIsBad) {
  // A leak would be seen by the leak checker.
  GRIOSubStream window;
  EXPECT_EQ(window.initialize(memStreamOf({1, 2}).release(), 2, 1, true), GR_STATUS_FAILURE);
  EXPECT_EQ(window.initialize(memStreamOf({1, 2}).release(), -1, 1, true), GR_STATUS_FAILURE);
  EXPECT_EQ(window.initialize(nullptr, 0, 1, true), GR_STATUS_FAILURE);
  EXPECT_EQ(window.open(), GRIO_STATUS_NOT_INITIALIZED);
  EXPECT_EQ(window.initialize(memStreamOf({1, 2}).release(), 1, 2, true), GR_STATUS_OK);
  ASSERT_EQ(window.open(), GR_STATUS_OK);
  EXPECT_EQ(readBytes(window, 5), Bytes{2});
  EXPECT_STREQ(window.getID(), "gr_substream:");
}

TEST(GRIOSubStreamOwnershipTest, AnEmptyWindowReadsNothing) {
  const auto below = memStreamOf(countingBytes(5));
  GRIOSubStream window;
  ASSERT_EQ(window.initialize(below.get(), 3, 3, false), GR_STATUS_OK);
  ASSERT_EQ(window.open(), GR_STATUS_OK);
  EXPECT_EQ(readBytes(window, 1), Bytes{});
  EXPECT_TRUE(window.isEOF());
}

}  // namespace
