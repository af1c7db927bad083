// Every answer that a host's stream gives may be wrong. Whatever it says, an open or a decode ends
// in a status or in the right picture, and the handle stays good for the next decode.
#include <gtest/gtest.h>

#include "tests/support/host_stream.h"
#include "tests/support/sample_files.h"

namespace {

/// An image on a host's stream.
class Image {
 public:
  Image(const SampleFile& file, gr_ioCStream stream)
      : m_status(gric_openTesraImageStream(&m_image, stream)) {
    if (m_status != 0 || file.password.empty()) return;
    EXPECT_EQ(gric_setTesraPassword(m_image, file.password.c_str()), 0u);
  }
  ~Image() {
    if (m_image != nullptr) gric_closeImage(m_image);
  }
  Image(const Image&) = delete;
  Image& operator=(const Image&) = delete;

  GR_STATUS status() const { return m_status; }
  GR_STATUS decode(SampleBytes& samples) const { return decodeCorners(m_image, samples); }

 private:
  gric_image m_image = nullptr;
  GR_STATUS m_status;
};

/// A sample, and what it gives on a stream without faults.
struct Sample {
  explicit Sample(const SampleFile& sampleFile) : file(sampleFile), bytes(bytesOf(sampleFile)) {
    HostStream host(bytes);
    {
      const Image image(file, host.handle());
      EXPECT_EQ(image.status(), 0u);
      status = image.decode(picture);
    }
    numAnswers = host.numAnswers();
  }

  const SampleFile& file;
  SampleBytes bytes;
  GR_STATUS status = 0;  // some are too small for half the size
  SampleBytes picture;
  size_t numAnswers = 0;
};

/// Opens, decodes and closes a sample with faults, and decodes once more when they are over.
/// @return whether the library told of them
bool useWith(const Sample& sample, size_t number, HostFault fault, HostExtent extent) {
  const bool canBeSeen = fault != HostFault::NONSENSE;
  bool isTold = false;
  HostStream host(sample.bytes);
  host.failAt(number, fault, extent);
  {
    const Image image(sample.file, host.handle());
    isTold = image.status() != 0;
    if (image.status() == 0) {
      SampleBytes picture;
      const GR_STATUS status = image.decode(picture);
      isTold = status != sample.status;
      if (canBeSeen && !isTold) {
        EXPECT_TRUE(picture == sample.picture) << "another picture";
      }
      host.neverFail();
      const GR_STATUS again = image.decode(picture);
      if (canBeSeen) {
        EXPECT_EQ(again, sample.status);
        EXPECT_TRUE(picture == sample.picture) << "another picture behind the fault";
      }
    }
    host.neverFail();
  }
  if (canBeSeen) {
    EXPECT_EQ(host.numOpen(), 0u);
    EXPECT_FALSE(host.wasUsedClosed());
  }
  host.freeDuplicates();  // nobody may ask them any more
  EXPECT_FALSE(host.wasWritten());
  return isTold;
}

/// Lets one answer after the other be wrong, or all from there on.
void useWithFaults(HostFault fault, HostExtent extent) {
  size_t tried = 0;
  size_t told = 0;
  for (const SampleFile& file : tesraSampleFiles()) {
    SCOPED_TRACE(file.name);
    const Sample sample(file);
#ifdef GRI_SANITIZED
    const size_t step = 1 + sample.numAnswers / 100;
#else
    const size_t step = 1;
#endif
    for (size_t number = 1; number <= sample.numAnswers; number += step) {
      SCOPED_TRACE(number);
      ++tried;
      if (useWith(sample, number, fault, extent)) ++told;
    }
  }
  EXPECT_GT(tried, 3000u);
  EXPECT_GT(told, tried / 4);
}

TEST(HostStreamTest, OneRefusalEndsInAStatusOrHarmsNothing) {
  useWithFaults(HostFault::REFUSAL, HostExtent::ALONE);
}

TEST(HostStreamTest, RefusalsFromSomeAnswerOnEndInAStatus) {
  useWithFaults(HostFault::REFUSAL, HostExtent::ALL_BEHIND);
}

TEST(HostStreamTest, OneShortReadEndsInAStatusOrHarmsNothing) {
  useWithFaults(HostFault::CUT_READ, HostExtent::ALONE);
}

TEST(HostStreamTest, ShortReadsFromSomeAnswerOnEndInAStatus) {
  useWithFaults(HostFault::CUT_READ, HostExtent::ALL_BEHIND);
}

TEST(HostStreamTest, OneNonsenseAnswerIsSurvived) {
  useWithFaults(HostFault::NONSENSE, HostExtent::ALONE);
}

TEST(HostStreamTest, NonsenseFromSomeAnswerOnIsSurvived) {
  useWithFaults(HostFault::NONSENSE, HostExtent::ALL_BEHIND);
}

}  // namespace
