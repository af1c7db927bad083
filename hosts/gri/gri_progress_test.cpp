#include "hosts/gri/gri_progress.h"

#include <gtest/gtest.h>

#include <sstream>

namespace {

// A clock that stands still until a test moves it.
GRIProgress::Clock::time_point theTime;
GRIProgress::Clock::time_point theClock() { return theTime; }

TEST(GRIProgressTest, TheLineTellsShareRateAndTimeLeft) {
  EXPECT_EQ(GRIProgress::line(0.5, 1e9, 5), " 50%  100 Mpixel/s  0:05 left");
  EXPECT_EQ(GRIProgress::line(0.25, 1e6, 60), " 25%  0.0 Mpixel/s  3:00 left");
  EXPECT_EQ(GRIProgress::line(0.5, 1e9, 4000), " 50%  0.1 Mpixel/s  1:06:40 left");
  EXPECT_EQ(GRIProgress::line(0.999, 1e6, 1), " 99%  1.0 Mpixel/s  0:01 left");
}

TEST(GRIProgressTest, TheFirstMomentsSayNothingOfTheRest) {
  EXPECT_EQ(GRIProgress::line(0, 1e9, 0), "  0%  0.0 Mpixel/s");
}

TEST(GRIProgressTest, ShortWorkShowsNothing) {
  std::ostringstream out;
  {
    GRIProgress progress(&out, 100, theClock);
    theTime += std::chrono::milliseconds(299);
    progress.show(0.5);
  }
  EXPECT_EQ(out.str(), "");
}

TEST(GRIProgressTest, TheLineIsRewrittenNowAndThenAndWipedAtTheEnd) {
  std::ostringstream out;
  {
    GRIProgress progress(&out, 100, theClock);
    theTime += std::chrono::milliseconds(300);
    progress.show(0.5);
    theTime += std::chrono::milliseconds(99);
    progress.show(0.6);  // too soon after the last
    theTime += std::chrono::milliseconds(1);
    progress.show(0.7);
  }
  EXPECT_NE(out.str().find("50%"), std::string::npos);
  EXPECT_EQ(out.str().find("60%"), std::string::npos);
  EXPECT_NE(out.str().find("70%"), std::string::npos);
  EXPECT_TRUE(out.str().ends_with("\r\x1B[K"));
}

}  // namespace
