#include "metadata/gri_metadataDatabase.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <random>
#include <string>
#include <vector>

#include "metadata/gri_metadataTags.h"

namespace {

GRIMetadataRecord recordOf(const std::string& tag, gr_uint32 value = 0) {
  const gr_uint32 dims[] = {1};
  return GRIMetadataRecord(tag.c_str(), GRI_METADATA_DATATYPE_UINT32, 1, dims, &value);
}

void addAll(GRIMetadataDatabase& database, const std::vector<std::string>& tags) {
  for (const std::string& tag : tags) ASSERT_EQ(database.add(recordOf(tag)), GR_STATUS_OK);
}

std::vector<std::string> tagsOf(const GRIMetadataDatabase& database) {
  std::vector<std::string> tags;
  const GRIMetadataRecord* record = nullptr;
  for (gr_uint32 i = 0; GR_SUCCESS(database.getDataByIndex(i, record)); ++i) {
    tags.emplace_back(record->getTagName());
  }
  return tags;
}

using Tags = std::vector<std::string>;

TEST(GRIMetadataDatabaseTest, RecordsKeepTheOrderOfAdding) {
  GRIMetadataDatabase database;
  addAll(database, {"C", "A", "B"});
  EXPECT_EQ(tagsOf(database), (Tags{"C", "A", "B"}));
}

TEST(GRIMetadataDatabaseTest, ADuplicateTagIsRefusedAndTheFirstRecordStays) {
  GRIMetadataDatabase database;
  ASSERT_EQ(database.add(recordOf("A", 1)), GR_STATUS_OK);

  EXPECT_EQ(database.add(recordOf("A", 2)), GRI_STATUS_TAG_DUPLICATE);
  EXPECT_EQ(database.add(gr_makeUnique<GRIMetadataRecord>(recordOf("A", 3))),
            GRI_STATUS_TAG_DUPLICATE);

  const GRIMetadataRecord* record = nullptr;
  ASSERT_EQ(database.get("A", record), GR_STATUS_OK);
  EXPECT_EQ(*static_cast<const gr_uint32*>(record->getScalarData()), 1u);
  EXPECT_EQ(database.getIndexCount(), 1u);
}

TEST(GRIMetadataDatabaseTest, MergingWithOneSharedTagAddsNothing) {
  GRIMetadataDatabase database, other;
  addAll(database, {"A", "B"});
  addAll(other, {"C", "B", "D"});
  EXPECT_EQ(database.add(other), GRI_STATUS_TAG_DUPLICATE);
  EXPECT_EQ(tagsOf(database), (Tags{"A", "B"}));
}

TEST(GRIMetadataDatabaseTest, MergingAddsTheOthersRecordsInTheirOrder) {
  GRIMetadataDatabase database, other;
  addAll(database, {"B"});
  addAll(other, {"C", "A"});
  EXPECT_EQ(database.add(other), GR_STATUS_OK);
  EXPECT_EQ(tagsOf(database), (Tags{"B", "C", "A"}));
  EXPECT_EQ(tagsOf(other), (Tags{"C", "A"}));
}

TEST(GRIMetadataDatabaseTest, ANullRecordIsAnInternalError) {
  GRIMetadataDatabase database;
  EXPECT_EQ(database.add(std::unique_ptr<GRIMetadataRecord>()), GRI_STATUS_METADATA_INTERNAL);
}

TEST(GRIMetadataDatabaseTest, ACopyHasRecordsOfItsOwn) {
  GRIMetadataDatabase database;
  addAll(database, {"A", "B"});
  const GRIMetadataDatabase copy(database);
  database.removeAll();
  EXPECT_EQ(tagsOf(copy), (Tags{"A", "B"}));
  EXPECT_TRUE(copy.has("B"));
}

TEST(GRIMetadataDatabaseTest, AnAbsentTagGivesNotFoundAndNull) {
  GRIMetadataDatabase database;
  addAll(database, {"A"});
  const GRIMetadataRecord record = recordOf("X");
  const GRIMetadataRecord* found = &record;
  EXPECT_EQ(database.get("a", found), GRI_STATUS_TAG_NOT_FOUND);
  EXPECT_EQ(found, nullptr);
  EXPECT_FALSE(database.has("a"));
}

TEST(GRIMetadataDatabaseTest, ANullNameIsNotThere) {
  GRIMetadataDatabase database;
  addAll(database, {"A", ""});
  EXPECT_FALSE(database.has(nullptr));
  EXPECT_TRUE(database.has(""));
}

TEST(GRIMetadataDatabaseTest, ATagNumberStandsForItsText) {
  GRIMetadataDatabase database;
  addAll(database, {"IMAGE::WIDTH"});
  const GRIMetadataRecord* record = nullptr;
  EXPECT_TRUE(database.has(GRI_TAG_IMAGE_WIDTH));
  EXPECT_EQ(database.get(GRI_TAG_IMAGE_WIDTH, record), GR_STATUS_OK);
  EXPECT_EQ(database.remove(GRI_TAG_IMAGE_WIDTH), GR_STATUS_OK);
  EXPECT_EQ(database.get(GRI_TAG_IMAGE_WIDTH, record), GRI_STATUS_TAG_NOT_FOUND);
}

TEST(GRIMetadataDatabaseTest, ANumberWithoutATextIsNotThere) {
  GRIMetadataDatabase database;
  addAll(database, {"A"});
  const GRIMetadataRecord* record = nullptr;
  EXPECT_FALSE(database.has(136));
  EXPECT_EQ(database.get(136, record), GRI_STATUS_TAG_NOT_FOUND);
  EXPECT_EQ(database.remove(136), GRI_STATUS_TAG_NOT_FOUND);
}

TEST(GRIMetadataDatabaseTest, RemovingMovesTheRestUp) {
  GRIMetadataDatabase database;
  addAll(database, {"A", "B", "C"});
  EXPECT_EQ(database.remove("B"), GR_STATUS_OK);
  EXPECT_EQ(database.remove("B"), GRI_STATUS_TAG_NOT_FOUND);
  EXPECT_EQ(tagsOf(database), (Tags{"A", "C"}));
  EXPECT_TRUE(database.has("C"));
  EXPECT_EQ(database.add(recordOf("B")), GR_STATUS_OK);
  EXPECT_EQ(tagsOf(database), (Tags{"A", "C", "B"}));
}

TEST(GRIMetadataDatabaseTest, StaysAListThroughAnyAddingAndRemoving) {
  std::mt19937 random(5);
  GRIMetadataDatabase database;
  Tags model;
  for (int step = 0; step < 3000; ++step) {
    const std::string tag = std::to_string(random() % 60);
    const auto at = std::find(model.begin(), model.end(), tag);
    const bool isThere = at != model.end();
    if (random() % 2 == 0) {
      EXPECT_EQ(database.add(recordOf(tag)), isThere ? GRI_STATUS_TAG_DUPLICATE : GR_STATUS_OK);
      if (!isThere) model.push_back(tag);
    } else {
      EXPECT_EQ(database.remove(tag.c_str()), isThere ? GR_STATUS_OK : GRI_STATUS_TAG_NOT_FOUND);
      if (isThere) model.erase(at);
    }
    if (random() % 50 == 0) database.closeGaps();
    ASSERT_EQ(database.getIndexCount(), model.size());
    ASSERT_EQ(tagsOf(database), model);
    EXPECT_EQ(tagsOf(GRIMetadataDatabase(database)), model);
    for (const std::string& name : model) ASSERT_TRUE(database.has(name.c_str()));
  }
}

TEST(GRIMetadataDatabaseTest, RemoveAllLeavesAnEmptyDatabaseThatCanBeFilled) {
  GRIMetadataDatabase database;
  addAll(database, {"A", "B"});
  database.removeAll();
  EXPECT_EQ(database.getIndexCount(), 0u);
  EXPECT_FALSE(database.has("A"));
  addAll(database, {"A"});
  EXPECT_EQ(tagsOf(database), (Tags{"A"}));
}

TEST(GRIMetadataDatabaseTest, TheIndexEndsAtTheCount) {
  GRIMetadataDatabase database;
  addAll(database, {"A", "B"});
  const GRIMetadataRecord* record = nullptr;
  EXPECT_EQ(database.getDataByIndex(1, record), GR_STATUS_OK);
  EXPECT_EQ(database.getDataByIndex(database.getIndexCount(), record), GRI_STATUS_TAG_NOT_FOUND);
  EXPECT_EQ(record, nullptr);
  EXPECT_EQ(database.getDataByIndex(0xFFFFFFFF, record), GRI_STATUS_TAG_NOT_FOUND);
}

TEST(GRIMetadataDatabaseTest, SortOrdersByTagAndKeepsEveryRecordFindable) {
  GRIMetadataDatabase database;
  addAll(database, {"b", "C", "a", "B"});
  database.sort();
  EXPECT_EQ(tagsOf(database), (Tags{"B", "C", "a", "b"}));
  for (const char* tag : {"B", "C", "a", "b"}) EXPECT_TRUE(database.has(tag));
}

TEST(GRIMetadataDatabaseTest, TheSerialisedSizeIsThatOfAllRecords) {
  GRIMetadataDatabase database;
  EXPECT_EQ(database.getSerializedSize(), 0u);
  addAll(database, {"A", "BCD"});
  EXPECT_EQ(database.getSerializedSize(), (2u + 4 + 8 + 4) + (4u + 4 + 8 + 4));
}

TEST(GRIMetadataDatabaseTest, ManyRecordsAreFoundAmongMany) {
  GRIMetadataDatabase database;
  for (int i = 0; i < 20000; ++i) {
    ASSERT_EQ(database.add(recordOf("TAG::" + std::to_string(i))), GR_STATUS_OK);
  }
  for (int i = 0; i < 20000; ++i) ASSERT_TRUE(database.has(("TAG::" + std::to_string(i)).c_str()));
  EXPECT_FALSE(database.has("TAG::20000"));
}

}  // namespace
