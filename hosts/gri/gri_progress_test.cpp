#include "hosts/gri/gri_progress.h"

#include <gtest/gtest.h>

#include <sstream>
#include <thread>

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
    GRIProgress progress(&out, 100);
    progress.show(0.5);
  }
  EXPECT_EQ(out.str(), "");
}

TEST(GRIProgressTest, TheLineIsWipedAtTheEnd) {
  std::ostringstream out;
  {
    GRIProgress progress(&out, 100);
    std::this_thread::sleep_for(std::chrono::milliseconds(320));
    progress.show(0.5);
    progress.show(0.6);  // too soon after the last
  }
  EXPECT_EQ(out.str().find("60%"), std::string::npos);
  EXPECT_NE(out.str().find("50%"), std::string::npos);
  EXPECT_TRUE(out.str().ends_with("\r\x1B[K"));
}
