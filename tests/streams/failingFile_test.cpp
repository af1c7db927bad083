// Every call to the file system may fail. An open or a decode then ends in a status or in the right
// picture, no file stays open, and the handle stays good for the next decode.
#include <gtest/gtest.h>

#include "tests/streams/failing_files.h"
#include "tests/support/sample_files.h"

namespace {

using failing_files::Extent;
using Open = GR_STATUS (*)(gric_image*, const char*);

/// Opens, decodes and closes.
struct Use {
  /// @param failingNumber  the call that fails; 0 for none
  Use(const SampleFile& file, Open open, size_t failingNumber, Extent extent) {
    gric_image image = nullptr;
    {
      const failing_files::Period period(failingNumber, extent);
      openStatus = open(&image, file.path.c_str());
      if (openStatus == 0) {
        if (!file.password.empty()) {
          EXPECT_EQ(gric_setTesraPassword(image, file.password.c_str()), 0u);
        }
        decodeStatus = decodeCorners(image, picture);
      }
      if (openStatus == 0 && failingNumber == 0) gric_closeImage(image);
      numCalls = failing_files::numCalls();
    }
    if (openStatus != 0) {
      EXPECT_EQ(image, nullptr);
    } else if (failingNumber != 0) {
      statusBehind = decodeCorners(image, pictureBehind);
      EXPECT_EQ(gric_closeImage(image), 0u);
    }
  }

  GR_STATUS openStatus = 0;
  GR_STATUS decodeStatus = 0;
  SampleBytes picture;
  size_t numCalls = 0;
  GR_STATUS statusBehind = 0;  // of a decode in peace
  SampleBytes pictureBehind;
};

struct Tally {
  size_t tried = 0;
  size_t told = 0;
};

void useWithFailures(const SampleFile& file, Open open, Extent extent, Tally& tally) {
  SCOPED_TRACE(file.name);
  const std::ptrdiff_t openBefore = failing_files::numOpen();
  const Use expected(file, open, 0, extent);
  ASSERT_EQ(expected.openStatus, 0u);
#ifdef GRI_SANITIZED
  const size_t step = 1 + expected.numCalls / 50;
#else
  const size_t step = 1;
#endif
  for (size_t number = 1; number <= expected.numCalls; number += step) {
    SCOPED_TRACE(number);
    const Use use(file, open, number, extent);
    EXPECT_EQ(failing_files::numOpen(), openBefore);
    ++tally.tried;
    if (use.openStatus != 0 || use.decodeStatus != expected.decodeStatus) {
      ++tally.told;
    } else {
      EXPECT_TRUE(use.picture == expected.picture) << "another picture";
    }
    if (use.openStatus != 0) continue;
    EXPECT_EQ(use.statusBehind, expected.decodeStatus);
    EXPECT_TRUE(use.pictureBehind == expected.picture) << "another picture behind the failure";
  }
}

void useAllWithFailures(const std::vector<SampleFile>& files, Open open, Extent extent) {
  Tally tally;
  testing::internal::CaptureStderr();  // notes about extensions, again and again
  for (const SampleFile& file : files) useWithFailures(file, open, extent, tally);
  static_cast<void>(testing::internal::GetCapturedStderr());
  EXPECT_GT(tally.tried, 1000u);
  EXPECT_GT(tally.told, tally.tried / 2);
}

TEST(FailingFileTest, OneFailureOfANitfFileEndsInAStatusOrHarmsNothing) {
  useAllWithFailures(nitfSampleFiles(), gric_openNITFImageFile, Extent::ALONE);
}

TEST(FailingFileTest, FailuresOfANitfFileEndInAStatus) {
  useAllWithFailures(nitfSampleFiles(), gric_openNITFImageFile, Extent::ALL_BEHIND);
}

TEST(FailingFileTest, OneFailureOfATesraFileEndsInAStatusOrHarmsNothing) {
  useAllWithFailures(tesraSampleFiles(), gric_openTesraImageFile, Extent::ALONE);
}

TEST(FailingFileTest, FailuresOfATesraFileEndInAStatus) {
  useAllWithFailures(tesraSampleFiles(), gric_openTesraImageFile, Extent::ALL_BEHIND);
}

}  // namespace
