#include "gr_lib_utils/include/gr_statusStrings.h"

#include <gtest/gtest.h>

#include <array>
#include <string>

#include "gr_lib_utils/include/gr_fileSpec.h"
#include "gr_lib_utils/include/gr_status.h"
#include "gr_lib_utils/include/gr_statusData.h"

namespace {

/// Runs without status data; each test that wants some makes it.
class StatusStringsTest : public testing::Test {
 public:
  ~StatusStringsTest() override { static_cast<void>(GRUtilStatusData::destroy()); }
};

class FilledInStatusStringsTest : public StatusStringsTest {
 protected:
  FilledInStatusStringsTest() { EXPECT_EQ(GRUtilStatusData::create(), GR_STATUS_OK); }
};

void pushPath(GR_STATUS status, const std::string& path) {
  GRUtilStatusData::pushBegin(status);
  GRUtilStatusData::pushFileSpec(GRFileSpec(path.c_str()));
  GRUtilStatusData::pushEnd();
}

void pushText(GR_STATUS status, const char* text) {
  GRUtilStatusData::pushBegin(status);
  GRUtilStatusData::pushString(text);
  GRUtilStatusData::pushEnd();
}

struct Expansion {
  GR_STATUS result;
  std::string text;
};

Expansion expand(const char* message, size_t capacity = 100) {
  std::array<char, 100> output{};
  const GR_STATUS result = gr_expandStatusMessage(914, message, output.data(), capacity);
  return {result, output.data()};
}

TEST_F(StatusStringsTest, PutsTheNumberBehindTheMessage) {
  EXPECT_STREQ(gr_lastStatusString(0), "Success [0]");
  EXPECT_STREQ(gr_rawStatusString(0), "Success");
}

TEST_F(StatusStringsTest, SaysThatItDoesNotKnowANumber) {
  EXPECT_STREQ(gr_lastStatusString(52001), "unknown status [52001]");
}

TEST_F(StatusStringsTest, PrintsTheNumberAsASignedOne) {
  EXPECT_STREQ(gr_lastStatusString(0xFFFFFFFF), "unknown status [-1]");
}

TEST_F(StatusStringsTest, LeavesPlaceholdersAloneWithoutStatusData) {
  EXPECT_STREQ(gr_lastStatusString(50613), "can't open file: %F [50613]");
  EXPECT_STREQ(gr_rawStatusString(50613), "can't open file: %F");
}

TEST_F(FilledInStatusStringsTest, ReportsMissingDetails) {
  EXPECT_STREQ(gr_lastStatusString(50613), "error retrieving status string (3070) [50613]");
  EXPECT_STREQ(gr_lastStatusString(7133), "error retrieving status string (3070) [7133]");
}

TEST_F(FilledInStatusStringsTest, FillsInThePathOnceAndUsesItUp) {
  pushPath(50613, "/images/x.tsr");
  EXPECT_STREQ(gr_lastStatusString(50613), "can't open file: /images/x.tsr [50613]");
  EXPECT_EQ(GRUtilStatusData::popEnd(), GR_STATUS_STATUS_DATA);  // nothing is left of it
  EXPECT_STREQ(gr_lastStatusString(50613), "error retrieving status string (3070) [50613]");
}

TEST_F(FilledInStatusStringsTest, FillsInAReason) {
  pushText(50905, "bad marker");
  EXPECT_STREQ(gr_lastStatusString(50905), "JP2: internal error (bad marker) [50905]");
  pushText(50905, nullptr);
  EXPECT_STREQ(gr_lastStatusString(50905), "JP2: internal error () [50905]");
}

TEST_F(FilledInStatusStringsTest, NeverTouchesTheFrameForTheRawMessage) {
  pushPath(50613, "x");
  EXPECT_STREQ(gr_rawStatusString(50613), "can't open file: %F");
  EXPECT_STREQ(gr_lastStatusString(50613), "can't open file: x [50613]");
}

TEST_F(FilledInStatusStringsTest, LeavesTheFrameForAMessageWithoutPlaceholders) {
  pushPath(50613, "x");
  EXPECT_STREQ(gr_lastStatusString(50015), "scene magnification out of range [50015]");
  EXPECT_STREQ(gr_lastStatusString(50613), "can't open file: x [50613]");
}

TEST_F(FilledInStatusStringsTest, ReportsAFrameOfAnotherStatus) {
  pushPath(7012, "x");
  EXPECT_STREQ(gr_lastStatusString(50613), "error retrieving status string (1) [50613]");
  // The frame is in the hands of the reader now, and gone for everybody else.
  EXPECT_STREQ(gr_lastStatusString(7012), "error retrieving status string (3070) [7012]");
}

TEST_F(FilledInStatusStringsTest, FormatsEveryKindOfRecord) {
  GRUtilStatusData::pushBegin(910);
  GRUtilStatusData::pushUint32(4294967295u);
  GRUtilStatusData::pushEnd();
  EXPECT_STREQ(gr_lastStatusString(910), "status test uint32=4294967295 [910]");
  GRUtilStatusData::pushBegin(911);
  GRUtilStatusData::pushInt32(-7);
  GRUtilStatusData::pushEnd();
  EXPECT_STREQ(gr_lastStatusString(911), "status test int32=-7 [911]");
  GRUtilStatusData::pushBegin(912);
  GRUtilStatusData::pushDouble(0.5);
  GRUtilStatusData::pushEnd();
  EXPECT_STREQ(gr_lastStatusString(912), "status test double=0.500000 [912]");
  pushText(913, "abc");
  EXPECT_STREQ(gr_lastStatusString(913), "status test string=abc [913]");
  pushPath(915, "a/b");
  EXPECT_STREQ(gr_lastStatusString(915), "status test filespec=a/b [915]");
}

TEST_F(FilledInStatusStringsTest, TakesSeveralRecordsInTheOrderOfTheirPushes) {
  GRUtilStatusData::pushBegin(914);
  GRUtilStatusData::pushUint32(1);
  GRUtilStatusData::pushUint32(2);
  GRUtilStatusData::pushDouble(3);
  GRUtilStatusData::pushString("four");
  GRUtilStatusData::pushString("five");
  GRUtilStatusData::pushString("six");
  GRUtilStatusData::pushEnd();
  EXPECT_STREQ(gr_lastStatusString(914),
               "status test uint=1 uint=2 double=3.000000 string=four string=five string=six foo "
               "[914]");
}

TEST_F(FilledInStatusStringsTest, PutsAQuestionMarkForARecordOfAnotherType) {
  GRUtilStatusData::pushBegin(913);
  GRUtilStatusData::pushUint32(5);
  GRUtilStatusData::pushEnd();
  EXPECT_STREQ(gr_lastStatusString(913), "status test string=? [913]");
}

TEST_F(FilledInStatusStringsTest, PutsAQuestionMarkWhereTheRecordsEnd) {
  pushText(7184, "libimg");
  const std::string message = gr_lastStatusString(7184);
  EXPECT_EQ(message.substr(0, 48), "Error loading libimg shared object libimg, ?  Ve");
}

TEST_F(FilledInStatusStringsTest, CutsATextThatIsTooLongBeforeItsNumber) {
  const std::string path(5000, 'x');
  pushPath(50613, path);
  const std::string message = gr_lastStatusString(50613);
  EXPECT_EQ(message.size(), 4095u);
  EXPECT_EQ(message.substr(0, 20), "can't open file: xxx");
  EXPECT_EQ(message.substr(4087), " [50613]");
}

TEST_F(FilledInStatusStringsTest, PrintsTheLargestDouble) {
  GRUtilStatusData::pushBegin(912);
  GRUtilStatusData::pushDouble(-1.7976931348623157e308);
  GRUtilStatusData::pushEnd();
  const std::string message = gr_lastStatusString(912);
  EXPECT_EQ(message.size(), std::string("status test double= [912]").size() + 317);
}

TEST_F(StatusStringsTest, ExpandsPercentSignsAndUnknownPlaceholdersWithoutAFrame) {
  EXPECT_EQ(expand("100%% sure").text, "100% sure");
  EXPECT_EQ(expand("%q").text, "q");
  EXPECT_EQ(expand("ends in %").text, "ends in ");
  EXPECT_EQ(expand("%%%").text, "%");
  EXPECT_EQ(expand("%%d").text, "%d");
  EXPECT_EQ(expand("%d").result, GR_STATUS_STATUS_DATA);
}

TEST_F(StatusStringsTest, CutsAnExpansionToItsRoom) {
  EXPECT_EQ(expand("abcdef", 4).text, "abc");
  EXPECT_EQ(expand("abcdef", 1).text, "");
}

}  // namespace
