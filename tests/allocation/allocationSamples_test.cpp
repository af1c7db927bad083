// Lets every single allocation fail while a sample is opened and decoded. That must end in a status
// (or in GRUtilException(8), where a constructor has no other way) or in the right picture, leave
// nothing, and leave a handle that decodes once there is memory again.
#include <gtest/gtest.h>

#include <algorithm>
#include <vector>

#include "gr_lib_utils/include/gr_exception.h"
#include "gr_lib_utils/include/gr_status.h"
#include "tests/allocation/failing_gcrypt.h"
#include "tests/allocation/failing_new.h"
#include "tests/support/host_stream.h"
#include "tests/support/sample_files.h"

namespace {

using failing_new::Extent;
using Statuses = std::vector<GR_STATUS>;

/// How a sample is opened; the stream is for those that use it.
using Open = GR_STATUS (*)(gric_image*, const SampleFile&, gr_ioCStream);

GR_STATUS openNitfFile(gric_image* image, const SampleFile& file, gr_ioCStream) {
  return gric_openNITFImageFile(image, file.path.c_str());
}
GR_STATUS openTesraFile(gric_image* image, const SampleFile& file, gr_ioCStream) {
  return gric_openTesraImageFile(image, file.path.c_str());
}
GR_STATUS openTesraStream(gric_image* image, const SampleFile&, gr_ioCStream stream) {
  return gric_openTesraImageStream(image, stream);
}

/// Opens a sample, gives its password and decodes it. Closes it at the end.
class Use {
 public:
  /// @param picture  receives the samples; see decodeCorners
  Use(const SampleFile& file, Open open, gr_ioCStream stream, SampleBytes& picture) {
    try {
      m_status = open(&m_image, file, stream);
      if (m_status == 0 && !file.password.empty()) {
        m_status = gric_setTesraPassword(m_image, file.password.c_str());
      }
      m_isReady = m_status == 0;
      if (m_isReady) m_status = decodeCorners(m_image, picture);
    } catch (const GRUtilException& exception) {
      m_status = exception.getStatus();
      EXPECT_EQ(m_status, GR_STATUS_NO_MEMORY);
    }
  }
  ~Use() {
    if (m_image != nullptr) gric_closeImage(m_image);
  }
  Use(const Use&) = delete;
  Use& operator=(const Use&) = delete;

  GR_STATUS status() const { return m_status; }
  bool isReady() const { return m_isReady; }  ///< to be decoded
  GR_STATUS decodeAgain(SampleBytes& picture) const { return decodeCorners(m_image, picture); }

 private:
  gric_image m_image = nullptr;
  GR_STATUS m_status = GR_STATUS_OK;
  bool m_isReady = false;
};

void useWithFailures(const SampleFile& file, Open open, Extent extent, const Statuses& allowed) {
  SCOPED_TRACE(file.name);
  const SampleBytes bytes = bytesOf(file);
  HostStream host(bytes);
  SampleBytes expected;
  const GR_STATUS expectedStatus = Use(file, open, host.handle(), expected).status();
  SampleBytes picture = expected;  // with its room
  {
    const failing_new::Period period(0, extent);
    const Use counted(file, open, host.handle(), picture);
  }
  const size_t allocations = failing_new::tried();
  ASSERT_GT(allocations, 20u);
#ifdef GRI_SANITIZED
  const size_t step = 1 + allocations / 50;
#else
  const size_t step = 1;
#endif
  for (size_t number = 1; number <= allocations; number += step) {
    SCOPED_TRACE(number);
    host.freeDuplicates();
    const std::ptrdiff_t before = failing_new::liveBlocks();
    ASSERT_EQ(initializeStatusStrings(), 0u);  // the details of failures take memory too
    {
      failing_new::Period period(number, extent);
      const Use use(file, open, host.handle(), picture);
      period.end();
      if (use.status() != expectedStatus) {
        EXPECT_NE(std::find(allowed.begin(), allowed.end(), use.status()), allowed.end())
            << "status " << use.status();
      } else {
        EXPECT_TRUE(picture == expected) << "another picture";
      }
      if (use.isReady()) {
        EXPECT_EQ(use.decodeAgain(picture), expectedStatus);
        EXPECT_TRUE(picture == expected) << "another picture when there is memory again";
      }
    }
    EXPECT_EQ(terminateStatusStrings(), 0u);
    host.freeDuplicates();
    EXPECT_EQ(failing_new::liveBlocks(), before) << "leaked";
  }
}

void useAllWithFailures(const std::vector<SampleFile>& files, Open open, const Statuses& allowed) {
  const FailingGcrypt gcrypt;
  testing::internal::CaptureStderr();  // notes about extensions, again and again
  for (const SampleFile& file : files) {
    useWithFailures(file, open, Extent::ALONE, allowed);
    useWithFailures(file, open, Extent::ALL_BEHIND, allowed);
  }
  static_cast<void>(testing::internal::GetCapturedStderr());
}

TEST(AllocationSamplesTest, NitfFilesOpenAndDecodeOrSaySo) {
  useAllWithFailures(
      nitfSampleFiles(), openNitfFile,
      {GR_STATUS_NO_MEMORY, NITF_STATUS_NO_MEMORY, NITF_STATUS_OPEN_ERROR,
       NITF_STATUS_DUPLICATE_STREAM, GRI_STATUS_READ_ERROR /* no stream on the world file */});
}

TEST(AllocationSamplesTest, TesraFilesOpenAndDecodeOrSaySo) {
  useAllWithFailures(tesraSampleFiles(), openTesraFile,
                     {GR_STATUS_NO_MEMORY, TG3_STATUS_NO_MEMORY, GRI_STATUS_FILTER_NO_MEMORY,
                      GRI_STATUS_FILTER_ARGUMENT /* no resampler */, TESRA_STATUS_CANNOT_OPEN});
}

TEST(AllocationSamplesTest, TesraStreamsOpenAndDecodeOrSaySo) {
  useAllWithFailures(
      tesraSampleFiles(), openTesraStream,
      {GR_STATUS_NO_MEMORY, TG3_STATUS_NO_MEMORY, GRI_STATUS_FILTER_NO_MEMORY,
       GRI_STATUS_FILTER_ARGUMENT /* no resampler */, TG3_STATUS_OPEN_ERROR /* no duplicate */,
       HostStream::REFUSED /* a duplicate that the host couldn't make */});
}

}  // namespace
