#include "metadata/gri_metadataRecord.h"

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

#include "gr_lib_utils/include/gr_exception.h"

namespace {

using Dims = std::vector<gr_uint32>;

GRIMetadataRecord recordOf(GRIMetadataDataType type, const Dims& dims, const void* data) {
  return GRIMetadataRecord("TEST::Record", type, static_cast<gr_uint32>(dims.size()), dims.data(),
                           data);
}

GRIMetadataRecord recordOfTexts(const std::vector<const char*>& texts) {
  return recordOf(GRI_METADATA_DATATYPE_ASCII, {static_cast<gr_uint32>(texts.size())},
                  texts.data());
}

std::vector<std::string> textsOf(const GRIMetadataRecord& record) {
  gr_uint32 count = 0;
  const auto* texts = static_cast<const char* const*>(record.getVectorData(count));
  return {texts, texts + count};
}

TEST(GRIMetadataRecordTest, OneDimensionOfExtent1IsAScalarAndAVector) {
  const gr_uint16 value = 7;
  const GRIMetadataRecord record = recordOf(GRI_METADATA_DATATYPE_UINT16, {1}, &value);
  EXPECT_TRUE(record.isScalar());
  EXPECT_TRUE(record.isVector());
  EXPECT_TRUE(record.isArray());
  EXPECT_EQ(*static_cast<const gr_uint16*>(record.getScalarData()), 7);
}

TEST(GRIMetadataRecordTest, OneDimensionOfAnotherExtentIsAVectorAlone) {
  for (const gr_uint32 extent : {0u, 2u}) {
    const GRIMetadataRecord record = recordOf(GRI_METADATA_DATATYPE_UINT16, {extent}, nullptr);
    EXPECT_FALSE(record.isScalar());
    EXPECT_TRUE(record.isVector());
  }
}

TEST(GRIMetadataRecordTest, TwoDimensionsAreNeitherScalarNorVectorAndHaveTheirProductOfElements) {
  const double values[6] = {1, 2, 3, 4, 5, 6};
  const GRIMetadataRecord record = recordOf(GRI_METADATA_DATATYPE_FLOAT64, {2, 3}, values);
  EXPECT_FALSE(record.isScalar());
  EXPECT_FALSE(record.isVector());
  EXPECT_TRUE(record.isArray());
  EXPECT_EQ(record.getNumElements(), 6u);

  gr_uint32 numDims = 0;
  const gr_uint32* dims = nullptr;
  const auto* data = static_cast<const double*>(record.getArrayData(numDims, dims));
  EXPECT_EQ(Dims(dims, dims + numDims), (Dims{2, 3}));
  EXPECT_EQ(std::vector<double>(data, data + 6), (std::vector<double>{1, 2, 3, 4, 5, 6}));
}

TEST(GRIMetadataRecordTest, ARecordKeepsCopiesOfEverything) {
  char tag[] = "TEST::Record";
  char text[] = "hello";
  const char* texts[] = {text};
  gr_uint32 dims[] = {1};
  const GRIMetadataRecord record(tag, GRI_METADATA_DATATYPE_ASCII, 1, dims, texts);

  tag[0] = text[0] = 'X';
  texts[0] = nullptr;
  dims[0] = 99;

  EXPECT_STREQ(record.getTagName(), "TEST::Record");
  EXPECT_EQ(record.getDims()[0], 1u);
  EXPECT_EQ(textsOf(record), (std::vector<std::string>{"hello"}));
}

TEST(GRIMetadataRecordTest, ACopyHasTextsOfItsOwn) {
  auto record = std::make_unique<GRIMetadataRecord>(recordOfTexts({"one", "", "three"}));
  const GRIMetadataRecord copy(*record);
  record.reset();
  EXPECT_EQ(textsOf(copy), (std::vector<std::string>{"one", "", "three"}));
}

TEST(GRIMetadataRecordTest, AnEmptyTextIsKeptAndCountsOneByteWhenSerialised) {
  const GRIMetadataRecord record = recordOfTexts({""});
  EXPECT_EQ(textsOf(record), (std::vector<std::string>{""}));
  EXPECT_EQ(record.getSerializedSize(), sizeof("TEST::Record") + 4 + 4 + 4 + 1);
}

TEST(GRIMetadataRecordTest, TheSerialisedSizeCountsTagTypeDimensionsAndValues) {
  EXPECT_EQ(recordOf(GRI_METADATA_DATATYPE_UINT16, {2, 3}, nullptr).getSerializedSize(),
            13u + 4 + (4 + 2 * 4) + 6 * 2);
  EXPECT_EQ(recordOfTexts({"ab", "cde"}).getSerializedSize(), 13u + 4 + (4 + 4) + 3 + 4);
}

TEST(GRIMetadataRecordTest, AnElementHasTheSizeOfItsType) {
  const gr_uint32 sizes[] = {1, 1, 2, 2, 4, 4, 8, 8, 4, 8, sizeof(char*)};
  for (gr_uint32 type = 1; type <= 11; ++type) {
    EXPECT_EQ(GRIMetadataRecord::getElementSize(static_cast<GRIMetadataDataType>(type)),
              sizes[type - 1])
        << type;
  }
}

TEST(GRIMetadataRecordTest, AnEmptyArrayHasAPointerToItsValues) {
  for (const GRIMetadataDataType type :
       {GRI_METADATA_DATATYPE_FLOAT64, GRI_METADATA_DATATYPE_ASCII}) {
    const GRIMetadataRecord record = recordOf(type, {0}, nullptr);
    gr_uint32 count = 1;
    EXPECT_NE(record.getVectorData(count), nullptr);
    EXPECT_EQ(count, 0u);
  }
}

TEST(GRIMetadataRecordTest, WithoutDimensionsThereIsOneElement) {
  const gr_uint8 value = 5;
  const GRIMetadataRecord record = recordOf(GRI_METADATA_DATATYPE_UINT8, {}, &value);
  EXPECT_EQ(record.getNumElements(), 1u);
  EXPECT_FALSE(record.isVector());
}

TEST(GRIMetadataRecordTest, WithoutDataTheValuesAre0) {
  const GRIMetadataRecord numbers = recordOf(GRI_METADATA_DATATYPE_UINT32, {2}, nullptr);
  gr_uint32 count = 0;
  const auto* values = static_cast<const gr_uint32*>(numbers.getVectorData(count));
  EXPECT_EQ(values[0] | values[1], 0u);
  EXPECT_EQ(textsOf(recordOf(GRI_METADATA_DATATYPE_ASCII, {2}, nullptr)),
            (std::vector<std::string>{"", ""}));
}

TEST(GRIMetadataRecordTest, ANullTextIsAnEmptyOne) {
  EXPECT_EQ(textsOf(recordOfTexts({"a", nullptr, "b"})), (std::vector<std::string>{"a", "", "b"}));
}

TEST(GRIMetadataRecordTest, ElementsAreCountedWithoutOverflow) {
  struct {
    Dims dims;
    GR_STATUS status;
    gr_uint32 count;
  } const cases[] = {
      {{0x7FFFFFFF}, GR_STATUS_OK, 0x7FFFFFFF},
      {{0x80000000}, GRI_STATUS_METADATA_INTERNAL, 1},
      {{0xFFFFFFFF, 0xFFFFFFFF, 0xFFFFFFFF}, GRI_STATUS_METADATA_INTERNAL, 1},
      {{0x10000, 0x10000, 0x10000, 0x10000}, GRI_STATUS_METADATA_INTERNAL, 1},
      {{0xFFFFFFFF, 0xFFFFFFFF, 0}, GR_STATUS_OK, 0},
      {{}, GR_STATUS_OK, 1},
  };
  for (const auto& c : cases) {
    gr_uint32 count = 1;
    EXPECT_EQ(GRIMetadataRecord::countElements(static_cast<gr_uint32>(c.dims.size()), c.dims.data(),
                                               count),
              c.status);
    EXPECT_EQ(count, c.count);
  }
}

TEST(GRIMetadataRecordTest, TooManyElementsThrowBeforeAnythingIsAllocated) {
  try {
    recordOf(GRI_METADATA_DATATYPE_UINT8, {0x10000, 0x10000}, nullptr);
    FAIL();
  } catch (const GRUtilException& exception) {
    EXPECT_EQ(exception.getStatus(), GRI_STATUS_METADATA_INTERNAL);
  }
}

}  // namespace
