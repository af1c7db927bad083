#include "gr_lib_utils/include/gr_fileSpec.h"

#include <gtest/gtest.h>

#include <string>
#include <thread>
#include <vector>

namespace {

std::string parentOf(const char* path) { return GRFileSpec(path).parent().utf8(); }
std::string nameOf(const char* path) { return GRFileSpec(path).fileName(); }
std::string suffixOf(const char* path) { return GRFileSpec(path).suffix(); }

std::string withSuffix(const char* path, const char* suffix) {
  GRFileSpec spec(path);
  spec.replaceSuffix(suffix);
  return spec.utf8();
}

std::string withoutSuffix(const char* path) {
  GRFileSpec spec(path);
  spec.removeSuffix();
  return spec.utf8();
}

TEST(GRFileSpecTest, JoinsPiecesWithOneBackslash) {
  EXPECT_STREQ(GRFileSpec("a\\", "b").utf8(), "a\\b");
  EXPECT_STREQ(GRFileSpec("a/", "b").utf8(), "a\\b");
  EXPECT_STREQ(GRFileSpec("a", "b", "c").utf8(), "a\\b\\c");
  EXPECT_STREQ(GRFileSpec("a/\\/", "b/c").utf8(), "a\\b/c");
  EXPECT_STREQ(GRFileSpec("a", nullptr, "c").utf8(), "a\\c");
  EXPECT_STREQ(GRFileSpec("/", "b").utf8(), "\\b");
  EXPECT_STREQ(GRFileSpec(GRFileSpec("a/b"), "c").utf8(), "a/b\\c");
}

TEST(GRFileSpecTest, KeepsTheBytesOfOnePieceAsTheyAre) {
  EXPECT_STREQ(GRFileSpec("/x//y\\z/").utf8(), "/x//y\\z/");
  EXPECT_STREQ(GRFileSpec("\xFF\xFE").utf8(), "\xFF\xFE");
  EXPECT_STREQ(GRFileSpec("\xFF").local(), "\xFF");
}

TEST(GRFileSpecTest, GivesTheDirectory) {
  EXPECT_EQ(parentOf("file"), ".");
  EXPECT_EQ(parentOf("\\file"), "\\");
  EXPECT_EQ(parentOf("/file"), "/");
  EXPECT_EQ(parentOf("a/b"), "a");
  EXPECT_EQ(parentOf("a\\b"), "a");
  EXPECT_EQ(parentOf("a/b/"), "a");
  EXPECT_EQ(parentOf("a//b"), "a/");
  EXPECT_EQ(parentOf("/"), "/");
  EXPECT_EQ(parentOf("\\"), "\\");
  EXPECT_EQ(parentOf("C:\\"), "C:\\");
  EXPECT_EQ(parentOf("C:\\file"), "C:\\");
  EXPECT_EQ(parentOf("C:/file"), "C:/");
  EXPECT_EQ(parentOf(""), ".");
  EXPECT_STREQ(GRFileSpec().parent().utf8(), ".");
}

TEST(GRFileSpecTest, GivesTheLastPiece) {
  EXPECT_EQ(nameOf("file"), "file");
  EXPECT_EQ(nameOf("a/b\\file"), "file");
  EXPECT_EQ(nameOf("a/b/"), "b/");
  EXPECT_EQ(nameOf("C:\\"), "C:\\");
  EXPECT_EQ(nameOf("C:\\file"), "file");
  EXPECT_EQ(nameOf("/"), "/");
  EXPECT_EQ(nameOf(""), "");
}

TEST(GRFileSpecTest, TakesTheSuffixBehindTheLastDotOfTheWholePath) {
  EXPECT_EQ(suffixOf("a.tar.gz"), "gz");
  EXPECT_EQ(suffixOf("a"), "");
  EXPECT_EQ(suffixOf("a."), "");
  EXPECT_EQ(suffixOf("a.b/file"), "b/file");
  EXPECT_EQ(withoutSuffix("a.tar.gz"), "a.tar");
  EXPECT_EQ(withoutSuffix("a"), "a");
  EXPECT_EQ(withoutSuffix("a.b/file"), "a");
}

TEST(GRFileSpecTest, ReplacesTheSuffix) {
  EXPECT_EQ(withSuffix("a", "tfw"), "a.tfw");
  EXPECT_EQ(withSuffix("a.tar.gz", "tfw"), "a.tar.tfw");
  EXPECT_EQ(withSuffix("a.b/file", "c"), "a.c");
  EXPECT_EQ(withSuffix("a.b", nullptr), "a.");
  EXPECT_EQ(withSuffix("", "x"), ".x");
  GRFileSpec empty;
  empty.replaceSuffix("x");
  EXPECT_STREQ(empty.utf8(), ".x");
}

TEST(GRFileSpecTest, ComparesByBytesAndEmptySpecificationsAreEqual) {
  EXPECT_TRUE(GRFileSpec() == GRFileSpec());
  EXPECT_TRUE(GRFileSpec() != GRFileSpec(""));
  EXPECT_TRUE(GRFileSpec() != GRFileSpec("a"));
  EXPECT_TRUE(GRFileSpec("a") == GRFileSpec("a"));
  EXPECT_TRUE(GRFileSpec("a/b") != GRFileSpec("a\\b"));
}

TEST(GRFileSpecTest, IsAbsoluteInTheWayOfDrivesAndShares) {
  EXPECT_TRUE(GRFileSpec("\\\\host\\x").isAbsolute());
  EXPECT_TRUE(GRFileSpec("C:\\x").isAbsolute());
  EXPECT_TRUE(GRFileSpec("z:\\").isAbsolute());
  EXPECT_TRUE(GRFileSpec("_:\\").isAbsolute());  // between 'Z' and 'a'
  EXPECT_FALSE(GRFileSpec("C:x").isAbsolute());
  EXPECT_FALSE(GRFileSpec("C:/x").isAbsolute());
  EXPECT_FALSE(GRFileSpec("1:\\").isAbsolute());
  EXPECT_FALSE(GRFileSpec("/x").isAbsolute());
  EXPECT_FALSE(GRFileSpec("\\x").isAbsolute());
  EXPECT_FALSE(GRFileSpec("").isAbsolute());
}

TEST(GRFileSpecTest, GivesItsWideForm) {
  EXPECT_EQ(std::u16string(GRFileSpec("a\xC3\xA4\xE2\x82\xAC").wide()), u"aä€");
  EXPECT_EQ(std::u16string(GRFileSpec("\xF0\x9D\x84\x9E").wide()), u"\U0001D11E");
  EXPECT_EQ(std::u16string(GRFileSpec("a\xFFz").wide()), u"a\uFFFDz");
  EXPECT_EQ(std::u16string(GRFileSpec().wide()), u"");
}

TEST(GRFileSpecTest, ForgetsItsWideFormWhenThePathChanges) {
  GRFileSpec spec("a.b");
  EXPECT_EQ(std::u16string(spec.wide()), u"a.b");
  spec.replaceSuffix("c");
  EXPECT_EQ(std::u16string(spec.wide()), u"a.c");
  spec.removeSuffix();
  EXPECT_EQ(std::u16string(spec.wide()), u"a");
  spec = GRFileSpec("d");
  EXPECT_EQ(std::u16string(spec.wide()), u"d");
}

TEST(GRFileSpecTest, TakesWideTextAsCodePointsOrSurrogatePairs) {
  EXPECT_STREQ(GRFileSpec(L"a", L"\u00E4").utf8(), "a\\\xC3\xA4");
  EXPECT_STREQ(GRFileSpec(L"\U0001D11E").utf8(), "\xF0\x9D\x84\x9E");
  const wchar_t pair[] = {static_cast<wchar_t>(0xD834), static_cast<wchar_t>(0xDD1E), 0};
  EXPECT_STREQ(GRFileSpec(pair).utf8(), "\xF0\x9D\x84\x9E");
  const wchar_t lone[] = {static_cast<wchar_t>(0xD834), L'x', 0};
  EXPECT_STREQ(GRFileSpec(lone).utf8(), "\xEF\xBF\xBDx");
}

TEST(GRFileSpecTest, CopiesAreValues) {
  GRFileSpec original("a.b");
  const GRFileSpec copy(original);
  original.replaceSuffix("c");
  EXPECT_STREQ(copy.utf8(), "a.b");
  const GRFileSpec moved(std::move(original));
  EXPECT_STREQ(moved.utf8(), "a.c");
}

TEST(GRFileSpecTest, ServesSeveralThreadsThatRead) {
  const GRFileSpec spec("a\xC3\xA4");
  std::vector<std::thread> threads;
  std::vector<std::u16string> texts(4);
  threads.reserve(texts.size());
  for (std::u16string& text : texts) {
    threads.emplace_back([&] { text = spec.wide(); });
  }
  for (std::thread& thread : threads) thread.join();
  for (const std::u16string& text : texts) EXPECT_EQ(text, u"aä");
}

}  // namespace
