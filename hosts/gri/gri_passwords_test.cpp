#include "hosts/gri/gri_passwords.h"

#include <gtest/gtest.h>

#include <fstream>

#include "tests/support/fake_gri.h"

namespace {

/// Arguments as main gets them, in memory that may be written.
class Arguments {
 public:
  explicit Arguments(std::vector<std::string> texts) : m_texts(std::move(texts)) {
    for (std::string& text : m_texts) m_pointers.push_back(text.data());
  }
  int count() const { return static_cast<int>(m_pointers.size()); }
  char** pointers() { return m_pointers.data(); }
  const std::vector<std::string>& texts() const { return m_texts; }

 private:
  std::vector<std::string> m_texts;
  std::vector<char*> m_pointers;
};

TEST(GRIPasswordsTest, AreTakenOutOfTheArguments) {
  const std::vector<std::string> given = {"gri", "convert",         "--password", "abc",
                                          "in",  "--password=defg", "out"};
  Arguments arguments(given);
  EXPECT_EQ(gri_takeArguments(arguments.count(), arguments.pointers()), given);
  std::vector<std::string> left = given;
  left[3] = std::string(3, '\0');
  left[5] = "--password=" + std::string(4, '\0');
  EXPECT_EQ(arguments.texts(), left);
}

TEST(GRIPasswordsTest, NothingElseIsTakenOutOfTheArguments) {
  const std::vector<std::string> given = {"gri",    "convert", "--password-file", "abc",
                                          "--size", "10x",     "--password"};
  Arguments arguments(given);
  EXPECT_EQ(gri_takeArguments(arguments.count(), arguments.pointers()), given);
  EXPECT_EQ(arguments.texts(), given);
}

TEST(GRIPasswordsTest, AreSetAsideBeforeTheArgumentsAreParsed) {
  const auto setAside = [](std::vector<std::string> given, GRIHostPassword& password) {
    Arguments arguments(std::move(given));
    const std::vector<const char*> left =
        gri_setPasswordAside(arguments.count(), arguments.pointers(), password);
    return std::vector<std::string>(left.begin(), left.end());
  };
  using Texts = std::vector<std::string>;
  GRIHostPassword password;
  EXPECT_EQ(setAside({"gri", "--password", "sesame", "a"}, password),
            (Texts{"gri", "--password", "...", "a"}));
  EXPECT_STREQ(password.text(), "sesame");
  EXPECT_EQ(setAside({"gri", "--password=-open", "a"}, password),
            (Texts{"gri", "--password=...", "a"}));
  EXPECT_STREQ(password.text(), "-open");
  EXPECT_EQ(setAside({"gri", "--password", "", "a"}, password),
            (Texts{"gri", "--password", "...", "a"}));
  EXPECT_STREQ(password.text(), "");
  for (const Texts& others : {Texts{"gri", "--password", "--force"}, Texts{"gri", "--password="},
                              Texts{"gri", "--password"}, Texts{"gri", "--password-file", "a"}}) {
    EXPECT_EQ(setAside(others, password), others);
  }
}

TEST(GRIPasswordsTest, AreNotRepeatedInTexts) {
  Arguments arguments({"gri", "info", "--password", "sesame", "--password=", "in"});
  EXPECT_EQ(
      gri_withoutPasswords("unknown: sesame sesame in", arguments.count(), arguments.pointers()),
      "unknown: ... ... in");
}

class GRIPasswordFileTest : public testing::Test {
 protected:
  GRIHostError read(const std::string& content) {
    std::ofstream(m_directory / "file", std::ios::binary) << content;
    return gri_readPasswordFile(m_directory / "file", m_password);
  }

  FakeDirectory m_directory;
  GRIHostPassword m_password;
};

TEST_F(GRIPasswordFileTest, HasThePasswordInItsFirstLine) {
  for (const char* content : {"open sesame", "open sesame\n", "open sesame\r\nsecond\n"}) {
    EXPECT_FALSE(read(content)) << content;
    EXPECT_STREQ(m_password.text(), "open sesame");
  }
}

TEST_F(GRIPasswordFileTest, LosesNothingButTheEndOfTheLine) {
  EXPECT_FALSE(read("\ropen\rsesame\r\r\n"));
  EXPECT_STREQ(m_password.text(), "\ropen\rsesame\r");
  EXPECT_FALSE(read("open sesame\r"));
  EXPECT_STREQ(m_password.text(), "open sesame");
}

TEST_F(GRIPasswordFileTest, IsRefusedWithAZeroInItsFirstLine) {
  using std::string_literals::operator""s;
  for (const std::string& content : {"open\0sesame\n"s, "\0"s, "\0open sesame"s}) {
    const GRIHostError error = read(content);
    EXPECT_EQ(error.status, GRI_HOST_STATUS_READ);
    EXPECT_NE(error.text.find("zero byte"), std::string::npos);
  }
  EXPECT_FALSE(read("open sesame\n\0"s));
}

TEST_F(GRIPasswordFileTest, IsRefusedWithoutOne) {
  for (const char* content : {"", "\n", "\r\n", "\nsecond\n"}) {
    EXPECT_EQ(read(content).status, GRI_HOST_STATUS_READ) << content;
  }
  EXPECT_EQ(gri_readPasswordFile(m_directory / "none", m_password).status, GRI_HOST_STATUS_OPEN);
  EXPECT_TRUE(gri_readPasswordFile(m_directory.path(), m_password));
}

TEST_F(GRIPasswordFileTest, ShowsThatAPasswordIsTooLong) {
  EXPECT_FALSE(read(std::string(100000, 'x')));
  EXPECT_EQ(std::string(m_password.text()), std::string(GRIHostPassword::MOST_BYTES, 'x'));
}

TEST(GRIHostPasswordTest, IsWipedWhenItGoes) {
  alignas(GRIHostPassword) std::array<char, sizeof(GRIHostPassword)> memory{};
  auto* const password = new (memory.data()) GRIHostPassword("sesame");
  EXPECT_STREQ(password->text(), "sesame");
  EXPECT_NE(std::string(memory.begin(), memory.end()).find("sesame"), std::string::npos);
  password->~GRIHostPassword();
  EXPECT_EQ(std::string(memory.begin(), memory.end()).find("sesame"), std::string::npos);
}

}  // namespace
