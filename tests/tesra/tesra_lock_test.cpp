// Locked images as a host meets them: what opens with which password, and what needs none.

#include <gtest/gtest.h>

#include <algorithm>

#include "gr_lib_utils/include/gr_smartPointer.h"
#include "image/gri_scene.h"
#include "image/gri_sceneBuffer.h"
#include "tesra/tesra_imageReader.h"
#include "tests/support/tg3_lockWriter.h"
#include "tests/tesra/tesra_testFile.h"

namespace {

constexpr gr_uint32 WIDTH = 70;
constexpr gr_uint32 HEIGHT = 90;  // more than a strip
constexpr gr_uint8 LEVELS = 3;

TG3TestImage testImage() { return tesra_grayImage(WIDTH, HEIGHT, LEVELS); }

TesraBytes fileOf(const TG3TestLock& lock, const TG3TestImage& image = testImage()) {
  return tg3_writeLockedImage(image, lock, tesra_noise(image));
}

TG3TestLock scaleLock(gr_uint8 scale) { return {.kind = 2, .scale = scale, .numLevels = LEVELS}; }

TG3TestLock sceneLock(gr_uint8 scale, std::array<gr_int32, 4> rectangle) {
  return {.kind = 3, .scale = scale, .numLevels = LEVELS, .rectangle = rectangle};
}

/// What a decode gives: its status, and the samples where it is 0.
struct Decoded {
  GR_STATUS status = 0;
  TesraBytes samples;
  bool operator==(const Decoded&) const = default;
};

Decoded decode(const TesraHandle& handle, double x, double y, double width, double height,
               double magnification) {
  Decoded decoded;
  decoded.status = handle.decode(x, y, width, height, magnification, decoded.samples);
  if (decoded.status != 0) decoded.samples.clear();
  return decoded;
}

Decoded decodeAll(const TesraHandle& handle, double magnification = 1.0) {
  gr_uint32 width = 0;
  gr_uint32 height = 0;
  EXPECT_EQ(gric_getDimsAtMag(handle.image(), magnification, &width, &height), 0u);
  return decode(handle, 0, 0, width, height, magnification);
}

/// What the same image gives that nobody locked.
Decoded expected(double magnification = 1.0, const TG3TestImage& image = testImage()) {
  const TesraHandle handle(tesra_fileOf(image));
  Decoded decoded = decodeAll(handle, magnification);
  EXPECT_EQ(decoded.status, 0u);
  return decoded;
}

void setPassword(const TesraHandle& handle, const std::string& password) {
  EXPECT_EQ(gric_setTesraPassword(handle.image(), password.c_str()), 0u);
}

/// A status and no samples.
Decoded refused(GR_STATUS status) { return {status, {}}; }

TEST(TesraLockTest, OpensWithThePasswordAlone) {
  for (const bool isLegacy : {false, true}) {
    for (const TG3TestLock& kind :
         {TG3TestLock{}, scaleLock(3), sceneLock(3, {0, 0, WIDTH - 1, HEIGHT - 1})}) {
      SCOPED_TRACE(int{kind.kind});
      TG3TestLock lock = kind;
      lock.isLegacy = isLegacy;
      const TesraHandle handle(fileOf(lock));
      ASSERT_EQ(handle.status(), 0u);
      EXPECT_EQ(gric_getWidth(handle.image()), WIDTH);
      EXPECT_EQ(gric_isTesraLocked(handle.image()), 1);
      EXPECT_EQ(decodeAll(handle), refused(2011));
      setPassword(handle, "wrong");
      EXPECT_EQ(decodeAll(handle), refused(2011));
      setPassword(handle, "sesame");
      EXPECT_EQ(decodeAll(handle), expected());
      EXPECT_EQ(gric_isTesraLocked(handle.image()), 1);
    }
  }
}

TEST(TesraLockTest, OpensInEveryLayoutOfPlanes) {
  for (const gr_uint8 storage : {0, 2, 3}) {
    for (const gr_uint8 keyWidth : {0, 1, 2, 4}) {
      TG3TestImage image = testImage();
      image.storage = storage;
      image.keyWidth = keyWidth;
      image.hasMse = keyWidth == 2;
      image.is64Bit = keyWidth == 1;
      const TesraHandle handle(fileOf(scaleLock(2), image));
      setPassword(handle, "sesame");
      EXPECT_EQ(decodeAll(handle), expected());
    }
  }
}

TEST(TesraLockTest, TakesTheRightPasswordAfterEveryWrongOne) {
  const TesraHandle handle(fileOf({}));
  for (const std::string& wrong : {std::string(), std::string("wrong"), std::string("sesame "),
                                   std::string(73, 's'), std::string(70000, 's'), std::string()}) {
    setPassword(handle, wrong);
    EXPECT_EQ(decodeAll(handle), refused(2011));
    EXPECT_EQ(decodeAll(handle), refused(2011));
  }
  setPassword(handle, "sesame");
  EXPECT_EQ(decodeAll(handle), expected());
}

TEST(TesraLockTest, StaysOpenWhateverIsSetLater) {
  const TesraHandle handle(fileOf(scaleLock(3)));
  setPassword(handle, "sesame");
  EXPECT_EQ(decodeAll(handle).status, 0u);
  setPassword(handle, "wrong");
  EXPECT_EQ(decodeAll(handle), expected());
  EXPECT_EQ(decodeAll(handle, 0.25), expected(0.25));
}

TEST(TesraLockTest, TakesPasswordsOf72BytesAndOfBytesThatAreNoText) {
  for (const std::string& password : {std::string(72, 'a'), std::string("\xFF\x80\x01")}) {
    for (const bool isLegacy : {false, true}) {
      const TesraHandle handle(fileOf({.isLegacy = isLegacy, .passwords = {password}}));
      setPassword(handle, password);
      EXPECT_EQ(decodeAll(handle), expected());
    }
  }
}

TEST(TesraLockTest, LeavesScalesReadableThatItDoesNotLock) {
  for (const gr_uint8 scale : {0, 1, 2, 3}) {
    SCOPED_TRACE(int{scale});
    const TesraHandle handle(fileOf(scaleLock(scale)));
    for (int level = 0; level <= LEVELS; ++level) {
      const double magnification = 1.0 / (1 << level);
      EXPECT_EQ(decodeAll(handle, magnification),
                level > scale ? expected(magnification) : refused(2011))
          << level;
    }
    EXPECT_EQ(decodeAll(handle, 2.0), refused(2011));
  }
}

TEST(TesraLockTest, OpensEachScaleWithItsOwnPassword) {
  TG3TestLock lock = scaleLock(1);
  lock.passwords = {"fine", "coarse"};
  const TesraHandle handle(fileOf(lock));
  setPassword(handle, "fine");
  EXPECT_EQ(decodeAll(handle, 0.5), refused(2011));
  setPassword(handle, "coarse");
  EXPECT_EQ(decodeAll(handle, 0.5), expected(0.5));
  EXPECT_EQ(decodeAll(handle), refused(2011));
  setPassword(handle, "fine");
  EXPECT_EQ(decodeAll(handle), expected());
}

TEST(TesraLockTest, LeavesPlacesReadableThatItDoesNotLock) {
  const TesraHandle handle(fileOf(sceneLock(0, {0, 0, 20, 20})));
  const TesraHandle open(tesra_fileOf(testImage()));
  EXPECT_EQ(decode(handle, 40, 40, 30, 50, 1.0), decode(open, 40, 40, 30, 50, 1.0));
  EXPECT_EQ(decode(handle, 0, 0, 30, 30, 1.0), refused(2011));
  EXPECT_EQ(decodeAll(handle), refused(2011));
  EXPECT_EQ(decodeAll(handle, 0.5), expected(0.5));
  setPassword(handle, "sesame");
  EXPECT_EQ(decodeAll(handle), expected());
}

TEST(TesraLockTest, LocksAPartOfACroppedImage) {
  TG3TestImage image = testImage();
  image.virtualSupport = {9, 12, 60, 80, 1};
  // A rectangle of the visible pixels: 26 columns and 35 rows.
  const TesraHandle handle(fileOf(sceneLock(1, {3, 4, 10, 12}), image));
  ASSERT_EQ(handle.status(), 0u);
  EXPECT_EQ(decodeAll(handle), refused(2011));
  setPassword(handle, "sesame");
  EXPECT_EQ(decodeAll(handle), expected(1.0, image));
}

TEST(TesraLockTest, CountsOnlyWhereTheHeaderSaysSo) {
  const TG3TestImage image = testImage();
  TG3Writer writer;
  writer.addImage(image, tesra_noise(image));
  writer.addPacket(tg3_lockPacket({}), TesraBytes{9, 9, 9});  // not even a lock
  const TesraHandle handle(writer.bytes());
  EXPECT_EQ(gric_isTesraLocked(handle.image()), 0);
  EXPECT_EQ(decodeAll(handle), expected());
}

TEST(TesraLockTest, CannotDoWithoutItsPacketOrWithTwo) {
  for (const int packets : {0, 2}) {
    TG3Writer writer;
    writer.addImage(tg3_locked(testImage(), {}), tesra_noise(testImage()));
    for (int i = 0; i < packets; ++i) writer.addPacket(tg3_lockPacket({}), tg3_lockBody({}));
    const TesraHandle handle(writer.bytes());
    setPassword(handle, "sesame");
    EXPECT_EQ(decodeAll(handle), refused(2011));
  }
}

TEST(TesraLockTest, NeedsNoPasswordForAnImageWithoutPlanes) {
  TG3TestImage image = testImage();
  image.isLocked = true;
  TG3Writer writer;
  writer.addHeader(image);
  writer.addPlaneset(image, {});
  writer.addPacket(tg3_lockPacket({}), tg3_lockBody({}));
  const TesraHandle handle(writer.bytes());
  EXPECT_EQ(decodeAll(handle).samples, TesraBytes(size_t{WIDTH} * HEIGHT, 0));
}

TEST(TesraLockTest, HasAStatusForEachBadLock) {
  const auto statusOf = [](const TG3TestLock& lock) {
    const TesraHandle handle(fileOf(lock));
    EXPECT_EQ(handle.status(), 0u);
    setPassword(handle, "sesame");
    return decodeAll(handle).status;
  };
  EXPECT_EQ(statusOf({.cipher = 2}), 2005u);
  EXPECT_EQ(statusOf({.digest = 0}), 2005u);
  EXPECT_EQ(statusOf({.kind = 2, .scale = 3, .numLevels = 2}), 2005u);
  EXPECT_EQ(statusOf({.claimedKeyLength = 0}), 2005u);
  EXPECT_EQ(statusOf({.claimedKeyLength = 0xFFFF}), 2005u);
  EXPECT_EQ(statusOf({.isLegacy = true, .numConjuncts = 1}), 2005u);
  EXPECT_EQ(statusOf({.isLegacy = true, .usesGuid = 1}), 2005u);
  EXPECT_EQ(statusOf({.providerType = 2}), 2011u);
  EXPECT_EQ(statusOf({.providerType = 5}), 2011u);
  EXPECT_EQ(statusOf(sceneLock(1, {0, 0, WIDTH, 5})), 2011u);
  EXPECT_EQ(statusOf(sceneLock(1, {-1, 0, 5, 5})), 2011u);
  EXPECT_EQ(statusOf(sceneLock(1, {5, 5, 4, 4})), 2011u);
  EXPECT_EQ(statusOf({.kind = 3, .scale = 4, .numLevels = 5, .rectangle = {0, 0, 5, 5}}), 2011u);
}

TEST(TesraLockTest, LeavesCoarseScalesReadableUnderARectangleThatIsNone) {
  const TesraHandle handle(fileOf(sceneLock(1, {0, 0, WIDTH, 5})));
  EXPECT_EQ(decodeAll(handle, 0.25), expected(0.25));
  EXPECT_EQ(decodeAll(handle, 0.5), refused(2011));
}

TEST(TesraLockTest, EndsInAStatusWhereTheLockEndsEarly) {
  for (const bool isLegacy : {false, true}) {
    TG3TestLock lock = sceneLock(1, {0, 0, 20, 20});
    lock.isLegacy = isLegacy;
    const TesraBytes whole = fileOf(lock);
    const size_t body = tg3_lockBody(lock).size();
    for (size_t missing = 1; missing <= body; ++missing) {
      SCOPED_TRACE(missing);
      const TesraHandle handle(
          TesraBytes(whole.begin(), whole.end() - static_cast<std::ptrdiff_t>(missing)));
      ASSERT_EQ(handle.status(), 0u);
      setPassword(handle, "sesame");
      EXPECT_EQ(handle.decodeStatus(0, 0, 16, 16, 1.0), 2001u);
    }
  }
}

TEST(TesraLockTest, EndsInAStatusOrAPictureForEveryDamagedByteOfTheLock) {
  for (const bool isLegacy : {false, true}) {
    TG3TestLock lock = sceneLock(1, {0, 0, 20, 20});
    lock.isLegacy = isLegacy;
    const TesraBytes whole = fileOf(lock);
    const size_t packet = tg3_lockBody(lock).size() + 13;  // and its header
    for (size_t at = whole.size() - packet; at < whole.size(); ++at) {
      for (const int change : {0x01, 0x80, 0xFF}) {
        TesraBytes damaged = whole;
        damaged[at] = static_cast<gr_uint8>(damaged[at] ^ change);
        const TesraHandle handle(damaged);
        if (handle.status() != 0) continue;
        setPassword(handle, "sesame");
        static_cast<void>(handle.decodeStatus(0, 0, 16, 16, 1.0));
      }
    }
  }
}

/// Gives a password, and counts.
class CountingDelegate : public TesraPasswordDelegate {
 public:
  explicit CountingDelegate(const char* password) : m_password(password) {}
  void reportIncorrectPassword() override { ++timesReported; }
  const char* getPassword() override {
    ++timesAsked;
    return m_password;
  }

  int timesAsked = 0;
  int timesReported = 0;

 private:
  const char* m_password;
};

/// A reader of a file with a lock, as the C interface makes it.
class LockedReader {
 public:
  /// @param early  a delegate that is set before the file is opened
  explicit LockedReader(const TesraBytes& bytes, TesraPasswordDelegate* early = nullptr)
      : m_file(bytes), m_reader(gr_makeUnique<TesraImageReader>().release()) {
    m_reader->setPasswordDelegate(early);
    EXPECT_EQ(m_reader->initialize(GRFileSpec(m_file.path().c_str()), false, TESRA_MEMORY_DEFAULT,
                                   TESRA_STREAM_CLOSE),
              0u);
  }
  TesraImageReader* operator->() const { return m_reader.get(); }

  /// Reads all of the image at full size.
  GR_STATUS read() const {
    TesraBytes samples(size_t{WIDTH} * HEIGHT);
    void* band = samples.data();
    GRISceneBuffer buffer(m_reader->getPixelProps(), WIDTH, HEIGHT, &band);
    return m_reader->read(GRIScene(0, 0, WIDTH, HEIGHT, 1.0), buffer);
  }

 private:
  TesraFile m_file;
  GRUtilSmartPointer<TesraImageReader> m_reader;
};

TEST(TesraLockTest, AsksOnceForEachKeyWhateverIsRead) {
  for (const TG3TestLock& lock : {TG3TestLock{}, scaleLock(2)}) {
    const LockedReader reader(fileOf(lock));
    CountingDelegate delegate("sesame");
    reader->setPasswordDelegate(&delegate);
    EXPECT_EQ(delegate.timesAsked, 0);
    for (int scene = 0; scene < 3; ++scene) EXPECT_EQ(reader.read(), 0u);
    EXPECT_EQ(delegate.timesAsked, static_cast<int>(lock.numKeys()));
    EXPECT_EQ(delegate.timesReported, 0);
  }
}

TEST(TesraLockTest, AsksADelegateThatWasThereBeforeTheFile) {
  CountingDelegate delegate("sesame");
  const LockedReader reader(fileOf({}), &delegate);
  EXPECT_EQ(reader.read(), 0u);
  EXPECT_EQ(delegate.timesAsked, 1);
}

TEST(TesraLockTest, TellsTheDelegateThatItsPasswordWasWrong) {
  const LockedReader reader(fileOf({}));
  CountingDelegate delegate("wrong");
  reader->setPasswordDelegate(&delegate);
  EXPECT_EQ(reader.read(), 2011u);
  EXPECT_EQ(delegate.timesAsked, 1);
  EXPECT_EQ(delegate.timesReported, 1);
}

TEST(TesraLockTest, AsksNoMoreADelegateWithoutAPassword) {
  const LockedReader reader(fileOf({}));
  CountingDelegate none("");
  reader->setPasswordDelegate(&none);
  EXPECT_EQ(reader.read(), 2011u);
  EXPECT_EQ(reader.read(), 2011u);
  EXPECT_EQ(none.timesAsked, 1);
  EXPECT_EQ(none.timesReported, 0);
  CountingDelegate another("sesame");
  reader->setPasswordDelegate(&another);
  EXPECT_EQ(reader.read(), 0u);
  EXPECT_EQ(another.timesAsked, 1);
}

TEST(TesraLockTest, HasNobodyToAskWhenTheDelegateIsTakenAway) {
  const LockedReader reader(fileOf({}));
  CountingDelegate delegate("sesame");
  reader->setPasswordDelegate(&delegate);
  reader->setPasswordDelegate(nullptr);
  EXPECT_EQ(reader.read(), 2011u);
  EXPECT_EQ(delegate.timesAsked, 0);
}

}  // namespace
