#include "gr_lib_utils/include/gr_fileUtils.h"

#include <fcntl.h>
#include <gmock/gmock.h>
#include <sys/stat.h>
#include <unistd.h>

#include <filesystem>
#include <string>

#include "gr_lib_utils/include/gr_status.h"
#include "gr_lib_utils/src/gr_testUtils.h"

namespace {

namespace fs = std::filesystem;

GRFileSpec spec(const std::string& path) { return GRFileSpec(path.c_str()); }

/// Sets an environment variable, or unsets it with null, and puts back what was there.
class EnvironmentVariable {
 public:
  EnvironmentVariable(const char* name, const char* value) : m_name(name) {
    if (const char* old = std::getenv(name)) m_old = old;
    m_wasSet = std::getenv(name) != nullptr;
    set(value);
  }
  EnvironmentVariable(const EnvironmentVariable&) = delete;
  EnvironmentVariable& operator=(const EnvironmentVariable&) = delete;
  ~EnvironmentVariable() { set(m_wasSet ? m_old.c_str() : nullptr); }

 private:
  void set(const char* value) {
    if (value == nullptr) {
      ::unsetenv(m_name);
    } else {
      ::setenv(m_name, value, 1);
    }
  }

  const char* m_name;
  std::string m_old;
  bool m_wasSet = false;
};

class WorkingDirectory {
 public:
  explicit WorkingDirectory(const std::string& path) : m_old(fs::current_path()) {
    fs::current_path(path);
  }
  WorkingDirectory(const WorkingDirectory&) = delete;
  WorkingDirectory& operator=(const WorkingDirectory&) = delete;
  ~WorkingDirectory() { fs::current_path(m_old); }

 private:
  fs::path m_old;
};

TEST(GRFileUtilsTest, TellsFilesDirectoriesAndNothingApart) {
  const TemporaryDirectory directory;
  const std::string file = directory.fileOf("x", countingBytes(3));
  EXPECT_TRUE(GRFileUtils::fileExists(spec(file)));
  EXPECT_FALSE(GRFileUtils::isDirectory(spec(file)));
  EXPECT_TRUE(GRFileUtils::fileExists(spec(directory.path())));
  EXPECT_TRUE(GRFileUtils::isDirectory(spec(directory.path())));
  EXPECT_FALSE(GRFileUtils::fileExists(spec(directory.path("y"))));
  EXPECT_EQ(GRFileUtils::getFileSize(spec(file)), 3u);
  EXPECT_EQ(GRFileUtils::getFileSize(spec(directory.path("y"))), 0u);
}

TEST(GRFileUtilsTest, FindsAFileUnderAJoinedPath) {
  const TemporaryDirectory directory;
  fs::create_directory(directory.path("sub"));
  directory.fileOf("sub/x", countingBytes(3));
  const GRFileSpec joined(directory.path().c_str(), "sub", "x");
  EXPECT_EQ(GRFileUtils::getFileSize(joined), 3u);
  EXPECT_EQ(GRFileUtils::remove(joined), GR_STATUS_OK);
  EXPECT_FALSE(fs::exists(directory.path("sub/x")));
}

TEST(GRFileUtilsTest, FindsAFileWhoseNameHoldsABackslash) {
  const TemporaryDirectory directory;
  const std::string odd = directory.fileOf("a\\b", countingBytes(2));
  fs::create_directory(directory.path("a"));
  directory.fileOf("a/b", countingBytes(5));
  EXPECT_EQ(GRFileUtils::getFileSize(spec(odd)), 2u);
}

TEST(GRFileUtilsTest, MakesAFileInTheDirectoryOfAJoinedPath) {
  const TemporaryDirectory directory;
  FILE* const file = GRFileUtils::fopen(GRFileSpec(directory.path().c_str(), "new"), "wb");
  ASSERT_NE(file, nullptr);
  std::fclose(file);
  EXPECT_TRUE(fs::exists(directory.path("new")));
}

TEST(GRFileUtilsTest, MakesAFileInADirectoryWhoseNameHoldsABackslash) {
  const TemporaryDirectory directory;
  fs::create_directory(directory.path("odd\\name"));
  const GRFileSpec path(directory.path("odd\\name").c_str(), "new");
  EXPECT_EQ(GRFileUtils::createDirectory(path), GR_STATUS_OK);
  EXPECT_TRUE(fs::is_directory(directory.path("odd\\name") + "/new"));
}

TEST(GRFileUtilsTest, MakesAFileWhoseNameHoldsABackslashWhereNothingElseIsMeant) {
  const TemporaryDirectory directory;
  FILE* const file = GRFileUtils::fopen(spec(directory.path("a\\b")), "wb");
  ASSERT_NE(file, nullptr);
  std::fclose(file);
  EXPECT_TRUE(fs::exists(directory.path("a\\b")));
}

TEST(GRFileUtilsTest, OpensAFileWhoseNameIsNotUtf8) {
  const TemporaryDirectory directory;
  const std::string odd = directory.fileOf("\xFF\xFE", countingBytes(2));
  EXPECT_EQ(GRFileUtils::getFileSize(spec(odd)), 2u);
}

TEST(GRFileUtilsTest, CreatesMovesAndRemoves) {
  const TemporaryDirectory directory;
  EXPECT_EQ(GRFileUtils::createDirectory(spec(directory.path("d"))), GR_STATUS_OK);
  EXPECT_EQ(GRFileUtils::createDirectory(spec(directory.path("d"))), GR_STATUS_CREATEDIR);
  EXPECT_EQ(GRFileUtils::move(spec(directory.path("d")), spec(directory.path("e"))), GR_STATUS_OK);
  EXPECT_EQ(GRFileUtils::move(spec(directory.path("d")), spec(directory.path("f"))),
            GR_STATUS_MOVE);
  EXPECT_EQ(GRFileUtils::removeDirectory(spec(directory.path("e"))), GR_STATUS_OK);
  EXPECT_EQ(GRFileUtils::removeDirectory(spec(directory.path("e"))), GR_STATUS_DELETE);
  EXPECT_EQ(GRFileUtils::remove(spec(directory.path("g"))), GR_STATUS_DELETE);
}

TEST(GRFileUtilsTest, CopiesOverAnExistingFile) {
  const TemporaryDirectory directory;
  const std::string from = directory.fileOf("from", countingBytes(100));
  const std::string to = directory.fileOf("to", countingBytes(200));
  EXPECT_EQ(GRFileUtils::copy(spec(from), spec(to)), GR_STATUS_OK);
  EXPECT_EQ(GRFileUtils::getFileSize(spec(to)), 100u);
  EXPECT_EQ(GRFileUtils::copy(spec(directory.path("none")), spec(to)), GR_STATUS_FAILURE);
  EXPECT_EQ(GRFileUtils::copy(spec(from), spec(directory.path("none/x"))), GRI_STATUS_OPEN_ERROR);
}

TEST(GRFileUtilsTest, ACopyOfAFileOntoItselfFailsAndLeavesIt) {
  const TemporaryDirectory directory;
  const std::string file = directory.fileOf("x", countingBytes(100));
  fs::create_hard_link(file, directory.path("y"));
  EXPECT_EQ(GRFileUtils::copy(spec(file), spec(file)), GR_STATUS_FAILURE);
  EXPECT_EQ(GRFileUtils::copy(spec(file), spec(directory.path("y"))), GR_STATUS_FAILURE);
  EXPECT_EQ(GRFileUtils::getFileSize(spec(file)), 100u);
}

TEST(GRFileUtilsTest, ReopensAFile) {
  const TemporaryDirectory directory;
  directory.fileOf("one", {1});
  directory.fileOf("two", {2});
  FILE* file = GRFileUtils::fopen(spec(directory.path("one")), "rb");
  file = GRFileUtils::freopen(GRFileSpec(directory.path().c_str(), "two"), "rb", file);
  ASSERT_NE(file, nullptr);
  EXPECT_EQ(std::fgetc(file), 2);
  std::fclose(file);
}

TEST(GRFileUtilsTest, ListsADirectoryWithoutItselfAndItsParent) {
  const TemporaryDirectory directory;
  directory.fileOf("a", {});
  directory.fileOf(".b", {});
  EXPECT_THAT(GRFileUtils::listDirectory(spec(directory.path())),
              testing::UnorderedElementsAre("a", ".b"));
  EXPECT_TRUE(GRFileUtils::listDirectory(spec(directory.path("none"))).empty());
}

TEST(GRFileUtilsTest, KnowsTheCurrentDirectoryUpTo259Bytes) {
  const TemporaryDirectory directory;
  {
    const WorkingDirectory here(directory.path());
    EXPECT_EQ(GRFileUtils::getCurrentDirectory(), spec(fs::canonical(directory.path())));
  }
  const std::string deep = directory.path(std::string(200, 'x') + "/" + std::string(60, 'y'));
  fs::create_directories(deep);
  const WorkingDirectory here(deep);
  EXPECT_TRUE(GRFileUtils::getCurrentDirectory().isEmpty());
}

TEST(GRFileUtilsTest, GivesTheTimeOfTheLastChange) {
  const TemporaryDirectory directory;
  const std::string file = directory.fileOf("x", {});
  const auto timeAfterSetting = [&](time_t seconds) {
    const timespec times[2] = {{seconds, 0}, {seconds, 0}};
    EXPECT_EQ(::utimensat(AT_FDCWD, file.c_str(), times, 0), 0);
    return GRFileUtils::getFileTime(spec(file));
  };
  EXPECT_EQ(timeAfterSetting(1000000000), 1000000000u);
  EXPECT_EQ(timeAfterSetting(-5), 0u);
  EXPECT_EQ(GRFileUtils::getFileTime(spec(directory.path("none"))), 0u);
}

TEST(GRFileUtilsTest, TurnsAFileTimeIntoUnixSeconds) {
  EXPECT_EQ(GRFileUtils::fileTimeToUnix(0), 0u);
  EXPECT_EQ(GRFileUtils::fileTimeToUnix(0x19DB1DED53E8000 - 1), 0u);
  EXPECT_EQ(GRFileUtils::fileTimeToUnix(0x19DB1DED53E8000), 0u);
  EXPECT_EQ(GRFileUtils::fileTimeToUnix(0x19DB1DED53E8000 + 9999999), 0u);
  EXPECT_EQ(GRFileUtils::fileTimeToUnix(0x19DB1DED53E8000 + 10000000), 1u);
  EXPECT_EQ(GRFileUtils::fileTimeToUnix(~gr_uint64{0}), 0xFFFFFFFFu);
}

TEST(GRFileUtilsTest, MakesATemporaryFileInTheGivenDirectory) {
  const TemporaryDirectory directory;
  GRFileSpec first;
  GRFileSpec second;
  EXPECT_EQ(GRFileUtils::makeTempFile(spec(directory.path()), "pre", first), GR_STATUS_OK);
  EXPECT_EQ(GRFileUtils::makeTempFile(spec(directory.path()), nullptr, second), GR_STATUS_OK);
  EXPECT_TRUE(first != second);
  EXPECT_THAT(
      GRFileUtils::listDirectory(spec(directory.path())),
      testing::UnorderedElementsAre(testing::StartsWith("pre"), testing::StartsWith("gri")));
  EXPECT_TRUE(GRFileUtils::fileExists(first));
  EXPECT_TRUE(GRFileUtils::fileExists(second));
}

TEST(GRFileUtilsTest, TakesTheTemporaryDirectoryFromTheEnvironment) {
  const TemporaryDirectory one;
  const TemporaryDirectory two;
  const auto madeIn = [](const TemporaryDirectory& directory) {
    GRFileSpec path;
    EXPECT_EQ(GRFileUtils::makeTempFile(GRFileSpec(), nullptr, path), GR_STATUS_OK);
    const bool isThere = fs::path(path.utf8()).parent_path() == fs::path(directory.path());
    EXPECT_EQ(GRFileUtils::remove(path), GR_STATUS_OK);
    return isThere;
  };
  const EnvironmentVariable temp("TEMP", two.path().c_str());
  {
    const EnvironmentVariable tmpdir("TMPDIR", one.path().c_str());
    EXPECT_TRUE(madeIn(one));
  }
  const EnvironmentVariable tmpdir("TMPDIR", nullptr);
  EXPECT_TRUE(madeIn(two));
}

TEST(GRFileUtilsTest, RefusesATemporaryDirectoryThatDoesNotExist) {
  const TemporaryDirectory directory;
  GRFileSpec path("before");
  EXPECT_EQ(GRFileUtils::makeTempFile(spec(directory.path("none")), nullptr, path),
            GR_STATUS_TEMPNAM);
  const EnvironmentVariable tmpdir("TMPDIR", directory.path("none").c_str());
  EXPECT_EQ(GRFileUtils::makeTempFile(GRFileSpec(), nullptr, path), GR_STATUS_TEMPNAM);
  EXPECT_STREQ(path.utf8(), "before");
}

}  // namespace
