#include <gtest/gtest.h>

#include "gr_lib_utils/include/gr_smartPointer.h"
#include "gr_lib_utils/include/gr_status.h"
#include "image/gri_overrides.h"
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

}  // namespace
