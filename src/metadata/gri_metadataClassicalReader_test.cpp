#include "metadata/gri_metadataClassicalReader.h"

#include <gtest/gtest.h>

#include <cstring>
#include <string>
#include <vector>

#include "gr_lib_utils/include/gr_ioStreamUtils.h"
#include "gr_lib_utils/include/gr_status.h"
#include "metadata/gri_metadataAcc.h"
#include "metadata/gri_metadataDatabase.h"

namespace {

using Bytes = std::vector<gr_uint8>;

Bytes operator+(Bytes a, const Bytes& b) {
  a.insert(a.end(), b.begin(), b.end());
  return a;
}

Bytes number32(gr_uint32 value) {
  return {static_cast<gr_uint8>(value >> 24), static_cast<gr_uint8>(value >> 16),
          static_cast<gr_uint8>(value >> 8), static_cast<gr_uint8>(value)};
}

Bytes text(const std::string& value) {
  Bytes bytes(value.begin(), value.end());
  bytes.push_back(0);
  return bytes;
}

Bytes recordOf(const std::string& name, gr_uint32 type, gr_uint32 count,
               const std::vector<gr_uint32>& dims, const Bytes& values) {
  Bytes bytes = number32(0) + text(name) + number32(type) + number32(count) +
                number32(static_cast<gr_uint32>(dims.size()));
  for (const gr_uint32 dim : dims) bytes = bytes + number32(dim);
  return bytes + values;
}

Bytes begin(gr_uint8 major = 1) {
  return Bytes{0, major, 0, 0} + recordOf("IMAGE::SOM", 1, 1, {1}, {0});
}
Bytes end() { return recordOf("IMAGE::EOM", 1, 1, {1}, {0}); }

GR_STATUS readInto(GRIMetadataDatabase& database, const Bytes& block) {
  auto stream = GRIOStreamUtils::openMemStream();
  EXPECT_EQ(stream->write(block.data(), static_cast<gr_uint32>(block.size())), block.size());
  EXPECT_EQ(stream->seek(0, GRIO_SEEK_BEGIN), GR_STATUS_OK);
  return GRIMetadataClassicalReader(database, *stream, block.size()).read();
}

gr_uint32 scalar32(const GRIMetadataDatabase& database, const char* tag) {
  const GRIMetadataRecord* record = nullptr;
  EXPECT_EQ(database.get(tag, record), GR_STATUS_OK);
  gr_uint32 value = 0;
  if (record != nullptr) std::memcpy(&value, record->getScalarData(), sizeof(value));
  return value;
}

TEST(GRIMetadataClassicalReaderTest, AddsNothingForABlockOfBeginAndEndAlone) {
  GRIMetadataDatabase database;
  EXPECT_EQ(readInto(database, begin() + end()), GR_STATUS_OK);
  EXPECT_EQ(database.getIndexCount(), 0u);
}

TEST(GRIMetadataClassicalReaderTest, TurnsNumbersIntoTheMachinesOrder) {
  GRIMetadataDatabase database;
  EXPECT_EQ(readInto(database,
                     begin() + recordOf("IMAGE::WIDTH", 3, 1, {1}, number32(0x01020304)) + end()),
            GR_STATUS_OK);
  EXPECT_EQ(scalar32(database, "IMAGE::WIDTH"), 0x01020304u);
}

TEST(GRIMetadataClassicalReaderTest, KeepsTheLaterOfTwoRecordsOfOneName) {
  GRIMetadataDatabase database;
  EXPECT_EQ(readInto(database, begin() + recordOf("X", 3, 1, {1}, number32(1)) +
                                   recordOf("X", 3, 1, {1}, number32(2)) + end()),
            GR_STATUS_OK);
  EXPECT_EQ(database.getIndexCount(), 1u);
  EXPECT_EQ(scalar32(database, "X"), 2u);
}

TEST(GRIMetadataClassicalReaderTest, KeepsTheOrderOfTheLastOnesOfMany) {
  constexpr gr_uint32 COUNT = 50000;
  Bytes block = begin();
  const auto add = [&block](gr_uint32 number, gr_uint32 value) {
    const Bytes record = recordOf(std::to_string(number), 3, 1, {1}, number32(value));
    block.insert(block.end(), record.begin(), record.end());
  };
  for (gr_uint32 i = 0; i < COUNT; ++i) add(i, 1);
  for (gr_uint32 i = 0; i < COUNT; ++i) add(0, i);
  GRIMetadataDatabase database;
  EXPECT_EQ(readInto(database, block + end()), GR_STATUS_OK);
  ASSERT_EQ(database.getIndexCount(), COUNT);
  const GRIMetadataRecord* record = nullptr;
  ASSERT_EQ(database.getDataByIndex(0, record), GR_STATUS_OK);
  EXPECT_STREQ(record->getTagName(), "1");
  ASSERT_EQ(database.getDataByIndex(COUNT - 1, record), GR_STATUS_OK);
  EXPECT_STREQ(record->getTagName(), "0");
  EXPECT_EQ(scalar32(database, "0"), COUNT - 1);
}

TEST(GRIMetadataClassicalReaderTest, ReadsEachTextOfAnArray) {
  GRIMetadataDatabase database;
  const std::string longText(5000, 'x');
  EXPECT_EQ(
      readInto(database,
               begin() + recordOf("T", 5, 3, {3}, text("") + text(longText) + text("c")) + end()),
      GR_STATUS_OK);
  const GRIMetadataRecord* record = nullptr;
  ASSERT_EQ(database.get("T", record), GR_STATUS_OK);
  gr_uint32 count = 0;
  const auto* texts = static_cast<const char* const*>(record->getVectorData(count));
  ASSERT_EQ(count, 3u);
  EXPECT_STREQ(texts[0], "");
  EXPECT_EQ(texts[1], longText);
  EXPECT_STREQ(texts[2], "c");
}

TEST(GRIMetadataClassicalReaderTest, TakesNoDimensionsForOneOfAllValues) {
  GRIMetadataDatabase database;
  EXPECT_EQ(readInto(database, begin() + recordOf("V", 1, 3, {}, {7, 8, 9}) + end()), GR_STATUS_OK);
  const GRIMetadataRecord* record = nullptr;
  ASSERT_EQ(database.get("V", record), GR_STATUS_OK);
  ASSERT_EQ(record->getNumDims(), 1u);
  EXPECT_EQ(record->getDims()[0], 3u);
}

TEST(GRIMetadataClassicalReaderTest, MakesAnEmptyRecordOfACountOfZero) {
  GRIMetadataDatabase database;
  EXPECT_EQ(readInto(database, begin() + recordOf("E", 3, 0, {0}, {}) + end()), GR_STATUS_OK);
  const GRIMetadataRecord* record = nullptr;
  ASSERT_EQ(database.get("E", record), GR_STATUS_OK);
  EXPECT_EQ(record->getNumElements(), 0u);
}

TEST(GRIMetadataClassicalReaderTest, ReadsNothingOfALaterMajorVersion) {
  GRIMetadataDatabase database;
  EXPECT_EQ(readInto(database, begin(2) + recordOf("X", 3, 1, {1}, number32(1)) + end()),
            GR_STATUS_OK);
  EXPECT_EQ(database.getIndexCount(), 0u);
}

TEST(GRIMetadataClassicalReaderTest, EndsAtAnEmptyName) {
  GRIMetadataDatabase database;
  EXPECT_EQ(readInto(database, begin() + recordOf("X", 3, 1, {1}, number32(1)) + number32(0) +
                                   text("") + Bytes{1, 2, 3}),
            GR_STATUS_OK);
  EXPECT_EQ(database.getIndexCount(), 1u);
}

TEST(GRIMetadataClassicalReaderTest, TakesANameOf99CharactersAndRefusesOneOf100) {
  GRIMetadataDatabase database;
  const std::string longest(99, 'n');
  EXPECT_EQ(readInto(database, begin() + recordOf(longest, 1, 1, {1}, {5}) + end()), GR_STATUS_OK);
  EXPECT_TRUE(database.has(longest.c_str()));
  EXPECT_EQ(readInto(database, begin() + recordOf(longest + "n", 1, 1, {1}, {5}) + end()),
            GRI_STATUS_METADATA_CLASSICAL);
}

TEST(GRIMetadataClassicalReaderTest, RefusesElevenDimensions) {
  GRIMetadataDatabase database;
  const std::vector<gr_uint32> ones(11, 1);
  EXPECT_EQ(readInto(database, begin() + recordOf("X", 1, 1, ones, {5}) + end()),
            GRI_STATUS_METADATA_CLASSICAL);
}

TEST(GRIMetadataClassicalReaderTest, RefusesDimensionsThatSayAnotherCount) {
  GRIMetadataDatabase database;
  EXPECT_EQ(readInto(database, begin() + recordOf("X", 1, 4, {2, 3}, {1, 2, 3, 4}) + end()),
            GRI_STATUS_METADATA_CLASSICAL);
}

TEST(GRIMetadataClassicalReaderTest, RefusesUnknownTypesAndNegativeCounts) {
  GRIMetadataDatabase database;
  for (const gr_uint32 type : {0u, 4u, 11u, 0xFFFFFFFFu}) {
    SCOPED_TRACE(type);
    EXPECT_EQ(readInto(database, begin() + recordOf("X", type, 1, {1}, {5}) + end()),
              GRI_STATUS_METADATA_CLASSICAL);
  }
  EXPECT_EQ(readInto(database, begin() + recordOf("X", 1, 0xFFFFFFFF, {0xFFFFFFFF}, {5}) + end()),
            GRI_STATUS_METADATA_CLASSICAL);
}

TEST(GRIMetadataClassicalReaderTest, RefusesACountThatTheBlockCannotHold) {
  GRIMetadataDatabase database;
  EXPECT_EQ(readInto(database, begin() + recordOf("X", 7, 0x7FFFFFFF, {0x7FFFFFFF}, {5}) + end()),
            GRI_STATUS_METADATA_CLASSICAL);
  EXPECT_EQ(readInto(database, begin() + recordOf("X", 5, 0x7FFFFFFF, {0x7FFFFFFF}, {5}) + end()),
            GRI_STATUS_METADATA_CLASSICAL);
}

TEST(GRIMetadataClassicalReaderTest, FailsOnEveryTruncationAndKeepsTheRecordsInFront) {
  const Bytes first = begin() + recordOf("A", 3, 1, {1}, number32(1));
  const Bytes whole = first + recordOf("B", 5, 2, {2}, text("one") + text("two")) + end();
  for (size_t length = 0; length < whole.size(); ++length) {
    SCOPED_TRACE(length);
    GRIMetadataDatabase database;
    EXPECT_EQ(readInto(database, Bytes(whole.begin(), whole.begin() + static_cast<long>(length))),
              GRI_STATUS_METADATA_CLASSICAL);
    EXPECT_EQ(database.has("A"), length >= first.size());
  }
}

}  // namespace
