// Tesra images on streams of the host's: whose they are, and when they are open.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <memory>

#include "tests/tesra/tesra_testFile.h"

namespace {

/// A host's stream over bytes. Its duplicates have positions of their own and count for it.
struct HostFile {
  const TesraBytes* bytes = nullptr;
  HostFile* original = nullptr;  // null for the first
  size_t position = 0;
  bool isOpen = false;
  bool isEOF = false;
  int opens = 0;   // of the first stream
  int closes = 0;  // of the first stream
  int reads = 0;   // of all of them
  std::vector<std::unique_ptr<HostFile>> duplicates{};
};

HostFile& fileOf(void* user) { return *static_cast<HostFile*>(user); }

gr_int32 openFile(void* user) {
  fileOf(user).isOpen = true;
  fileOf(user).position = 0;
  ++fileOf(user).opens;
  return 0;
}

gr_int32 closeFile(void* user) {
  fileOf(user).isOpen = false;
  ++fileOf(user).closes;
  return 0;
}

gr_uint32 readFile(void* user, gr_uint8* buffer, gr_uint32 length) {
  HostFile& file = fileOf(user);
  EXPECT_TRUE(file.isOpen) << "reads a closed stream";
  const size_t left = file.bytes->size() - std::min(file.position, file.bytes->size());
  const size_t count = std::min<size_t>(length, left);
  file.isEOF = length > left;
  if (count != 0) std::memcpy(buffer, file.bytes->data() + file.position, count);
  file.position += count;
  ++(file.original == nullptr ? file : *file.original).reads;
  return static_cast<gr_uint32>(count);
}

gr_uint32 writeFile(void*, const gr_uint8*, gr_uint32) {
  ADD_FAILURE() << "writes to the host's stream";
  return 0;
}

gr_int32 seekFile(void* user, gr_int64 offset, gr_int32 origin) {
  HostFile& file = fileOf(user);
  EXPECT_TRUE(file.isOpen) << "seeks in a closed stream";
  const auto size = static_cast<gr_int64>(file.bytes->size());
  const auto here = static_cast<gr_int64>(file.position);
  const gr_int64 base = origin == GRIC_SEEK_BEGIN ? 0 : origin == GRIC_SEEK_END ? size : here;
  if (base + offset < 0) return 1;
  file.position = static_cast<size_t>(base + offset);
  return 0;
}

gr_int64 tellFile(void* user) { return static_cast<gr_int64>(fileOf(user).position); }
gr_uint8 isFileAtEnd(void* user) { return fileOf(user).isEOF ? 1 : 0; }
gr_uint8 isFileOpen(void* user) { return fileOf(user).isOpen ? 1 : 0; }

void* duplicateFile(void* user) {
  HostFile& file = fileOf(user);
  HostFile& original = file.original == nullptr ? file : *file.original;
  auto duplicate = std::make_unique<HostFile>();
  duplicate->bytes = file.bytes;
  duplicate->original = &original;
  original.duplicates.push_back(std::move(duplicate));
  return original.duplicates.back().get();
}

class TesraStreamTest : public testing::Test {
 public:
  ~TesraStreamTest() override { EXPECT_EQ(gr_ioCStreamDestroy(m_stream), 0); }

 protected:
  TesraStreamTest() { m_file.bytes = &m_bytes; }

  GR_STATUS decode(gric_image image, gr_uint32 row, gr_uint32 numRows) {
    m_samples.assign(size_t{m_image.width} * numRows, 0);
    void* band = m_samples.data();
    return gric_decode(image, 0, row, m_image.width, numRows, 1.0, &band);
  }
  /// What the file holds of these rows.
  TesraBytes expected(gr_uint32 row, gr_uint32 numRows) const {
    const std::vector<gr_int32> all = tesra_noise(m_image)[0];
    const auto first = all.begin() + static_cast<std::ptrdiff_t>(row) * m_image.width;
    TesraBytes rows(size_t{m_image.width} * numRows);
    std::transform(first, first + static_cast<std::ptrdiff_t>(rows.size()), rows.begin(),
                   [](gr_int32 sample) { return static_cast<gr_uint8>(sample); });
    return rows;
  }

  TG3TestImage m_image = tesra_grayImage(40, 70, 2);
  TesraBytes m_bytes = tesra_fileOf(m_image);
  HostFile m_file;
  gr_ioCStream m_stream =
      gr_ioCallbackStreamCreate(openFile, closeFile, readFile, writeFile, seekFile, tellFile,
                                isFileAtEnd, isFileOpen, duplicateFile, &m_file);
  TesraBytes m_samples;
};

TEST_F(TesraStreamTest, AStreamHandedInClosedIsClosedAgainAfterEveryUse) {
  gric_image image = nullptr;
  ASSERT_EQ(gric_openTesraImageStream(&image, m_stream), 0u);
  EXPECT_FALSE(m_file.isOpen);
  EXPECT_GT(m_file.opens, 0);
  EXPECT_EQ(m_file.opens, m_file.closes);
  for (const gr_uint32 row : {0u, 33u}) {
    ASSERT_EQ(decode(image, row, 30), 0u);
    EXPECT_EQ(m_samples, expected(row, 30));
    EXPECT_FALSE(m_file.isOpen);
    for (const auto& duplicate : m_file.duplicates) EXPECT_FALSE(duplicate->isOpen);
  }
  EXPECT_EQ(gric_closeImage(image), 0u);
  EXPECT_EQ(m_file.opens, m_file.closes);
}

TEST_F(TesraStreamTest, AStreamHandedInOpenStaysOpen) {
  ASSERT_EQ(gr_ioCStreamOpen(m_stream), 0);
  gric_image image = nullptr;
  ASSERT_EQ(gric_openTesraImageStream(&image, m_stream), 0u);
  ASSERT_EQ(decode(image, 0, 70), 0u);
  EXPECT_EQ(m_samples, expected(0, 70));
  EXPECT_EQ(gric_closeImage(image), 0u);
  EXPECT_TRUE(m_file.isOpen);
  EXPECT_EQ(m_file.opens, 1);
  EXPECT_EQ(m_file.closes, 0);
}

TEST_F(TesraStreamTest, AFailedOpeningLeavesTheStreamAsItWas) {
  for (const size_t length : {size_t{0}, size_t{4}, size_t{8}, size_t{30}, m_bytes.size() / 2}) {
    SCOPED_TRACE(length);
    m_bytes = tesra_fileOf(m_image);
    m_bytes.resize(length);
    gric_image image = nullptr;
    if (gric_openTesraImageStream(&image, m_stream) == 0) gric_closeImage(image);
    EXPECT_FALSE(m_file.isOpen);
    EXPECT_EQ(m_file.opens, m_file.closes);
  }
}

}  // namespace
