#include <gtest/gtest.h>

#include "gr_lib_utils/include/gr_ioStreamUtils.h"
#include "gr_lib_utils/include/gr_smartPointer.h"
#include "gr_lib_utils/include/gr_status.h"
#include "image/gri_overrides.h"
#include "image/gri_rawImageReader.h"
#include "metadata/gri_metadataDatabase.h"
#include "tests/support/gri_patternReader.h"

namespace {

GRUtilSmartPointer<GRIPatternReader> makeReader() {
  return GRUtilSmartPointer<GRIPatternReader>(new GRIPatternReader);
}

GRIMetadataRecord recordOf(const char* tag) {
  const gr_uint32 one = 1;
  const gr_uint8 value = 5;
  return {tag, GRI_METADATA_DATATYPE_UINT8, 1, &one, &value};
}

TEST(GRIOverrideMetadataTest, BeginsWithoutRecords) {
  EXPECT_EQ(makeReader()->getMetadata().getIndexCount(), 0u);
}

TEST(GRIOverrideMetadataTest, ReplacesRecordsAndNullEmptiesThem) {
  const auto reader = makeReader();
  GRIMetadataDatabase first, second;
  ASSERT_EQ(first.add(recordOf("USER::A")), GR_STATUS_OK);
  ASSERT_EQ(second.add(recordOf("USER::B")), GR_STATUS_OK);
  ASSERT_EQ(reader->setMetadata(&first), GR_STATUS_OK);
  EXPECT_TRUE(reader->getMetadata().has("USER::A"));
  ASSERT_EQ(reader->setMetadata(&second), GR_STATUS_OK);
  EXPECT_FALSE(reader->getMetadata().has("USER::A"));
  EXPECT_TRUE(reader->getMetadata().has("USER::B"));
  ASSERT_EQ(reader->setMetadata(nullptr), GR_STATUS_OK);
  EXPECT_EQ(reader->getMetadata().getIndexCount(), 0u);
}

TEST(GRIOverrideMetadataTest, MayBeSetToItself) {
  const auto reader = makeReader();
  GRIMetadataDatabase records;
  ASSERT_EQ(records.add(recordOf("USER::A")), GR_STATUS_OK);
  ASSERT_EQ(reader->setMetadata(&records), GR_STATUS_OK);
  ASSERT_EQ(reader->setMetadata(&reader->getMetadata()), GR_STATUS_OK);
  EXPECT_EQ(reader->getMetadata().getIndexCount(), 1u);
}

TEST(GRIOverrideMetadataTest, ARawReaderRecordsItsInputAndOnRequestTheCompressionRatio) {
  const auto stream = GRIOStreamUtils::openMemStream();
  const gr_uint8 pixels[6] = {};
  ASSERT_EQ(stream->write(pixels, sizeof(pixels)), sizeof(pixels));
  ASSERT_EQ(stream->close(), GR_STATUS_OK);
  const GRIPixel gray(GRI_COLORSPACE_GRAYSCALE, 1, GRI_DATATYPE_UINT8);
  for (const bool withRatio : {false, true}) {
    const GRUtilSmartPointer<GRIRawImageReader> image(new GRIRawImageReader);
    image->setRecordsCompressionRatio(withRatio);
    ASSERT_EQ(image->initialize(stream.get(), gray, 2, 3), GR_STATUS_OK);
    EXPECT_TRUE(image->getMetadata().has("IMAGE::INPUT_NAME"));
    EXPECT_EQ(image->getMetadata().has("IMAGE::TARGET_COMPRESSION_RATIO"), withRatio);
  }
}

}  // namespace
