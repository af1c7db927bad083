#include "image/gri_imageStage.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <limits>
#include <string>
#include <vector>

#include "gr_lib_utils/include/gr_smartPointer.h"
#include "gr_lib_utils/include/gr_status.h"
#include "image/gri_delegates.h"
#include "image/gri_imageFilter.h"
#include "image/gri_navigator.h"
#include "tests/support/gri_patternReader.h"

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

constexpr GR_STATUS STOPPED = 4711;
constexpr GR_STATUS BROKEN = 4712;
constexpr double NOT_A_NUMBER = std::numeric_limits<double>::quiet_NaN();

class Progress final : public GRIProgressDelegate {
 public:
  GR_STATUS setProgress(float progress) override {
    values.push_back(progress);
    return values.size() == failingCall ? STOPPED : GR_STATUS_OK;
  }
  std::vector<float> values;
  size_t failingCall = 0;  // from 1
};

class Interrupt final : public GRIInterruptDelegate {
 public:
  GR_STATUS getInterruptStatus() override {
    return ++calls == failingCall ? STOPPED : GR_STATUS_OK;
  }
  size_t calls = 0;
  size_t failingCall = 0;  // from 1
};

const GRIPixel& gray() {
  static const GRIPixel PIXEL(GRI_COLORSPACE_GRAYSCALE, 1, GRI_DATATYPE_UINT8);
  return PIXEL;
}

/// A buffer of its own for the scene, of one gray band unless told otherwise.
class Target {
 public:
  explicit Target(gr_uint32 numCols, gr_uint32 numRows, const GRIPixel& pixel = gray())
      : buffer(pixel, numCols, numRows, nullptr) {}
  gr_uint8 at(gr_uint32 col, gr_uint32 row) const {
    return *static_cast<gr_uint8*>(buffer.getSample(col, row, 0));
  }
  GRISceneBuffer buffer;
};

/// A reader of 40 columns and 200 rows, for magnifications from 0.5 to 1.
class GRIImageStageTest : public testing::Test {
 protected:
  GRIImageStageTest() : m_reader(new GRIPatternReader) {
    EXPECT_EQ(m_reader->initialize(40, 200, gray(), 0.5, 1.0), GR_STATUS_OK);
    m_reader->logTo(log);
  }
  GRIPatternReader& reader() { return *m_reader; }

  GR_STATUS read(const GRIScene& scene) {
    Target target(1000, 1000);
    return reader().read(scene, target.buffer);
  }
  static GRIScene rows(double numRows) { return {0, 0, 40, numRows, 1.0}; }

  GRICallLog log;
  Progress progress;
  Interrupt interrupt;

 private:
  GRUtilSmartPointer<GRIPatternReader> m_reader;
};

TEST_F(GRIImageStageTest, ReadsTheWholeSceneIntoTheUpperLeftOfALargerBuffer) {
  Target target(50, 150);
  ASSERT_EQ(reader().read(GRIScene(3, 5, 20, 130, 1.0), target.buffer), GR_STATUS_OK);
  for (gr_uint32 row = 0; row < 150; ++row) {
    for (gr_uint32 col = 0; col < 50; ++col) {
      const bool isInside = col < 20 && row < 130;
      const gr_uint8 expected =
          isInside ? GRIPatternReader::valueAt<gr_uint8>(col + 3, row + 5, 0) : 0;
      ASSERT_EQ(target.at(col, row), expected) << col << ", " << row;
    }
  }
}

TEST_F(GRIImageStageTest, CutsASceneIntoStripsFromTopToBottom) {
  EXPECT_EQ(read(rows(65)), GR_STATUS_OK);
  EXPECT_THAT(log, ElementsAre("begin", "strip 0+64", "strip 64+1", "end"));
}

TEST_F(GRIImageStageTest, FollowsTheStripHeightThatIsSet) {
  ASSERT_EQ(reader().setStripHeight(100), GR_STATUS_OK);
  EXPECT_EQ(read(GRIScene(0, 7, 40, 150, 1.0)), GR_STATUS_OK);
  EXPECT_THAT(log, ElementsAre("begin", "strip 7+100", "strip 107+50", "end"));
}

TEST_F(GRIImageStageTest, AStripHeightOfZeroOrOfMoreThan31BitsIsAStatus) {
  for (const gr_uint32 height : {0u, 0x80000000u, 0xFFFFFFFFu}) {
    ASSERT_EQ(reader().setStripHeight(height), GR_STATUS_OK);
    EXPECT_EQ(read(rows(10)), GRI_STATUS_INVALID_ARGUMENT) << height;
  }
  EXPECT_THAT(log, IsEmpty());
}

TEST_F(GRIImageStageTest, AStripMayBeHigherThanAnyScene) {
  ASSERT_EQ(reader().setStripHeight(0x7FFFFFFF), GR_STATUS_OK);
  EXPECT_EQ(read(rows(200)), GR_STATUS_OK);
  EXPECT_THAT(log, ElementsAre("begin", "strip 0+200", "end"));
}

TEST_F(GRIImageStageTest, AMagnificationOutOfRangeFailsBeforeTheStageHearsOfIt) {
  for (const double mag : {0.49, 1.01, 100.0, NOT_A_NUMBER}) {
    GRINavigator scene(reader());
    scene.zoomTo(mag, GRI_NAVIGATOR_STRICT);
    EXPECT_EQ(read(scene), GRI_STATUS_SCENE_MAGNIFICATION) << mag;
  }
  EXPECT_THAT(log, IsEmpty());
}

TEST_F(GRIImageStageTest, ASceneOutsideOfTheImageIsEmpty) {
  EXPECT_EQ(read(GRIScene(40, 0, 10, 10, 1.0)), GRI_STATUS_SCENE_EMPTY);
  EXPECT_EQ(read(GRIScene(0, -10, 10, 10, 1.0)), GRI_STATUS_SCENE_EMPTY);
  EXPECT_EQ(read(GRIScene(0, 0, 0, 0, 1.0)), GRI_STATUS_SCENE_EMPTY);
  EXPECT_THAT(log, IsEmpty());
}

TEST_F(GRIImageStageTest, ASceneThatSticksOutByMoreThanHalfAPixelIsOutOfRange) {
  EXPECT_EQ(read(GRIScene(20, 0, 20.6, 10, 1.0)), GRI_STATUS_SCENE_OUT_OF_RANGE);
  EXPECT_EQ(read(GRIScene(-0.6, 0, 10, 10, 1.0)), GRI_STATUS_SCENE_OUT_OF_RANGE);
  EXPECT_EQ(read(GRIScene(0, 190, 10, 10.6, 1.0)), GRI_STATUS_SCENE_OUT_OF_RANGE);
  EXPECT_EQ(read(GRIScene(0, 0, 21, 10, 0.5)), GRI_STATUS_SCENE_OUT_OF_RANGE);
  EXPECT_THAT(log, IsEmpty());
}

TEST_F(GRIImageStageTest, ASceneThatSticksOutByLessThanHalfAPixelPasses) {
  EXPECT_EQ(read(GRIScene(20, 0, 20.4, 10, 1.0)), GR_STATUS_OK);
  EXPECT_EQ(read(GRIScene(-0.4, -0.4, 10, 10, 1.0)), GR_STATUS_OK);
}

TEST_F(GRIImageStageTest, HalfAPixelPassesOnTheLeftAndFailsOnTheRight) {
  EXPECT_EQ(read(GRIScene(-0.5, 0, 10, 10, 1.0)), GR_STATUS_OK);
  EXPECT_EQ(read(GRIScene(30, 0, 10.5, 10, 1.0)), GRI_STATUS_SCENE_OUT_OF_RANGE);
}

TEST_F(GRIImageStageTest, ABufferThatIsTooSmallFailsFirstOfAll) {
  Target narrow(39, 200), low(40, 199), other(39, 10, {GRI_COLORSPACE_RGB, 3, GRI_DATATYPE_UINT8});
  const GRIScene magnified(0, 0, 40, 200, 77.0);  // also out of range
  EXPECT_EQ(reader().read(rows(200), narrow.buffer), GRI_STATUS_SCENE_BUFFER_SIZE);
  EXPECT_EQ(reader().read(rows(200), low.buffer), GRI_STATUS_SCENE_BUFFER_SIZE);
  EXPECT_EQ(reader().read(rows(200), other.buffer), GRI_STATUS_SCENE_BUFFER_SIZE);
  EXPECT_EQ(reader().read(magnified, narrow.buffer), GRI_STATUS_SCENE_BUFFER_SIZE);
  EXPECT_THAT(log, IsEmpty());
}

TEST_F(GRIImageStageTest, ABufferOfOtherPixelsFailsBeforeTheSceneIsTested) {
  Target wide(40, 200, {GRI_COLORSPACE_GRAYSCALE, 1, GRI_DATATYPE_UINT16});
  Target colored(40, 200, {GRI_COLORSPACE_RGB, 3, GRI_DATATYPE_UINT8});
  const GRIScene magnified(0, 0, 40, 200, 77.0);
  EXPECT_EQ(reader().read(magnified, wide.buffer), GRI_STATUS_IMPEDANCE_DATATYPE);
  EXPECT_EQ(reader().read(magnified, colored.buffer), GRI_STATUS_IMPEDANCE_COLORSPACE);
  EXPECT_THAT(log, IsEmpty());
}

TEST_F(GRIImageStageTest, AStripWithoutColumnsIsTooLarge) {
  EXPECT_EQ(read(GRIScene(0.5, 0, 0.4, 100, 1.0)), GRI_STATUS_SCENE_TOO_LARGE);
  EXPECT_THAT(log, ElementsAre("begin", "end"));
}

TEST(GRIImageStageLimitsTest, AStripOfAMultipleOf4GiSamplesIsTooLarge) {
  GRICallLog log;
  const GRUtilSmartPointer<GRIPatternReader> reader(new GRIPatternReader);
  ASSERT_EQ(reader->initialize(65536, 65536, gray()), GR_STATUS_OK);
  ASSERT_EQ(reader->setStripHeight(65536), GR_STATUS_OK);
  reader->logTo(log);
  gr_uint8 never = 0;  // no strip gets as far as to be written
  void* plane = &never;
  GRISceneBuffer buffer(gray(), 65536, 65536, &plane);
  EXPECT_EQ(reader->read(GRIScene(0, 0, 65536, 65536, 1.0), buffer), GRI_STATUS_SCENE_TOO_LARGE);
  EXPECT_THAT(log, ElementsAre("begin", "end"));
}

TEST(GRIImageStageLimitsTest, PixelsWithoutA32BitNumberAreOutOfReach) {
  GRICallLog log;
  const GRUtilSmartPointer<GRIPatternReader> reader(new GRIPatternReader);
  ASSERT_EQ(reader->initialize(0xFFFFFFFF, 0xFFFFFFFF, gray()), GR_STATUS_OK);
  reader->logTo(log);
  Target target(10, 10);
  const auto read = [&](double column, double row) {
    return reader->read(GRIScene(column, row, 10, 10, 1.0), target.buffer);
  };
  constexpr double END = 0x7FFFFFFF;
  for (const double outside : {END - 9, END, 3e9}) {
    EXPECT_EQ(read(outside, 0), GRI_STATUS_SCENE_TOO_LARGE) << outside;
    EXPECT_EQ(read(0, outside), GRI_STATUS_SCENE_TOO_LARGE) << outside;
  }
  EXPECT_THAT(log, IsEmpty());
  ASSERT_EQ(read(END - 10, END - 10), GR_STATUS_OK);
  EXPECT_EQ(target.at(9, 9), GRIPatternReader::valueAt<gr_uint8>(0x7FFFFFFE, 0x7FFFFFFE, 0));
}

TEST_F(GRIImageStageTest, AFailedBeginEndsTheReadWithoutAnEnd) {
  reader().failAt("begin", BROKEN);
  EXPECT_EQ(read(rows(100)), BROKEN);
  EXPECT_THAT(log, ElementsAre("begin"));
}

TEST_F(GRIImageStageTest, AFailedStripIsTheResultAndTheDecodeStillEnds) {
  reader().failAt("strip", BROKEN, 70);
  reader().failAt("end", STOPPED);
  EXPECT_EQ(read(rows(200)), BROKEN);
  EXPECT_THAT(log, ElementsAre("begin", "strip 0+64", "strip 64+64", "end"));
  EXPECT_FALSE(reader().isDecoding());
}

TEST_F(GRIImageStageTest, AFailedEndIsTheResultOfAReadThatWasGood) {
  reader().failAt("end", BROKEN);
  EXPECT_EQ(read(rows(64)), BROKEN);
}

TEST_F(GRIImageStageTest, IsUsableAfterEveryFailure) {
  for (const char* call : {"begin", "strip", "end"}) {
    SCOPED_TRACE(call);
    const GRUtilSmartPointer<GRIPatternReader> stage(new GRIPatternReader);
    ASSERT_EQ(stage->initialize(40, 200, gray()), GR_STATUS_OK);
    stage->failAt(call, BROKEN, 0);
    Target target(40, 200);
    EXPECT_EQ(stage->read(rows(200), target.buffer), BROKEN);
    stage->failAt(call, GR_STATUS_OK, 0);
    EXPECT_EQ(stage->read(rows(200), target.buffer), GR_STATUS_OK);
  }
}

TEST_F(GRIImageStageTest, MayDieInTheMiddleOfADecode) {
  GRIPatternReader* stage = new GRIPatternReader;
  ASSERT_EQ(stage->initialize(40, 200, gray()), GR_STATUS_OK);
  ASSERT_EQ(stage->readBegin(rows(200)), GR_STATUS_OK);
  EXPECT_EQ(stage->release(), 0);  // the address sanitizer sees whether anything is left
}

TEST_F(GRIImageStageTest, ReportsThePartThatIsBehind) {
  reader().setProgressDelegate(&progress);
  EXPECT_EQ(read(GRIScene(0, 50, 40, 128, 1.0)), GR_STATUS_OK);
  EXPECT_THAT(progress.values, ElementsAre(0.0F, 0.0F, 0.5F, 1.0F));
}

TEST_F(GRIImageStageTest, AnInterruptAtTheFirstCheckEndsTheReadAfterBeginAndWithoutEnd) {
  interrupt.failingCall = 1;
  reader().setInterruptDelegate(&interrupt);
  reader().setProgressDelegate(&progress);
  EXPECT_EQ(read(rows(200)), STOPPED);
  EXPECT_THAT(log, ElementsAre("begin"));
  EXPECT_THAT(progress.values, IsEmpty());
}

TEST_F(GRIImageStageTest, AnInterruptInTheThirdStripEndsTheReadAndTheDecodeEnds) {
  interrupt.failingCall = 4;  // the first is the begin's
  reader().setInterruptDelegate(&interrupt);
  reader().setProgressDelegate(&progress);
  EXPECT_EQ(read(rows(200)), STOPPED);
  EXPECT_THAT(log, ElementsAre("begin", "strip 0+64", "strip 64+64", "strip 128+64", "end"));
  EXPECT_EQ(progress.values.size(), 4u);  // begin, two strips, end
}

TEST_F(GRIImageStageTest, AnInterruptAtTheEndIsTheResult) {
  interrupt.failingCall = 3;
  reader().setInterruptDelegate(&interrupt);
  EXPECT_EQ(read(rows(64)), STOPPED);
  EXPECT_THAT(log, ElementsAre("begin", "strip 0+64", "end"));
  interrupt.failingCall = 0;
  EXPECT_EQ(read(rows(64)), GR_STATUS_OK);
}

TEST_F(GRIImageStageTest, AStatusOfTheProgressDelegateEndsTheRead) {
  progress.failingCall = 2;
  reader().setProgressDelegate(&progress);
  EXPECT_EQ(read(rows(200)), STOPPED);
  EXPECT_THAT(log, ElementsAre("begin", "strip 0+64", "end"));
}

TEST_F(GRIImageStageTest, FillsTheBackgroundOverTheSceneAlone) {
  GRIPixel white(gray());
  white.setToMax();
  ASSERT_EQ(reader().setBackgroundPixel(&white), GR_STATUS_OK);
  Target target(5, 4);
  EXPECT_EQ(reader().fillBackground(GRIScene(10, 10, 3, 2, 1.0), target.buffer), GR_STATUS_OK);
  for (gr_uint32 row = 0; row < 4; ++row) {
    for (gr_uint32 col = 0; col < 5; ++col) {
      EXPECT_EQ(target.at(col, row), col < 3 && row < 2 ? 255 : 0) << col << ", " << row;
    }
  }
}

TEST_F(GRIImageStageTest, FillsNothingWithoutABackground) {
  Target target(5, 4);
  EXPECT_EQ(reader().fillBackground(GRIScene(0, 0, 5, 4, 1.0), target.buffer), GR_STATUS_OK);
  EXPECT_EQ(target.at(0, 0), 0);
}

TEST(GRIImageStageWidthsTest, FillsTheBackgroundOfEveryType) {
  for (const GRIDataType type :
       {GRI_DATATYPE_UINT8, GRI_DATATYPE_SINT8, GRI_DATATYPE_UINT16, GRI_DATATYPE_SINT16,
        GRI_DATATYPE_UINT32, GRI_DATATYPE_SINT32, GRI_DATATYPE_FLOAT32, GRI_DATATYPE_FLOAT64}) {
    SCOPED_TRACE(type);
    GRIPixel pixel(GRI_COLORSPACE_MULTISPECTRAL, 2, type);
    pixel.setToMax();
    const GRUtilSmartPointer<GRIPatternReader> reader(new GRIPatternReader);
    ASSERT_EQ(reader->initialize(4, 4, pixel), GR_STATUS_OK);
    ASSERT_EQ(reader->setBackgroundPixel(&pixel), GR_STATUS_OK);
    GRISceneBuffer buffer(pixel, 4, 4, nullptr);
    ASSERT_EQ(reader->fillBackground(GRIScene(0, 0, 4, 4, 1.0), buffer), GR_STATUS_OK);
    for (gr_uint16 band = 0; band < 2; ++band) {
      const GRISample& expected = pixel.getSample(band);
      EXPECT_EQ(GRISample(expected.getColor(), type, buffer.getSample(3, 3, band)), expected);
    }
  }
}

// --- Filters -----------------------------------------------------------------------------------

/// A filter that tells of its own trio, on a reader that does the same.
class LoggingFilter final : public GRIImageFilter {
 public:
  explicit LoggingFilter(GRICallLog& log) : m_log(&log) {}
  GR_STATUS decodeBegin(const GRIScene& scene) override {
    m_log->emplace_back("filter begin");
    return GRIImageFilter::decodeBegin(scene);
  }
  GR_STATUS decodeStrip(GRISceneBuffer& buffer, const GRIScene& stripScene) override {
    m_log->emplace_back("filter strip");
    return GRIImageFilter::decodeStrip(buffer, stripScene);
  }
  GR_STATUS decodeEnd() override {
    m_log->emplace_back("filter end");
    return GRIImageFilter::decodeEnd();
  }

 private:
  GRICallLog* m_log;
};

class GRIImageFilterTest : public GRIImageStageTest {
 protected:
  GRIImageFilterTest() : m_filter(new LoggingFilter(log)) {
    reader().retain();
    m_filter->initialize(&reader());
  }
  LoggingFilter& filter() { return *m_filter; }

 private:
  GRUtilSmartPointer<LoggingFilter> m_filter;
};

TEST_F(GRIImageFilterTest, PassesADecodeDownTheChain) {
  Target target(40, 65);
  EXPECT_EQ(filter().read(rows(65), target.buffer), GR_STATUS_OK);
  EXPECT_THAT(log, ElementsAre("filter begin", "begin", "filter strip", "strip 0+64",
                               "filter strip", "strip 64+1", "filter end", "end"));
  EXPECT_EQ(target.at(39, 64), GRIPatternReader::valueAt<gr_uint8>(39, 64, 0));
}

TEST_F(GRIImageFilterTest, EndsThePreviousStageAfterAFailedStrip) {
  reader().failAt("strip", BROKEN, 0);
  Target target(40, 65);
  EXPECT_EQ(filter().read(rows(65), target.buffer), BROKEN);
  EXPECT_THAT(
      log, ElementsAre("filter begin", "begin", "filter strip", "strip 0+64", "filter end", "end"));
}

TEST_F(GRIImageFilterTest, SurvivesAnEndWithoutASuccessfulBegin) {
  reader().failAt("begin", BROKEN);
  EXPECT_EQ(filter().readBegin(rows(10)), BROKEN);
  EXPECT_EQ(filter().readEnd(), GR_STATUS_OK);
  EXPECT_THAT(log, ElementsAre("filter begin", "begin", "filter end", "end"));
}

TEST_F(GRIImageFilterTest, AnswersWhatThePreviousStageAnswers) {
  const GRIImageStage& stage = filter();
  EXPECT_EQ(filter().getPreviousStage(), &reader());
  EXPECT_EQ(stage.getWidth(), 40u);
  EXPECT_EQ(stage.getHeight(), 200u);
  gr_uint32 width = 0, height = 0;
  EXPECT_EQ(stage.getDimsAtMag(0.5, width, height), GR_STATUS_OK);
  EXPECT_EQ(width, 20u);
  EXPECT_EQ(height, 100u);
  EXPECT_EQ(&stage.getPixelProps(), &reader().getPixelProps());
  EXPECT_EQ(&stage.getMinDynamicRange(), &reader().getMinDynamicRange());
  EXPECT_EQ(&stage.getMaxDynamicRange(), &reader().getMaxDynamicRange());
  EXPECT_EQ(&stage.getGeoCoord(), &reader().getGeoCoord());
  EXPECT_TRUE(stage.isGeoCoordImplicit());
  EXPECT_EQ(&stage.getMetadata(), &reader().getMetadata());
  EXPECT_EQ(stage.getMinMagnification(), 0.5);
  EXPECT_EQ(stage.getMaxMagnification(), 1.0);
  EXPECT_EQ(stage.getSourceFileSize(), 8000);
  EXPECT_TRUE(stage.isSelective());
  EXPECT_EQ(stage.getSourceInfo(), 0u);
  EXPECT_EQ(stage.getSceneCost(GRIScene(0, 0, 40, 200, 1.0)), 7);
  GRIScene clipped;
  EXPECT_TRUE(stage.getClippedScene(GRIScene(-5, 0, 10, 10, 1.0), clipped));
  EXPECT_TRUE(clipped == GRIScene(0, 0, 5, 10, 1.0));
}

TEST_F(GRIImageFilterTest, SetsPropertiesOfThePreviousStage) {
  GRIImageStage& stage = filter();
  const GRIPixel& pixel = gray();
  const GRIPixelLookupTable table(gray(), 2, nullptr);
  EXPECT_EQ(stage.setStripHeight(7), GR_STATUS_OK);
  EXPECT_EQ(stage.setBackgroundPixel(&pixel), GR_STATUS_OK);
  EXPECT_EQ(stage.setNoDataPixel(&pixel), GR_STATUS_OK);
  EXPECT_EQ(stage.setGeoCoord(GRIGeoCoord(1, 2, 3, 4, 0, 0)), GR_STATUS_OK);
  EXPECT_EQ(stage.setDynamicRange(pixel, pixel), GR_STATUS_OK);
  EXPECT_EQ(stage.setPrecision(5), GR_STATUS_OK);
  EXPECT_EQ(stage.setPixelLookupTable(&table), GR_STATUS_OK);
  EXPECT_EQ(stage.setMetadata(nullptr), GR_STATUS_OK);
  stage.setProgressDelegate(&progress);
  stage.setInterruptDelegate(&interrupt);
  EXPECT_EQ(reader().getStripHeight(), 7u);
  EXPECT_EQ(stage.getStripHeight(), 7u);
  EXPECT_EQ(stage.getBackgroundPixel(), reader().getBackgroundPixel());
  EXPECT_NE(stage.getBackgroundPixel(), nullptr);
  EXPECT_EQ(stage.getNoDataPixel(), reader().getNoDataPixel());
  EXPECT_NE(stage.getNoDataPixel(), nullptr);
  EXPECT_EQ(reader().getGeoCoord().getXOrigin(), 1.0);
  EXPECT_EQ(reader().getMaxDynamicRange(), pixel);
  EXPECT_EQ(reader().getPixelProps().getSample(0).getPrecision(), 5u);
  EXPECT_EQ(stage.getPixelLookupTable(), reader().getPixelLookupTable());
  EXPECT_NE(stage.getPixelLookupTable(), nullptr);
  EXPECT_EQ(reader().getProgressDelegate(), &progress);
  EXPECT_EQ(stage.getProgressDelegate(), &progress);
  EXPECT_EQ(stage.getInterruptDelegate(), &interrupt);
}

TEST_F(GRIImageFilterTest, HoldsOneReferenceOfThePreviousStage) {
  const GRUtilSmartPointer<GRIPatternReader> stage(new GRIPatternReader);
  ASSERT_EQ(stage->initialize(1, 1, gray()), GR_STATUS_OK);
  {
    const GRUtilSmartPointer<LoggingFilter> owner(new LoggingFilter(log));
    owner->initialize(stage.retained());
  }
  stage->retain();
  EXPECT_EQ(stage->release(), 1);
}

#ifndef NDEBUG
TEST_F(GRIImageFilterTest, RefusesToAnswerWithoutAPreviousStage) {
  const GRUtilSmartPointer<LoggingFilter> lonely(new LoggingFilter(log));
  EXPECT_DEATH(static_cast<void>(lonely->getWidth()), "m_previousStage");
}
#endif

}  // namespace
