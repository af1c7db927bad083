#include "hosts/common/gri_hostJson.h"

#include <gtest/gtest.h>

#include "tests/support/fake_gri.h"

namespace {

nlohmann::ordered_json jsonOf(const FakePicture& picture) {
  const FakeDirectory directory;
  picture.writeTo(directory / "picture");
  GRIHostImage image;
  EXPECT_FALSE(image.open(directory / "picture"));
  // Through text, as a program would get it.
  return nlohmann::ordered_json::parse(gri_hostInfoJson(image).dump());
}

}  // namespace

TEST(GRIHostJsonTest, AllKeysAreThereInOrderAlsoForAPlainPicture) {
  std::vector<std::string> keys;
  const auto json = jsonOf({});
  for (const auto& item : json.items()) keys.push_back(item.key());
  EXPECT_EQ(keys,
            (std::vector<std::string>{"format", "size", "tiles", "bands", "colorSpace", "dataType",
                                      "bits", "magnifications", "magnificationRange", "position",
                                      "corners", "crs", "noData", "locked", "metadata"}));
  EXPECT_TRUE(json["position"].is_null());
  EXPECT_TRUE(json["corners"].is_null());
  EXPECT_TRUE(json["crs"].is_null());
  EXPECT_TRUE(json["noData"].is_null());
  EXPECT_EQ(json["metadata"], nlohmann::ordered_json::array());
}

TEST(GRIHostJsonTest, PropertiesAreTold) {
  const auto json = jsonOf({.width = 5, .height = 3, .minMagnification = 0.5, .noData = {1, 2, 3}});
  EXPECT_EQ(json["format"], "Tesra TG3");
  EXPECT_EQ(json["size"], nlohmann::ordered_json::parse("[5, 3]"));
  EXPECT_EQ(json["bands"], nlohmann::ordered_json::parse(R"(["red", "green", "blue"])"));
  EXPECT_EQ(json["dataType"], "uint8");
  EXPECT_EQ(json["magnifications"],
            nlohmann::ordered_json::parse(R"([{"magnification": 1.0, "size": [5, 3]},
                                      {"magnification": 0.5, "size": [3, 2]}])"));
  EXPECT_EQ(json["noData"], nlohmann::ordered_json::parse("[1, 2, 3]"));
}

TEST(GRIHostJsonTest, CornersAreTheOuterOnes) {
  const auto json = jsonOf({.width = 10, .height = 20, .position = {100, 200, 2, -4, 0, 0}});
  EXPECT_EQ(json["position"]["origin"], nlohmann::ordered_json::parse("[100, 200]"));
  EXPECT_EQ(json["corners"]["upperLeft"], nlohmann::ordered_json::parse("[99, 202]"));
  EXPECT_EQ(json["corners"]["lowerRight"], nlohmann::ordered_json::parse("[119, 122]"));
}

TEST(GRIHostJsonTest, MetadataKeepsShapesAndAllDigits) {
  const auto metadata = jsonOf({.hasOddRecords = true})["metadata"];
  ASSERT_EQ(metadata.size(), 7u);
  EXPECT_EQ(metadata[0], nlohmann::ordered_json::parse(
                             R"({"tag": "TEST::Scalar", "type": "text", "dims": [1],
                                 "value": "one"})"));
  EXPECT_EQ(metadata[1]["value"],
            nlohmann::ordered_json::parse(R"(["a", "", "caf\u00e9 \u001b[31m"])"));
  EXPECT_EQ(metadata[2]["value"], nlohmann::ordered_json::parse("[[1, 2, 3], [4, 5, 6]]"));
  EXPECT_EQ(metadata[3]["value"].dump(), "18446744073709551615");
  EXPECT_EQ(metadata[4]["value"].dump(), "-9223372036854775807");
  EXPECT_EQ(metadata[5]["value"], nlohmann::ordered_json::parse("[0.5, -1.5]"));
  EXPECT_EQ(metadata[6]["value"], nlohmann::ordered_json::array());
}
