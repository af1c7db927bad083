#include "gr_lib_utils/include/gr_keyProvider.h"

#include <gtest/gtest.h>

#include <sstream>
#include <string>

namespace {

std::string textOf(const GRSecret& secret) { return {secret.span().begin(), secret.span().end()}; }

TEST(KeyProviderPwdIStreamTest, AsksForALine) {
  std::istringstream answers("sesame\nsecond line\n");
  std::ostringstream questions;
  KeyProviderPwdIStream provider(answers, questions);
  GRSecret text;
  ASSERT_EQ(provider.getKey(KeyProvider::LOCK_DIR_UNLOCK, text), GR_STATUS_OK);
  EXPECT_EQ(textOf(text), "sesame");
  EXPECT_EQ(questions.str(), "Enter password for This Tesra image ");
  ASSERT_EQ(provider.getKeyWithDescription("scale 2", KeyProvider::LOCK_DIR_UNLOCK, text),
            GR_STATUS_OK);
  EXPECT_EQ(textOf(text), "second line");
  EXPECT_EQ(questions.str(), "Enter password for This Tesra image Enter password for scale 2 ");
}

TEST(KeyProviderPwdIStreamTest, TakesALineWithoutItsEnd) {
  std::istringstream answers("sesame");
  std::ostringstream questions;
  KeyProviderPwdIStream provider(answers, questions);
  GRSecret text;
  ASSERT_EQ(provider.getKey(KeyProvider::LOCK_DIR_UNLOCK, text), GR_STATUS_OK);
  EXPECT_EQ(textOf(text), "sesame");
}

TEST(KeyProviderPwdIStreamTest, HasAnEmptyTextWhereNothingIsLeft) {
  std::istringstream answers("\n");
  std::ostringstream questions;
  KeyProviderPwdIStream provider(answers, questions);
  GRSecret text;
  for (int i = 0; i < 3; ++i) {
    const gr_uint8 old = 'x';
    ASSERT_EQ(text.assign({&old, 1}), GR_STATUS_OK);
    ASSERT_EQ(provider.getKey(KeyProvider::LOCK_DIR_UNLOCK, text), GR_STATUS_OK);
    EXPECT_TRUE(text.empty());
  }
}

TEST(KeyProviderPwdIStreamTest, ShowsThatATextIsTooLongAndGoesOnBehindIt) {
  for (const size_t length : {72, 73, 74, 75, 1000}) {
    SCOPED_TRACE(length);
    std::istringstream answers(std::string(length, 'a') + "\nsesame\n");
    std::ostringstream questions;
    KeyProviderPwdIStream provider(answers, questions);
    GRSecret text;
    ASSERT_EQ(provider.getKey(KeyProvider::LOCK_DIR_UNLOCK, text), GR_STATUS_OK);
    EXPECT_EQ(textOf(text), std::string(std::min<size_t>(length, 73), 'a'));
    ASSERT_EQ(provider.getKey(KeyProvider::LOCK_DIR_UNLOCK, text), GR_STATUS_OK);
    EXPECT_EQ(textOf(text), "sesame");
  }
}

TEST(KeyProviderPwdIStreamTest, SaysThatAPasswordIsIncorrect) {
  std::istringstream answers;
  std::ostringstream questions;
  KeyProviderPwdIStream(answers, questions).reportFailure();
  EXPECT_EQ(questions.str(), "Incorrect password\n");
}

TEST(KeyProviderRegistryTest, FindsPasswordsAndNothingElse) {
  std::istringstream answers;
  std::ostringstream questions;
  KeyProviderPwdIStream provider(answers, questions);
  KeyProviderRegistry providers;
  EXPECT_EQ(providers.find(1), nullptr);
  providers.add(provider);
  EXPECT_EQ(providers.find(1), &provider);
  for (const gr_uint8 type : {0, 2, 5, 255}) EXPECT_EQ(providers.find(type), nullptr);
}

}  // namespace
