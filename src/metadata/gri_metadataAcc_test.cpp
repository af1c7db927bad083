#include "metadata/gri_metadataAcc.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstring>
#include <vector>

#include "image/gri_pixelLookupTable.h"

namespace {

using testing::ElementsAre;

class GRIMetadataAccTest : public testing::Test {
 protected:
  GRIMetadataDatabase database;
  GRIMetadataAcc acc{database};

  template <typename T>
  T scalarOf(gr_int32 tag) {
    T value{};
    EXPECT_EQ(acc.getTagScalar(tag, value), GR_STATUS_OK) << tag;
    return value;
  }
};

// --- Typed values ------------------------------------------------------------------------------

TEST_F(GRIMetadataAccTest, EveryElementTypeComesBackAsItWasSet) {
  const auto roundTrip = [&](const char* tag, auto value) {
    using T = decltype(value);
    ASSERT_EQ(acc.setTagScalar(tag, value), GR_STATUS_OK);
    T result{};
    ASSERT_EQ(acc.getTagScalar(tag, result), GR_STATUS_OK);
    EXPECT_EQ(result, value) << tag;
  };
  roundTrip("T::u8", gr_uint8{200});
  roundTrip("T::s8", gr_int8{-100});
  roundTrip("T::u16", gr_uint16{60000});
  roundTrip("T::s16", gr_int16{-30000});
  roundTrip("T::u32", gr_uint32{4000000000u});
  roundTrip("T::s32", gr_int32{-2000000000});
  roundTrip("T::u64", gr_uint64{1} << 63);
  roundTrip("T::s64", gr_int64{-1} << 62);
  roundTrip("T::f32", 1.5f);
  roundTrip("T::f64", 0.1);
  ASSERT_EQ(acc.setTagScalar("T::text", "words"), GR_STATUS_OK);
  const char* text = nullptr;
  ASSERT_EQ(acc.getTagScalar("T::text", text), GR_STATUS_OK);
  EXPECT_STREQ(text, "words");
}

TEST_F(GRIMetadataAccTest, VectorsAndArraysComeBackWithTheirDimensions) {
  const std::vector<double> values = {1, 2, 3, 4, 5, 6};
  const std::vector<gr_uint32> shape = {2, 3};
  ASSERT_EQ(acc.setTagVector<double>("T::vector", values), GR_STATUS_OK);
  ASSERT_EQ(acc.setTagArray<double>("T::array", shape, values), GR_STATUS_OK);

  std::span<const double> vector, array;
  std::span<const gr_uint32> dims;
  ASSERT_EQ(acc.getTagVector("T::vector", vector), GR_STATUS_OK);
  ASSERT_EQ(acc.getTagArray("T::array", dims, array), GR_STATUS_OK);
  EXPECT_THAT(vector, ElementsAre(1, 2, 3, 4, 5, 6));
  EXPECT_THAT(array, ElementsAre(1, 2, 3, 4, 5, 6));
  EXPECT_THAT(dims, ElementsAre(2, 3));
}

TEST_F(GRIMetadataAccTest, ANumberAndItsTextAreOneTag) {
  ASSERT_EQ(acc.setTagScalar(GRI_TAG_IMAGE_WIDTH, gr_uint32{640}), GR_STATUS_OK);
  gr_uint32 width = 0;
  EXPECT_EQ(acc.getTagScalar("IMAGE::WIDTH", width), GR_STATUS_OK);
  EXPECT_EQ(width, 640u);
}

TEST_F(GRIMetadataAccTest, AnAbsentTagGivesNotFoundAndWritesNothing) {
  gr_uint32 value = 7;
  EXPECT_EQ(acc.getTagScalar(GRI_TAG_IMAGE_WIDTH, value), GRI_STATUS_TAG_NOT_FOUND);
  EXPECT_EQ(acc.getTagScalar(136, value), GRI_STATUS_TAG_NOT_FOUND);
  EXPECT_EQ(value, 7u);
}

TEST_F(GRIMetadataAccTest, AnotherTypeOrShapeGivesBadFormat) {
  const std::vector<gr_uint32> shape = {2, 2};
  const std::vector<float> values(4);
  ASSERT_EQ(acc.setTagArray<float>("T::array", shape, values), GR_STATUS_OK);
  ASSERT_EQ(acc.setTagVector<float>("T::vector", values), GR_STATUS_OK);
  float scalar = 7;
  double other = 7;
  std::span<const float> vector;
  EXPECT_EQ(acc.getTagScalar("T::array", scalar), GRI_STATUS_TAG_BAD_FORMAT);
  EXPECT_EQ(acc.getTagVector("T::array", vector), GRI_STATUS_TAG_BAD_FORMAT);
  EXPECT_EQ(acc.getTagScalar("T::vector", scalar), GRI_STATUS_TAG_BAD_FORMAT);
  EXPECT_EQ(acc.getTagScalar("T::vector", other), GRI_STATUS_TAG_BAD_FORMAT);
  EXPECT_EQ(scalar, 7.0f);
  EXPECT_TRUE(vector.empty());
}

TEST_F(GRIMetadataAccTest, AVectorMayBeEmptyAndIsNoScalarThen) {
  ASSERT_EQ(acc.setTagVector("T::none", std::span<const double>()), GR_STATUS_OK);
  ASSERT_EQ(acc.setTagVector("T::noTexts", std::span<const char* const>()), GR_STATUS_OK);
  const double before = 7;
  std::span<const double> values(&before, 1);
  std::span<const char* const> texts;
  double value = 7;
  const char* text = "old";
  EXPECT_EQ(acc.getTagVector("T::none", values), GR_STATUS_OK);
  EXPECT_TRUE(values.empty());
  EXPECT_EQ(acc.getTagVector("T::noTexts", texts), GR_STATUS_OK);
  EXPECT_TRUE(texts.empty());
  EXPECT_EQ(acc.getTagScalar("T::none", value), GRI_STATUS_TAG_BAD_FORMAT);
  EXPECT_EQ(acc.getTagScalar("T::noTexts", text), GRI_STATUS_TAG_BAD_FORMAT);
  EXPECT_EQ(value, 7.0);
  EXPECT_STREQ(text, "old");
}

TEST_F(GRIMetadataAccTest, ANullTextIsStoredAsAnEmptyOne) {
  ASSERT_EQ(acc.setInputName(nullptr), GR_STATUS_OK);
  EXPECT_STREQ(scalarOf<const char*>(GRI_TAG_IMAGE_INPUT_NAME), "");
}

TEST_F(GRIMetadataAccTest, MoreElementsThanARecordCanHaveAreRefusedUnseen) {
  const gr_uint8 one = 1;  // the rest isn't there, and nobody looks for it
  for (const size_t count : {size_t{0x80000000}, size_t{0x100000000}, size_t{0x100000001}}) {
    EXPECT_EQ(acc.setTagVector("T::vector", std::span<const gr_uint8>(&one, count)),
              GRI_STATUS_METADATA_INTERNAL);
  }
  const std::vector<gr_uint32> shape = {0x10000, 0x10000};
  EXPECT_EQ(acc.setTagArray<gr_uint8>("T::array", shape, std::span<const gr_uint8>(&one, 1)),
            GRI_STATUS_METADATA_INTERNAL);
  EXPECT_EQ(database.getIndexCount(), 0u);
}

TEST_F(GRIMetadataAccTest, SettingATagThatIsThereIsADuplicateUntilItIsRemoved) {
  ASSERT_EQ(acc.setWidth(1), GR_STATUS_OK);
  EXPECT_EQ(acc.setWidth(2), GRI_STATUS_TAG_DUPLICATE);
  EXPECT_EQ(scalarOf<gr_uint32>(GRI_TAG_IMAGE_WIDTH), 1u);
  acc.removeTag(GRI_TAG_IMAGE_WIDTH);
  acc.removeTag(GRI_TAG_IMAGE_WIDTH);  // absent: no failure
  EXPECT_EQ(acc.setWidth(2), GR_STATUS_OK);
}

TEST_F(GRIMetadataAccTest, EachShorthandAddsItsOneRecord) {
  ASSERT_EQ(acc.setInputFormat("F"), GR_STATUS_OK);
  ASSERT_EQ(acc.setCreationDate("D"), GR_STATUS_OK);
  ASSERT_EQ(acc.setInputName("N"), GR_STATUS_OK);
  ASSERT_EQ(acc.setNoDither(true), GR_STATUS_OK);
  ASSERT_EQ(acc.setInputFileSize(gr_uint64{5} << 32), GR_STATUS_OK);
  ASSERT_EQ(acc.setTargetCompressionRatio(20.5), GR_STATUS_OK);
  ASSERT_EQ(acc.setWeight(1.0f), GR_STATUS_OK);
  ASSERT_EQ(acc.setKWeight(2.0f), GR_STATUS_OK);
  ASSERT_EQ(acc.setGamma(3.0f), GR_STATUS_OK);
  ASSERT_EQ(acc.setBlockSize(4), GR_STATUS_OK);
  ASSERT_EQ(acc.setWidth(5), GR_STATUS_OK);
  ASSERT_EQ(acc.setHeight(6), GR_STATUS_OK);
  ASSERT_EQ(acc.setNLev(7), GR_STATUS_OK);
  ASSERT_EQ(acc.setCompressionVersion(8), GR_STATUS_OK);
  ASSERT_EQ(acc.setEncodingApplication("A"), GR_STATUS_OK);

  EXPECT_EQ(database.getIndexCount(), 15u);
  EXPECT_STREQ(scalarOf<const char*>(GRI_TAG_IMAGE_INPUT_NAME), "N");
  EXPECT_EQ(scalarOf<gr_uint8>(GRI_TAG_IMAGE_NO_DITHER), 1);
  EXPECT_EQ(scalarOf<gr_uint64>(GRI_TAG_IMAGE_INPUT_FILE_SIZE), gr_uint64{5} << 32);
  EXPECT_EQ(scalarOf<double>(GRI_TAG_IMAGE_TARGET_COMPRESSION_RATIO), 20.5);
  EXPECT_EQ(scalarOf<gr_uint32>(GRI_TAG_IMAGE_COMPRESSION_NLEV), 7u);
  bool noDither = false;
  EXPECT_EQ(acc.getNoDither(noDither), GR_STATUS_OK);
  EXPECT_TRUE(noDither);
}

TEST_F(GRIMetadataAccTest, DataTypesOfSamplesAndRecordsConvert) {
  const GRIMetadataDataType expected[] = {
      GRI_METADATA_DATATYPE_UINT8,   GRI_METADATA_DATATYPE_SINT8,   GRI_METADATA_DATATYPE_UINT16,
      GRI_METADATA_DATATYPE_SINT16,  GRI_METADATA_DATATYPE_UINT32,  GRI_METADATA_DATATYPE_SINT32,
      GRI_METADATA_DATATYPE_FLOAT32, GRI_METADATA_DATATYPE_FLOAT64, GRI_METADATA_DATATYPE_UINT64,
      GRI_METADATA_DATATYPE_SINT64};
  for (gr_int32 i = 0; i < 10; ++i) {
    const auto type = static_cast<GRIDataType>(i + 1);
    EXPECT_EQ(gri_toMetadataDataType(type), expected[i]);
    EXPECT_EQ(gri_toDataType(expected[i]), type);
  }
  EXPECT_EQ(gri_toMetadataDataType(GRI_DATATYPE_COMPLEX32), GRI_METADATA_DATATYPE_INVALID);
  EXPECT_EQ(gri_toDataType(GRI_METADATA_DATATYPE_ASCII), GRI_DATATYPE_INVALID);
}

// --- Areas of interest -------------------------------------------------------------------------

class GRIMetadataAOITest : public GRIMetadataAccTest {
 protected:
  const std::vector<double> x = {1.5, 2.5, 3.5}, y = {4, 5, 6};

  GRIMetadataAOI area(gr_int32 method = 1) const {
    GRIMetadataAOI aoi;
    aoi.x = x;
    aoi.y = y;
    aoi.method = method;
    aoi.weight = 0.25;
    aoi.magnification = 0.5;
    return aoi;
  }

  const char* methodOf(gr_int32 method) {
    database.removeAll();
    EXPECT_EQ(acc.addAOI(3, area(method)), GR_STATUS_OK);
    const char* text = nullptr;
    EXPECT_EQ(acc.getTagScalar("IMAGE::AOI::3::METHOD", text), GR_STATUS_OK);
    return text;
  }
};

TEST_F(GRIMetadataAOITest, AnAreaComesBackAsItWasAdded) {
  GRIMetadataAOI aoi = area();
  aoi.vectorOverlay = "overlay";
  aoi.vectorOverlayLayer = 9;
  aoi.name = "name";
  aoi.comment = "comment";
  aoi.url = "url";
  ASSERT_EQ(acc.addAOI(12, aoi), GR_STATUS_OK);

  GRIMetadataAOI result;
  ASSERT_EQ(acc.getAOI(12, result), GR_STATUS_OK);
  EXPECT_THAT(result.x, ElementsAre(1.5, 2.5, 3.5));
  EXPECT_THAT(result.y, ElementsAre(4, 5, 6));
  EXPECT_EQ(result.method, 1);
  EXPECT_EQ(result.weight, 0.25);
  EXPECT_EQ(result.magnification, 0.5);
  EXPECT_STREQ(result.vectorOverlay, "overlay");
  EXPECT_EQ(result.vectorOverlayLayer, 9u);
  EXPECT_STREQ(result.name, "name");
  EXPECT_STREQ(result.comment, "comment");
  EXPECT_STREQ(result.url, "url");
  for (const char* tag :
       {"IMAGE::AOI::12::REGION::X", "IMAGE::AOI::12::REGION::Y", "IMAGE::AOI::12::METHOD",
        "IMAGE::AOI::12::WEIGHT", "IMAGE::AOI::12::MAGNIFICATION",
        "IMAGE::AOI::12::REGION::VECTOROVERLAY", "IMAGE::AOI::12::REGION::VECTOROVERLAY_LAYER",
        "IMAGE::AOI::12::NAME", "IMAGE::AOI::12::COMMENT", "IMAGE::AOI::12::URL"}) {
    EXPECT_TRUE(database.has(tag)) << tag;
  }
}

TEST_F(GRIMetadataAOITest, MethodsAreStoredAsWords) {
  EXPECT_STREQ(methodOf(0), "weight");
  EXPECT_STREQ(methodOf(1), "shift inner");
  EXPECT_STREQ(methodOf(2), "shift outer");
  EXPECT_STREQ(methodOf(-7), "unknown -7");
  GRIMetadataAOI result;
  ASSERT_EQ(acc.getAOI(3, result), GR_STATUS_OK);
  EXPECT_EQ(result.method, -7);
}

TEST_F(GRIMetadataAOITest, AbsentOptionalTagsAreRemoved) {
  ASSERT_EQ(acc.setTagScalar("IMAGE::AOI::3::NAME", "old"), GR_STATUS_OK);
  ASSERT_EQ(acc.setTagScalar("IMAGE::AOI::3::URL", "old"), GR_STATUS_OK);
  GRIMetadataAOI aoi = area();
  aoi.url = "new";
  ASSERT_EQ(acc.addAOI(3, aoi), GR_STATUS_OK);
  GRIMetadataAOI result;
  ASSERT_EQ(acc.getAOI(3, result), GR_STATUS_OK);
  EXPECT_EQ(result.name, nullptr);
  EXPECT_STREQ(result.url, "new");
  EXPECT_FALSE(result.vectorOverlayLayer.has_value());
}

TEST_F(GRIMetadataAOITest, AnAreaThatIsThereIsADuplicateAndOneThatIsNotIsNotFound) {
  ASSERT_EQ(acc.addAOI(3, area()), GR_STATUS_OK);
  EXPECT_EQ(acc.addAOI(3, area()), GRI_STATUS_TAG_DUPLICATE);
  GRIMetadataAOI result;
  EXPECT_EQ(acc.getAOI(4, result), GRI_STATUS_TAG_NOT_FOUND);
}

TEST_F(GRIMetadataAOITest, AreasAreCountedByTheirNumbers) {
  EXPECT_EQ(acc.getNumAOIs(), 0u);
  ASSERT_EQ(acc.addAOI(0, area()), GR_STATUS_OK);
  ASSERT_EQ(acc.addAOI(65535, area()), GR_STATUS_OK);
  for (const char* other : {"IMAGE::AOI::", "IMAGE::AOI::x::NAME", "IMAGE::AOI::5",
                            "IMAGE::AOI::65536::NAME", "IMAGE::AOIS::1::NAME"}) {
    ASSERT_EQ(acc.setTagScalar(other, gr_uint8{1}), GR_STATUS_OK);
  }
  EXPECT_EQ(acc.getNumAOIs(), 2u);
}

}  // namespace
