#include "hosts/common/gri_hostError.h"

#include <gtest/gtest.h>

#include <new>

TEST(GRIHostErrorTest, ASuccessIsNoError) {
  EXPECT_FALSE(gri_hostErrorOf(GRIC_STATUS_OK));
  EXPECT_FALSE(GRIHostError());
}

TEST(GRIHostErrorTest, TheTextIsTheLibrarysWithoutTheNumber) {
  const GRIHostError error = gri_hostErrorOf(50015);
  EXPECT_TRUE(error);
  EXPECT_EQ(error.status, 50015u);
  EXPECT_EQ(error.text, "scene magnification out of range");
}

TEST(GRIHostErrorTest, StatusesWithoutWordsInTheLibraryGetOurs) {
  EXPECT_EQ(gri_hostErrorOf(GRIC_STATUS_NO_MEMORY).text, "not enough memory");
  EXPECT_EQ(gri_hostErrorOf(GRIC_STATUS_NULL_ARGUMENT).text, "required argument missing");
  EXPECT_EQ(gri_hostErrorOf(GRIC_STATUS_OUT_OF_RANGE).text, "number out of range");
  EXPECT_EQ(gri_hostErrorOf(4711).text, "unknown status");
  EXPECT_EQ(gri_hostErrorOf(0xFFFFFFFE).text, "unknown status");  // the library's [-2]
}

TEST(GRIHostErrorTest, DetailsThatAreMissingAreAQuestionMark) {
  EXPECT_EQ(gri_hostErrorOf(50613).text, "can't open file: ?");
  const GRIHostMessages messages;
  EXPECT_EQ(gri_hostErrorOf(50613).text, "can't open file: ?");
}

TEST(GRIHostErrorTest, AnyExceptionThatCrossesTheInterfaceBecomesStatus8) {
  struct Unknown {};
  EXPECT_EQ(gri_hostStatusOf([]() -> GR_STATUS { throw Unknown(); }), 8u);
  EXPECT_EQ(gri_hostStatusOf([]() -> GR_STATUS { throw std::bad_alloc(); }), 8u);
  EXPECT_EQ(gri_hostCall([]() -> double { throw 1; }, 0.25), 0.25);
  EXPECT_EQ(gri_hostStatusOf([]() -> GR_STATUS { return 50013; }), 50013u);
}

TEST(GRIHostErrorTest, MessagesAreTurnedOffOnlyByWhomTheyWereTurnedOn) {
  {
    const GRIHostMessages outer;
    { const GRIHostMessages inner; }
    EXPECT_EQ(initializeStatusStrings(), 3070u);  // still on
  }
  EXPECT_EQ(terminateStatusStrings(), 3070u);  // off
}
