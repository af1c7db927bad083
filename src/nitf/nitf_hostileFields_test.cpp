// Fields of headers that say what they can't, one at a time and several together.
#include <sys/resource.h>

#include <fstream>
#include <random>

#include "tests/support/nitf_testFiles.h"

namespace {

/// What a field may be made to say, as wide as the field.
std::vector<std::string> hostileValues(size_t width) {
  std::vector<std::string> values = {std::string(width, '0'), std::string(width, '9'),
                                     std::string(width, ' '), std::string(width, 'x'),
                                     std::string(width, '\xFF')};
  values.push_back(std::string(width - 1, '0') + '1');
  values.push_back(std::string(width - 1, '9') + '8');
  if (width > 1) values.push_back('-' + std::string(width - 2, '0') + '1');
  return values;
}

/// A field of a file, with the fields among which it stands.
struct Place {
  NITFTestFields* fields;  // null for a length, about which the file lies
  std::string name;
  size_t width;
};

class NITFHostileFieldsTest : public NITFFileTest, public testing::WithParamInterface<const char*> {
 protected:
  void SetUp() override {
    m_name = write(wholeFile().bytes());
    m_file.open(m_name, std::ios::in | std::ios::out | std::ios::binary);
    ASSERT_EQ(openFile(m_name), GR_STATUS_OK);
  }

  /// Images of few and of many bands, in one block and in several, and whatever else there is, with
  /// tagged extensions in all areas and behind them.
  static NITFTestFile wholeFile() {
    NITFTestFile file = nitfTestFileOfEverything(GetParam());
    file.areas = {};
    nitfTestAddArea(file.areas, "UDHDL", "JITCID00003abc", 1);
    nitfTestAddArea(file.areas, "XHDL", "RPC00A00000");
    file.data[0].data = "RPC00B00002de";
    const NITFTestPixels sequential = {
        .numCols = 6, .numRows = 5, .numBands = 3, .mode = 'S', .blockCols = 4, .blockRows = 4};
    file.images.push_back(nitfTestImage(GetParam(), sequential));
    if (GetParam() != std::string(NITF_TEST_20)) {
      file.images.push_back(nitfTestImage(GetParam(), {.numBands = 12, .mode = 'P'}));
    }
    return file;
  }

  static std::vector<Place> placesOf(NITFTestFile& file) {
    std::vector<Place> places;
    const auto add = [&places](NITFTestFields& fields) {
      for (const std::string& name : fields.names()) {
        const size_t width = fields.get(name).size();
        if (width > 0) places.push_back({&fields, name, width});
      }
    };
    add(file.header);
    add(file.areas);
    for (auto* const list :
         {&file.images, &file.graphics, &file.labels, &file.texts, &file.data, &file.reserved}) {
      for (NITFTestSegment& segment : *list) add(segment.header);
    }
    const NITFTestFields lengths = file.lengths();
    for (const std::string& name : lengths.names()) {
      places.push_back({nullptr, name, lengths.get(name).size()});
    }
    return places;
  }
  static void say(NITFTestFile& file, const Place& place, const std::string& value) {
    if (place.fields != nullptr) {
      place.fields->set(place.name, value);
    } else {
      file.lies.emplace_back(place.name, value);
    }
  }

  /// Opens a file that may be anything. What is refused is refused for what is wrong with it, and
  /// not because something ran out.
  void expectHonestStatuses(const NITFTestFile& file) {
    // All files are of one length. One that is overwritten doesn't wait for the disk.
    const std::string bytes = file.bytes();
    m_file.seekp(0);
    m_file.write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
    m_file.flush();
    for (const GR_STATUS status : openAndDecodeParts(m_name)) {
      const bool isOfFormat = status >= NITF_STATUS_UNSUPPORTED_DATATYPE &&
                              status <= NITF_STATUS_DUPLICATE_STREAM &&
                              status != NITF_STATUS_NO_MEMORY;
      EXPECT_TRUE(isOfFormat || status == GR_STATUS_OK || status == GRI_STATUS_RAW_SIZE ||
                  status == GRI_STATUS_TAG_DUPLICATE)
          << status;
    }
  }

  static long peakKiB() {
    rusage usage = {};
    ::getrusage(RUSAGE_SELF, &usage);
    return usage.ru_maxrss;
  }

  std::string m_name;
  std::fstream m_file;
};

TEST_P(NITFHostileFieldsTest, NoFieldDoesHarm) {
  const long memoryBefore = peakKiB();
  NITFTestFile file = wholeFile();
  for (const Place& place : placesOf(file)) {
    const std::string honest = place.fields == nullptr ? "" : place.fields->get(place.name);
    for (const std::string& value : hostileValues(place.width)) {
      SCOPED_TRACE(place.name + " " + value);
      say(file, place, value);
      expectHonestStatuses(file);
      file.lies.clear();
      if (place.fields != nullptr) place.fields->set(place.name, honest);
    }
  }
#ifndef GRI_SANITIZED
  EXPECT_LT(peakKiB() - memoryBefore, 64 * 1024);
#else
  static_cast<void>(memoryBefore);
#endif
}

TEST_P(NITFHostileFieldsTest, FewFieldsTogetherDoNoHarm) {
  std::mt19937 random(20240229);  // the same in every run
  const auto below = [&random](size_t count) { return static_cast<size_t>(random() % count); };
  for (int round = 0; round < 1500; ++round) {
    SCOPED_TRACE(round);
    NITFTestFile file = wholeFile();
    const std::vector<Place> places = placesOf(file);
    // Without a stated size more gets past the first look.
    if (round % 2 == 0) file.lies.emplace_back("FL", "999999999999");
    for (size_t i = 2 + below(3); i > 0; --i) {
      const Place& place = places[below(places.size())];
      const std::vector<std::string> values = hostileValues(place.width);
      say(file, place, values[below(values.size())]);
    }
    expectHonestStatuses(file);
  }
}

INSTANTIATE_TEST_SUITE_P(Versions, NITFHostileFieldsTest,
                         testing::Values(NITF_TEST_20, NITF_TEST_21), [](const auto& test) {
                           return std::string(test.param + 4, 2) + std::string(test.param + 7, 2);
                         });

}  // namespace
