// Lets every single allocation of an operation fail in turn. The operation must then end with a
// status (or with GRUtilException(8), where a constructor has no other way), and leave nothing.
#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cstdlib>
#include <functional>
#include <new>
#include <string>
#include <vector>

#include "gr_lib_utils/include/gr_exception.h"
#include "gr_lib_utils/include/gr_fileUtils.h"
#include "gr_lib_utils/include/gr_ioStreamUtils.h"
#include "gr_lib_utils/include/gr_ioSubStream.h"
#include "gr_lib_utils/include/gr_status.h"
#include "gr_lib_utils/include/gr_statusData.h"
#include "gri_rdk_cdll.h"
#include "gri_rdk_cdll/gri_fakeStage.h"
#include "tests/allocation/failing_gcrypt.h"
#include "tests/allocation/failing_new.h"

namespace {

/// How one run of an operation ended.
struct Outcome {
  GR_STATUS status = GR_STATUS_OK;
  bool hasThrown = false;
};

using failing_new::Extent;

/// Runs the operation while allocation `failingNumber` fails; 0 for none.
Outcome runOnce(const std::function<GR_STATUS()>& operation, size_t failingNumber,
                Extent extent = Extent::ALONE) {
  Outcome outcome;
  const failing_new::Period period(failingNumber, extent);
  try {
    outcome.status = operation();
  } catch (const GRUtilException& exception) {
    outcome = {exception.getStatus(), true};
  }
  return outcome;
}

/// Holds an operation to the contract for every allocation that it makes.
/// @param statuses  what it may return when one fails
void expectToSurvive(const std::function<GR_STATUS()>& operation,
                     const std::vector<GR_STATUS>& statuses) {
  ASSERT_EQ(runOnce(operation, 0).status, GR_STATUS_OK);  // and makes what is made only once
  const size_t allocations = failing_new::tried();
  ASSERT_GT(allocations, 0u);
  for (const Extent extent : {Extent::ALONE, Extent::ALL_BEHIND}) {
    for (size_t number = 1; number <= allocations; ++number) {
      SCOPED_TRACE("allocation " + std::to_string(number));
      const std::ptrdiff_t before = failing_new::liveBlocks();
      Outcome outcome;
      ASSERT_NO_THROW(outcome = runOnce(operation, number, extent)) << "another exception crosses";
      EXPECT_NE(std::find(statuses.begin(), statuses.end(), outcome.status), statuses.end())
          << "status " << outcome.status;
      if (outcome.hasThrown) {
        EXPECT_EQ(outcome.status, GR_STATUS_NO_MEMORY);
      }
      EXPECT_EQ(failing_new::liveBlocks(), before) << "leaked";
    }
  }
  EXPECT_EQ(runOnce(operation, 0).status, GR_STATUS_OK);
}

TEST(AllocationFailureTest, MemoryStreamsReportIt) {
  const std::vector<gr_uint8> bytes(100, 7);
  expectToSurvive(
      [&]() -> GR_STATUS {
        GRIODynamicMemStream stream;
        GR_RETURN_IF_FAILED(
            stream.initialize(4, failing_new::alloc, failing_new::realloc, std::free, 1.5F));
        GR_RETURN_IF_FAILED(stream.open());
        for (int i = 0; i < 20; ++i) {
          if (stream.write(bytes.data(), 100) != 100) return stream.getLastError();
        }
        const auto copy = GRIOStreamUtils::duplicateAt(stream);
        return copy == nullptr ? GR_STATUS_NO_MEMORY : GR_STATUS_OK;
      },
      {GRIO_STATUS_NO_MEMORY, GR_STATUS_NO_MEMORY});
}

TEST(AllocationFailureTest, StreamUtilitiesReportIt) {
  expectToSurvive(
      []() -> GR_STATUS {
        const auto source = GRIOStreamUtils::openMemStream();
        const auto target = GRIOStreamUtils::openMemStream();
        if (source == nullptr || target == nullptr) return GR_STATUS_NO_MEMORY;
        GR_RETURN_IF_FAILED(GRIOStreamUtils::printf(*source, "%2000d", 5));
        GR_RETURN_IF_FAILED(source->seek(0, GRIO_SEEK_BEGIN));
        GR_RETURN_IF_FAILED(GRIOStreamUtils::copy(*target, *source, 1000));
        GR_RETURN_IF_FAILED(GRIOStreamUtils::copy(*target, *source));
        return GRIOStreamUtils::compare(*source, *target) ? GR_STATUS_OK : GR_STATUS_NO_MEMORY;
      },
      {GR_STATUS_NO_MEMORY});
}

TEST(AllocationFailureTest, FileStreamsReportIt) {
  expectToSurvive(
      []() -> GR_STATUS {
        GRFileSpec path;
        GR_RETURN_IF_FAILED(GRFileUtils::makeTempFile(GRFileSpec(), nullptr, path));
        struct Remover {
          const GRFileSpec& path;
          ~Remover() { static_cast<void>(std::remove(path.utf8())); }
        } const remover{path};
        const auto stream = GRIOStreamUtils::openFileStream(path);
        if (stream == nullptr) return GR_STATUS_NO_MEMORY;
        const auto copy = GRIOStreamUtils::duplicateAt(*stream);
        return copy == nullptr ? GR_STATUS_NO_MEMORY : GR_STATUS_OK;
      },
      {GR_STATUS_NO_MEMORY});
}

TEST(AllocationFailureTest, PathsThrowTheirOneException) {
  expectToSurvive(
      []() -> GR_STATUS {
        GRFileSpec path("directory", "name.suffix");
        path.replaceSuffix("other");
        const GRFileSpec parent = path.parent();
        const GRFileSpec copy(parent, "name");
        return copy.wide()[0] == u'd' ? GR_STATUS_OK : GR_STATUS_FAILURE;
      },
      {GR_STATUS_NO_MEMORY});
}

TEST(AllocationFailureTest, StatusDataThrowsItsOneExceptionAndStaysUsable) {
  expectToSurvive(
      []() -> GR_STATUS {
        GR_RETURN_IF_FAILED(initializeStatusStrings());
        struct Terminator {
          ~Terminator() { terminateStatusStrings(); }
        } const terminator;
        GRUtilStatusData::pushBegin(TESRA_STATUS_CANNOT_OPEN);
        GRUtilStatusData::pushFileSpec(GRFileSpec("a/path"));
        GRUtilStatusData::pushString("more");
        GRUtilStatusData::pushEnd();
        const std::string_view message = getLastStatusString(TESRA_STATUS_CANNOT_OPEN);
        return message == "can't open file: a/path [50613]" ? GR_STATUS_OK : GR_STATUS_FAILURE;
      },
      {GR_STATUS_NO_MEMORY});
}

gr_uint8 isNever(void*) { return 0; }
void* duplicateOfNull(void*) { return nullptr; }

TEST(AllocationFailureTest, CallbackStreamsAreNull) {
  expectToSurvive(
      []() -> GR_STATUS {
        const gr_ioCStream stream =
            gr_ioCallbackStreamCreate(nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, isNever,
                                      isNever, duplicateOfNull, nullptr);
        if (stream == nullptr) return GR_STATUS_NO_MEMORY;
        const gr_ioCStream copy = gr_ioCStreamDuplicate(stream);
        const bool hasCopy = copy != nullptr;
        gr_ioCStreamDestroy(copy);
        gr_ioCStreamDestroy(stream);
        return hasCopy ? GR_STATUS_OK : GR_STATUS_NO_MEMORY;
      },
      {GR_STATUS_NO_MEMORY});
}

TEST(AllocationFailureTest, ADecodeEndsWithAStatusAndLeavesTheHandleUsable) {
  const gric_image image = FakeStage::open();
  std::vector<std::vector<gr_uint16>> planes(FakeStage::BANDS,
                                             std::vector<gr_uint16>(size_t{100} * 70));
  std::array<void*, FakeStage::BANDS> pointers{};
  for (size_t band = 0; band < planes.size(); ++band) pointers[band] = planes[band].data();
  expectToSurvive([&] { return gric_decode(image, 0, 0, 100, 70, 1.0, pointers.data()); },
                  {GR_STATUS_NO_MEMORY});
  EXPECT_EQ(gric_closeImage(image), 0u);
}

TEST(AllocationFailureTest, MessagesNeedNoMemory) {
  ASSERT_EQ(initializeStatusStrings(), 0u);
  GRUtilStatusData::pushBegin(TESRA_STATUS_CANNOT_OPEN);
  GRUtilStatusData::pushFileSpec(GRFileSpec("a/path"));
  GRUtilStatusData::pushEnd();
  {
    const failing_new::Period period(1, Extent::ALL_BEHIND);
    const char* const message = getLastStatusString(TESRA_STATUS_CANNOT_OPEN);
    EXPECT_STREQ(message, "can't open file: a/path [50613]");
    EXPECT_EQ(failing_new::tried(), 0u);
  }
  EXPECT_EQ(terminateStatusStrings(), 0u);
}

}  // namespace
