#include <gtest/gtest.h>

#include <string>

#include "gri_rdk_cdll.h"

namespace {

class StatusFunctionsTest : public testing::Test {
 public:
  ~StatusFunctionsTest() override { terminateStatusStrings(); }
};

TEST_F(StatusFunctionsTest, StartOnceAndEndOnce) {
  EXPECT_EQ(terminateStatusStrings(), 3070u);
  EXPECT_EQ(initializeStatusStrings(), 0u);
  EXPECT_EQ(initializeStatusStrings(), 3070u);
  EXPECT_EQ(terminateStatusStrings(), 0u);
  EXPECT_EQ(terminateStatusStrings(), 3070u);
}

TEST_F(StatusFunctionsTest, NameSuccess) {
  EXPECT_STREQ(getLastStatusString(0), "Success [0]");
  EXPECT_STREQ(getRawStatusString(0), "Success");
}

TEST_F(StatusFunctionsTest, HaveNoWordsForANullArgument) {
  EXPECT_STREQ(getLastStatusString(52001), "unknown status [52001]");
  EXPECT_STREQ(getRawStatusString(8), "unknown status");
}

TEST_F(StatusFunctionsTest, LeaveAPlaceholderWithoutTheService) {
  EXPECT_STREQ(getLastStatusString(50613), "can't open file: %F [50613]");
}

TEST_F(StatusFunctionsTest, ReportThatDetailsAreMissing) {
  ASSERT_EQ(initializeStatusStrings(), 0u);
  EXPECT_STREQ(getLastStatusString(50613), "error retrieving status string (3070) [50613]");
  EXPECT_STREQ(getRawStatusString(50613), "can't open file: %F");
}

TEST_F(StatusFunctionsTest, TakeTheFirstOfTwoRows) {
  EXPECT_STREQ(getLastStatusString(7801), "Images have incompatible widths [7801]");
}

TEST_F(StatusFunctionsTest, OverwriteTheTextOfTheLastCall) {
  const char* const first = getLastStatusString(1);
  const char* const second = getLastStatusString(0);
  EXPECT_EQ(first, second);
  EXPECT_STREQ(first, "Success [0]");
  EXPECT_STREQ(getRawStatusString(1), "Failure");
  EXPECT_STREQ(first, "Failure [1]");
}

}  // namespace
