#include "hosts/gri/gri_outputFile.h"

#include <gtest/gtest.h>

#include <fstream>
#include <iterator>

#include "tests/support/fake_gri.h"

namespace {

void write(const std::filesystem::path& path, const std::string& text) {
  std::ofstream(path) << text;
}

std::string read(const std::filesystem::path& path) {
  std::ifstream file(path);
  return {std::istreambuf_iterator<char>(file), {}};
}

using Names = std::vector<std::string>;

}  // namespace

TEST(GRIOutputFileTest, NothingStandsAtTheNameBeforeTheCommit) {
  const FakeDirectory directory;
  GRIOutputFile output;
  ASSERT_FALSE(output.prepare(directory / "picture.png", false));
  write(output.path(), "pixels");
  EXPECT_FALSE(std::filesystem::exists(directory / "picture.png"));
  ASSERT_FALSE(output.commit());
  EXPECT_EQ(read(directory / "picture.png"), "pixels");
  EXPECT_EQ(directory.names(), Names{"picture.png"});
}

TEST(GRIOutputFileTest, WhatIsNotCommittedLeavesNoTrace) {
  const FakeDirectory directory;
  {
    GRIOutputFile output;
    ASSERT_FALSE(output.prepare(directory / "picture.png", false));
    write(output.path(), "half of the pix");
  }
  EXPECT_EQ(directory.names(), Names());
}

TEST(GRIOutputFileTest, FilesWrittenBesideItGoAlong) {
  const FakeDirectory directory;
  GRIOutputFile output;
  ASSERT_FALSE(output.prepare(directory / "picture.img", false));
  write(output.path(), "pixels");
  write(output.path().parent_path() / "picture.hdr", "header");
  ASSERT_FALSE(output.commit());
  EXPECT_EQ(directory.names(), (Names{"picture.hdr", "picture.img"}));
}

TEST(GRIOutputFileTest, WhatExistsIsReplacedOnlyByForce) {
  const FakeDirectory directory;
  write(directory / "picture.png", "old");
  GRIOutputFile careful;
  EXPECT_EQ(careful.prepare(directory / "picture.png", false).text,
            "the file exists; --force replaces it");
  GRIOutputFile output;
  ASSERT_FALSE(output.prepare(directory / "picture.png", true));
  write(output.path(), "new");
  EXPECT_EQ(read(directory / "picture.png"), "old");
  ASSERT_FALSE(output.commit());
  EXPECT_EQ(read(directory / "picture.png"), "new");
}

TEST(GRIOutputFileTest, AnExistingFileBesideItIsNotReplacedEither) {
  const FakeDirectory directory;
  write(directory / "picture.hdr", "somebody's");
  GRIOutputFile output;
  ASSERT_FALSE(output.prepare(directory / "picture.img", false));
  write(output.path(), "pixels");
  write(output.path().parent_path() / "picture.hdr", "header");
  EXPECT_EQ(output.commit().text, "picture.hdr exists beside it; --force replaces it");
  EXPECT_EQ(read(directory / "picture.hdr"), "somebody's");
  EXPECT_EQ(directory.names(), Names{"picture.hdr"});
}

TEST(GRIOutputFileTest, ALinkStaysAndWhatItPointsToIsReplaced) {
  const FakeDirectory directory;
  write(directory / "real.png", "old");
  std::filesystem::create_symlink("real.png", directory / "link.png");
  GRIOutputFile output;
  ASSERT_FALSE(output.prepare(directory / "link.png", true));
  write(output.path(), "new");
  ASSERT_FALSE(output.commit());
  EXPECT_TRUE(std::filesystem::is_symlink(directory / "link.png"));
  EXPECT_EQ(read(directory / "real.png"), "new");
}

TEST(GRIOutputFileTest, ALinkThatLeadsToNothingYetStaysToo) {
  const FakeDirectory directory;
  std::filesystem::create_directory(directory / "there");
  std::filesystem::create_symlink("second.png", directory / "first.png");
  std::filesystem::create_symlink("there/real.png", directory / "second.png");
  GRIOutputFile output;
  ASSERT_FALSE(output.prepare(directory / "first.png", false));
  write(output.path(), "new");
  ASSERT_FALSE(output.commit());
  EXPECT_TRUE(std::filesystem::is_symlink(directory / "first.png"));
  EXPECT_EQ(read(directory / "there" / "real.png"), "new");
  std::filesystem::create_symlink("loop.png", directory / "loop.png");
  EXPECT_EQ(GRIOutputFile().prepare(directory / "loop.png", true).text,
            "Too many levels of symbolic links");
}

TEST(GRIOutputFileTest, APathWithoutANameIsNoOutput) {
  const FakeDirectory directory;
  for (const std::string& path :
       {std::string(), (directory / "new").string() + '/', (directory / "new").string() + "/.."}) {
    EXPECT_EQ(GRIOutputFile().prepare(path, false).text, "No such file or directory") << path;
  }
  EXPECT_EQ(directory.names(), Names());
}

TEST(GRIOutputFileTest, ADeviceIsWrittenToAndNotReplaced) {
  GRIOutputFile output;
  ASSERT_FALSE(output.prepare("/dev/null", false));
  write(output.path(), "pixels");
  ASSERT_FALSE(output.commit());
  EXPECT_TRUE(std::filesystem::is_character_file("/dev/null"));
}

TEST(GRIOutputFileTest, PlacesThatCantBeWrittenFailWithTheSystemsReason) {
  const FakeDirectory directory;
  EXPECT_EQ(GRIOutputFile().prepare(directory / "no" / "where.png", false).text,
            "No such file or directory");
  EXPECT_EQ(GRIOutputFile().prepare(directory.path(), true).text, "Is a directory");
}

TEST(GRIOutputFileTest, OneFileUnderTwoNamesIsTheSame) {
  const FakeDirectory directory;
  write(directory / "one", "");
  write(directory / "other", "");
  std::filesystem::create_hard_link(directory / "one", directory / "linked");
  EXPECT_TRUE(gri_isSameFile(directory / "one", directory / "linked"));
  EXPECT_TRUE(gri_isSameFile(directory / "one", directory.path() / "." / "one"));
  EXPECT_FALSE(gri_isSameFile(directory / "one", directory / "other"));
  EXPECT_FALSE(gri_isSameFile(directory / "one", directory / "missing"));
}
