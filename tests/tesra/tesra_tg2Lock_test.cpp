// Locked images of generation 2 as a host meets them.

#include <gtest/gtest.h>

#include "gr_lib_utils/include/gr_smartPointer.h"
#include "image/gri_sceneBuffer.h"
#include "tesra/tesra_imageReader.h"
#include "tests/support/tg2_lockWriter.h"
#include "tests/tesra/tesra_testFile.h"

namespace {

constexpr gr_uint32 WIDTH = 60;
constexpr gr_uint32 HEIGHT = 80;  // more than a strip

TG2TestImage testImage() {
  TG2TestImage image;
  image.width = WIDTH;
  image.height = HEIGHT;
  image.blockWidth = 16;
  image.blockHeight = 16;
  image.recordWidth = 8;
  image.recordHeight = 8;
  return image;
}

TesraBytes fileOf(const TG2TestImage& image) {
  std::vector<float> samples(size_t{WIDTH} * HEIGHT);
  for (size_t i = 0; i < samples.size(); ++i) samples[i] = static_cast<float>(i * 37 % 251);
  return tg2_writeImage(image, {samples}).bytes;
}

TesraBytes lockedFile(const TG2TestLock& lock = {}) {
  return fileOf(tg2_locked(testImage(), lock));
}

/// The samples of an image at full size; none where it can't be decoded.
TesraBytes samplesOf(const TesraHandle& handle, GR_STATUS& status) {
  TesraBytes samples;
  status = handle.decode(0, 0, WIDTH, HEIGHT, 1.0, samples);
  if (status != 0) samples.clear();
  return samples;
}

GR_STATUS statusWith(const TesraHandle& handle, const std::string& password) {
  EXPECT_EQ(gric_setTesraPassword(handle.image(), password.c_str()), 0u);
  return handle.decodeStatus(0, 0, WIDTH, HEIGHT, 1.0);
}

GR_STATUS statusOf(const TG2TestLock& lock) {
  return statusWith(TesraHandle(lockedFile(lock)), "sesame");
}

TEST(TesraTG2LockTest, OpensWithThePasswordAlone) {
  GR_STATUS status = 1;
  const TesraBytes expected = samplesOf(TesraHandle(fileOf(testImage())), status);
  ASSERT_EQ(status, 0u);
  for (const TesraBytes& file : {lockedFile(), tg2_wrap(lockedFile())}) {
    const TesraHandle handle(file);
    ASSERT_EQ(handle.status(), 0u);
    EXPECT_EQ(gric_isTesraLocked(handle.image()), 1);
    EXPECT_EQ(gric_getWidth(handle.image()), WIDTH);
    EXPECT_TRUE(samplesOf(handle, status).empty());
    EXPECT_EQ(status, 4005u);
    EXPECT_EQ(statusWith(handle, "wrong"), 4006u);
    EXPECT_EQ(statusWith(handle, "sesame"), 0u);
    EXPECT_EQ(samplesOf(handle, status), expected);
    EXPECT_EQ(gric_isTesraLocked(handle.image()), 1);
  }
}

TEST(TesraTG2LockTest, TakesTheRightPasswordAfterEveryWrongOne) {
  const TesraHandle handle(lockedFile());
  EXPECT_EQ(statusWith(handle, ""), 4005u);
  EXPECT_EQ(statusWith(handle, std::string(72, 'x')), 4006u);
  EXPECT_EQ(statusWith(handle, std::string(73, 'x')), 4009u);
  EXPECT_EQ(statusWith(handle, std::string(70000, 'x')), 4009u);
  EXPECT_EQ(statusWith(handle, "sesame"), 0u);
  EXPECT_EQ(statusWith(handle, "whatever comes later"), 0u);
}

TEST(TesraTG2LockTest, TakesAPasswordOf72Bytes) {
  const std::string password(72, 'p');
  EXPECT_EQ(statusWith(TesraHandle(lockedFile({.password = password})), password), 0u);
}

TEST(TesraTG2LockTest, HasAStatusForEachBadLock) {
  EXPECT_EQ(statusOf({.type = 0}), 4011u);
  EXPECT_EQ(statusOf({.type = 2}), 4011u);
  EXPECT_EQ(statusOf({.contentKeyLength = 0}), 4009u);
  EXPECT_EQ(statusOf({.contentKeyLength = 1}), 0u);
  EXPECT_EQ(statusOf({.contentKeyLength = 73}), 4009u);
  EXPECT_EQ(statusOf({.hasKey = false}), 50503u);
  EXPECT_EQ(statusOf({.hasSignature = false}), 50503u);
  EXPECT_EQ(statusOf({.signature = "Tesra content key verification."}), 4006u);
  EXPECT_EQ(statusOf({.signature = "Tesra content key verification!!"}), 4006u);
}

// The tables are still enciphered, but nothing says so.
TEST(TesraTG2LockTest, IsNoLockWithoutItsFirstRecord) {
  const TesraHandle handle(lockedFile({.type = std::nullopt}));
  ASSERT_EQ(handle.status(), 0u);
  EXPECT_EQ(gric_isTesraLocked(handle.image()), 0);
  EXPECT_NE(statusWith(handle, "sesame"), 0u);
}

TEST(TesraTG2LockTest, RefusesScenesBeforeItAsks) {
  const TesraHandle handle(lockedFile());
  EXPECT_EQ(handle.decodeStatus(0, 0, 4, 4, 1.0 / 64), 50015u);
  EXPECT_EQ(handle.decodeStatus(WIDTH, 0, 4, 4, 1.0), 50013u);
  EXPECT_EQ(handle.decodeStatus(WIDTH - 2, 0, 4, 4, 1.0), 50014u);
}

/// Gives a password, and counts.
class CountingDelegate : public TesraPasswordDelegate {
 public:
  void reportIncorrectPassword() override { ++timesReported; }
  const char* getPassword() override {
    ++timesAsked;
    return password;
  }

  const char* password = "wrong";
  int timesAsked = 0;
  int timesReported = 0;
};

TEST(TesraTG2LockTest, AsksOnceAPasswordIsRight) {
  const TesraFile file(lockedFile());
  CountingDelegate delegate;
  const GRUtilSmartPointer<TesraImageReader> reader(gr_makeUnique<TesraImageReader>().release());
  ASSERT_EQ(reader->initialize(GRFileSpec(file.path().c_str()), false, TESRA_MEMORY_DEFAULT,
                               TESRA_STREAM_CLOSE),
            0u);
  reader->setPasswordDelegate(&delegate);
  TesraBytes samples(size_t{WIDTH} * HEIGHT);
  void* band = samples.data();
  const auto read = [&] {
    GRISceneBuffer buffer(reader->getPixelProps(), WIDTH, HEIGHT, &band);
    return reader->read(GRIScene(0, 0, WIDTH, HEIGHT, 1.0), buffer);
  };
  EXPECT_EQ(read(), 4006u);
  EXPECT_EQ(delegate.timesReported, 1);
  delegate.password = "sesame";
  for (int i = 0; i < 3; ++i) EXPECT_EQ(read(), 0u);
  EXPECT_EQ(delegate.timesAsked, 2);
  EXPECT_EQ(delegate.timesReported, 1);
}

TEST(TesraTG2LockTest, EndsInAStatusOrAPictureForEveryDamagedByteOfItsRecords) {
  const TG2TestImage image = tg2_locked(testImage());
  std::vector<float> samples(size_t{WIDTH} * HEIGHT, 7.0F);
  const TG2TestFile file = tg2_writeImage(image, {samples});
  for (size_t at = file.layout.metadata; at < file.bytes.size(); ++at) {
    for (const int change : {0x01, 0x80}) {
      TesraBytes damaged = file.bytes;
      damaged[at] = static_cast<gr_uint8>(damaged[at] ^ change);
      const TesraHandle handle(damaged);
      if (handle.status() != 0) continue;
      static_cast<void>(statusWith(handle, "sesame"));
    }
  }
}

}  // namespace
