#include "gr_lib_utils/include/gr_statusData.h"

#include <gtest/gtest.h>

#include "gr_lib_utils/include/gr_status.h"

namespace {

class StatusDataTest : public testing::Test {
 public:
  StatusDataTest() { EXPECT_EQ(GRUtilStatusData::create(), GR_STATUS_OK); }
  ~StatusDataTest() override { static_cast<void>(GRUtilStatusData::destroy()); }

 protected:
  static void pushNumber(GR_STATUS status, gr_uint32 number) {
    GRUtilStatusData::pushBegin(status);
    GRUtilStatusData::pushUint32(number);
    GRUtilStatusData::pushEnd();
  }
};

TEST_F(StatusDataTest, ExistsOnceAndEndsOnce) {
  EXPECT_EQ(GRUtilStatusData::create(), GR_STATUS_STATUS_DATA);
  EXPECT_TRUE(GRUtilStatusData::exists());
  EXPECT_EQ(GRUtilStatusData::destroy(), GR_STATUS_OK);
  EXPECT_EQ(GRUtilStatusData::destroy(), GR_STATUS_STATUS_DATA);
  EXPECT_FALSE(GRUtilStatusData::exists());
}

TEST_F(StatusDataTest, GivesRecordsInTheOrderOfTheirPushes) {
  GRUtilStatusData::pushBegin(914);
  GRUtilStatusData::pushInt32(-1);
  GRUtilStatusData::pushDouble(2.5);
  GRUtilStatusData::pushFileSpec(GRFileSpec("p"));
  GRUtilStatusData::pushString("s");
  GRUtilStatusData::pushEnd();

  GR_STATUS status = 0;
  gr_int32 number = 0;
  double real = 0;
  GRFileSpec path;
  GRArray<char> text;
  EXPECT_EQ(GRUtilStatusData::popStatus(status), GR_STATUS_OK);
  EXPECT_EQ(GRUtilStatusData::popInt32(number), GR_STATUS_OK);
  EXPECT_EQ(GRUtilStatusData::popDouble(real), GR_STATUS_OK);
  EXPECT_EQ(GRUtilStatusData::popFileSpec(path), GR_STATUS_OK);
  EXPECT_EQ(GRUtilStatusData::popString(text), GR_STATUS_OK);
  EXPECT_EQ(GRUtilStatusData::popEnd(), GR_STATUS_OK);
  EXPECT_EQ(status, 914u);
  EXPECT_EQ(number, -1);
  EXPECT_EQ(real, 2.5);
  EXPECT_STREQ(path.utf8(), "p");
  EXPECT_STREQ(text.data(), "s");
}

TEST_F(StatusDataTest, KeepsARecordThatIsAskedForByAnotherType) {
  pushNumber(910, 5);
  GR_STATUS status = 0;
  gr_int32 wrong = 0;
  gr_uint32 right = 0;
  ASSERT_EQ(GRUtilStatusData::popStatus(status), GR_STATUS_OK);
  EXPECT_EQ(GRUtilStatusData::popInt32(wrong), GR_STATUS_STATUS_DATA_TYPE);
  EXPECT_EQ(GRUtilStatusData::popUint32(right), GR_STATUS_OK);
  EXPECT_EQ(right, 5u);
  EXPECT_EQ(GRUtilStatusData::popUint32(right), GR_STATUS_STATUS_DATA_TYPE);
}

TEST_F(StatusDataTest, HoldsOnlyTheLastFrame) {
  pushNumber(910, 1);
  pushNumber(911, 2);
  GR_STATUS status = 0;
  EXPECT_EQ(GRUtilStatusData::popStatus(status), GR_STATUS_OK);
  EXPECT_EQ(status, 911u);
  EXPECT_EQ(GRUtilStatusData::popStatus(status), GR_STATUS_STATUS_DATA);
}

TEST_F(StatusDataTest, AFrameThatIsBeingReadEndsWithTheNextPush) {
  pushNumber(910, 1);
  GR_STATUS status = 0;
  gr_uint32 number = 0;
  ASSERT_EQ(GRUtilStatusData::popStatus(status), GR_STATUS_OK);
  GRUtilStatusData::pushBegin(911);
  EXPECT_EQ(GRUtilStatusData::popUint32(number), GR_STATUS_STATUS_DATA);
  GRUtilStatusData::pushEnd();
}

TEST_F(StatusDataTest, AnUnfinishedFrameEndsWithTheNextPush) {
  GRUtilStatusData::pushBegin(910);
  GRUtilStatusData::pushUint32(1);
  pushNumber(911, 2);
  GR_STATUS status = 0;
  EXPECT_EQ(GRUtilStatusData::popStatus(status), GR_STATUS_OK);
  EXPECT_EQ(status, 911u);
}

TEST_F(StatusDataTest, EndsWithFramesInEveryState) {
  GRUtilStatusData::pushBegin(910);
  EXPECT_EQ(GRUtilStatusData::destroy(), GR_STATUS_OK);
  EXPECT_EQ(GRUtilStatusData::create(), GR_STATUS_OK);
  pushNumber(910, 1);
  GR_STATUS status = 0;
  EXPECT_EQ(GRUtilStatusData::popStatus(status), GR_STATUS_OK);
}

TEST_F(StatusDataTest, PushesAreSilentWithoutTheData) {
  ASSERT_EQ(GRUtilStatusData::destroy(), GR_STATUS_OK);
  pushNumber(910, 1);
  GR_STATUS status = 0;
  EXPECT_EQ(GRUtilStatusData::popStatus(status), GR_STATUS_STATUS_DATA);
  EXPECT_EQ(GRUtilStatusData::popEnd(), GR_STATUS_STATUS_DATA);
  ASSERT_EQ(GRUtilStatusData::create(), GR_STATUS_OK);
  EXPECT_EQ(GRUtilStatusData::popStatus(status), GR_STATUS_STATUS_DATA);
}

}  // namespace
