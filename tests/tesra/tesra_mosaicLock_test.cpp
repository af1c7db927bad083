// Mosaics of which some tiles are locked.

#include <gtest/gtest.h>

#include <algorithm>
#include <string>

#include "gr_lib_utils/include/gr_smartPointer.h"
#include "image/gri_sceneBuffer.h"
#include "tesra/tesra_imageReader.h"
#include "tests/support/tg2_lockWriter.h"
#include "tests/support/tg3_lockWriter.h"
#include "tests/tesra/tesra_testFile.h"

namespace {

constexpr gr_uint32 SIDE = 24;  // pixels of a tile

enum class Kind { OPEN, LOCKED, OLDER, OLDER_LOCKED };

std::vector<float> floatsOf(const std::vector<gr_int32>& samples) {
  return {samples.begin(), samples.end()};
}

/// Tiles side by side. Those of generation 2 have the position of an image that states none, so one
/// of them comes first if any does.
/// @param passwords  of tile after tile, the last one of the rest
TesraBytes mosaicOf(const std::vector<Kind>& kinds,
                    const std::vector<std::string>& passwords = {"sesame"}) {
  TG3Writer writer;
  for (gr_uint32 number = 0; number < kinds.size(); ++number) {
    TG3TestImage image = tesra_grayImage(SIDE, SIDE, 2);
    image.image = number;
    const TesraSamples samples = tesra_noise(image);
    const std::string& password = passwords[std::min<size_t>(number, passwords.size() - 1)];
    const TG3TestLock lock = {.passwords = {password}};
    if (kinds[number] == Kind::OLDER || kinds[number] == Kind::OLDER_LOCKED) {
      TG2TestImage older;
      older.width = SIDE;
      older.height = SIDE;
      if (kinds[number] == Kind::OLDER_LOCKED) {
        older = tg2_locked(older, {.password = password});
      }
      const TesraBytes file = tg2_writeImage(older, {floatsOf(samples[0])}).bytes;
      writer.addPacket({.type = 7, .image = number}, file);
      continue;
    }
    const double left = double{SIDE} * number;
    const double top = SIDE - 1;
    writer.addMetadata(3, 0, number,
                       tg3_georefBlock({.geo = {{left, top, left + SIDE, top - SIDE, 1.0, 1.0}}}));
    if (kinds[number] == Kind::OPEN) {
      writer.addImage(image, samples);
      continue;
    }
    writer.addImage(tg3_locked(image, lock), samples);
    writer.addPacket(tg3_lockPacket(lock, number), tg3_lockBody(lock));
  }
  return writer.bytes();
}

/// A tile, or several of them from `first` on.
GR_STATUS decode(const TesraHandle& handle, gr_uint32 first, gr_uint32 tiles, TesraBytes& samples) {
  return handle.decode(first * SIDE, 0, tiles * SIDE, SIDE, 1.0, samples);
}

GR_STATUS decodeStatus(const TesraHandle& handle, gr_uint32 first, gr_uint32 tiles) {
  TesraBytes samples;
  return decode(handle, first, tiles, samples);
}

void setPassword(const TesraHandle& handle, const char* password) {
  EXPECT_EQ(gric_setTesraPassword(handle.image(), password), 0u);
}

TEST(TesraMosaicLockTest, AllTilesOpenWithTheOnePassword) {
  const TesraHandle open(mosaicOf({Kind::OPEN, Kind::OPEN, Kind::OPEN}));
  const TesraHandle locked(mosaicOf({Kind::LOCKED, Kind::OPEN, Kind::LOCKED}));
  ASSERT_EQ(locked.status(), 0u);
  EXPECT_EQ(gric_isTesraLocked(locked.image()), 1);
  TesraBytes expected;
  ASSERT_EQ(decode(open, 0, 3, expected), 0u);
  setPassword(locked, "sesame");
  TesraBytes samples;
  ASSERT_EQ(decode(locked, 0, 3, samples), 0u);
  EXPECT_EQ(samples, expected);
  ASSERT_EQ(decode(locked, 0, 3, samples), 0u);  // the tiles are opened anew
  EXPECT_EQ(samples, expected);
}

TEST(TesraMosaicLockTest, OpenTilesNeedNoPassword) {
  const TesraHandle handle(mosaicOf({Kind::OPEN, Kind::LOCKED}));
  EXPECT_EQ(gric_isTesraLocked(handle.image()), 1);
  EXPECT_EQ(decodeStatus(handle, 0, 1), 0u);
  EXPECT_EQ(decodeStatus(handle, 1, 1), 2011u);
  EXPECT_EQ(decodeStatus(handle, 0, 2), 2011u);
  setPassword(handle, "wrong");
  EXPECT_EQ(decodeStatus(handle, 0, 1), 0u);
  EXPECT_EQ(decodeStatus(handle, 0, 2), 2011u);
  setPassword(handle, "sesame");
  EXPECT_EQ(decodeStatus(handle, 0, 2), 0u);
}

TEST(TesraMosaicLockTest, TilesOfTheOlderGenerationHaveTheirOwnStatuses) {
  const TesraHandle open(mosaicOf({Kind::OLDER, Kind::OPEN}));
  const TesraHandle handle(mosaicOf({Kind::OLDER_LOCKED, Kind::LOCKED}));
  ASSERT_EQ(handle.status(), 0u);
  ASSERT_EQ(gric_getWidth(handle.image()), 2 * SIDE);
  EXPECT_EQ(gric_isTesraLocked(handle.image()), 1);
  EXPECT_EQ(decodeStatus(handle, 0, 1), 4005u);
  EXPECT_EQ(decodeStatus(handle, 1, 1), 2011u);
  setPassword(handle, "wrong");
  EXPECT_EQ(decodeStatus(handle, 0, 2), 4006u);
  setPassword(handle, "sesame");
  TesraBytes expected;
  TesraBytes samples;
  ASSERT_EQ(decode(open, 0, 2, expected), 0u);
  ASSERT_EQ(decode(handle, 0, 2, samples), 0u);
  EXPECT_EQ(samples, expected);
}

TEST(TesraMosaicLockTest, StaysOpenWhateverIsSetLater) {
  for (const Kind first : {Kind::LOCKED, Kind::OLDER_LOCKED}) {
    const TesraHandle handle(mosaicOf({first, Kind::LOCKED}));
    setPassword(handle, "sesame");
    TesraBytes expected;
    ASSERT_EQ(decode(handle, 0, 2, expected), 0u);
    for (const char* later : {"wrong", ""}) {
      setPassword(handle, later);
      TesraBytes samples;
      EXPECT_EQ(decode(handle, 0, 2, samples), 0u);
      EXPECT_EQ(samples, expected);
    }
  }
}

TEST(TesraMosaicLockTest, TilesOfDifferentPasswordsOpenOneAfterTheOther) {
  for (const Kind first : {Kind::LOCKED, Kind::OLDER_LOCKED}) {
    const TesraHandle handle(mosaicOf({first, Kind::LOCKED}, {"left", "right"}));
    setPassword(handle, "left");
    EXPECT_EQ(decodeStatus(handle, 0, 1), 0u);
    EXPECT_EQ(decodeStatus(handle, 0, 2), 2011u);
    setPassword(handle, "right");
    EXPECT_EQ(decodeStatus(handle, 0, 2), 0u);
  }
}

/// Gives a password, and counts.
class CountingDelegate : public TesraPasswordDelegate {
 public:
  explicit CountingDelegate(const char* password) : m_password(password) {}
  void reportIncorrectPassword() override {}
  const char* getPassword() override {
    ++timesAsked;
    return m_password;
  }

  int timesAsked = 0;

 private:
  const char* m_password;
};

GRUtilSmartPointer<TesraImageReader> openReader(const TesraFile& file) {
  GRUtilSmartPointer<TesraImageReader> reader(gr_makeUnique<TesraImageReader>().release());
  EXPECT_EQ(reader->initialize(GRFileSpec(file.path().c_str()), false, TESRA_MEMORY_DEFAULT,
                               TESRA_STREAM_CLOSE),
            0u);
  return reader;
}

TEST(TesraMosaicLockTest, AsksOnceForEachLockedTileWhateverIsReadLater) {
  const TesraFile file(mosaicOf({Kind::OLDER_LOCKED, Kind::LOCKED, Kind::OPEN}));
  const GRUtilSmartPointer<TesraImageReader> reader = openReader(file);
  CountingDelegate delegate("sesame");
  reader->setPasswordDelegate(&delegate);
  TesraBytes samples(size_t{3} * SIDE * SIDE);
  void* band = samples.data();
  for (int scene = 0; scene < 3; ++scene) {
    GRISceneBuffer buffer(reader->getPixelProps(), 3 * SIDE, SIDE, &band);
    EXPECT_EQ(reader->read(GRIScene(0, 0, 3 * SIDE, SIDE, 1.0), buffer), 0u);
    EXPECT_EQ(delegate.timesAsked, 2);
  }
}

TEST(TesraMosaicLockTest, ADelegateThatComesInASceneReachesTilesThatAreOpen) {
  // Two tiles of two strips, whose lower ends alone are locked.
  constexpr gr_uint32 HEIGHT = 128;
  TG3Writer writer;
  for (gr_uint32 number = 0; number < 2; ++number) {
    TG3TestImage image = tesra_grayImage(SIDE, HEIGHT, 2);
    image.image = number;
    const TG3TestLock lock = {
        .kind = 3, .numLevels = 2, .rectangle = {0, HEIGHT - 8, SIDE - 1, HEIGHT - 1}};
    const double left = double{SIDE} * number;
    writer.addMetadata(
        3, 0, number,
        tg3_georefBlock({.geo = {{left, 0.0, left + SIDE, -double{HEIGHT}, 1.0, 1.0}}}));
    writer.addImage(tg3_locked(image, lock), tesra_noise(image));
    writer.addPacket(tg3_lockPacket(lock, number), tg3_lockBody(lock));
  }
  const TesraFile file(writer.bytes());
  const GRUtilSmartPointer<TesraImageReader> reader = openReader(file);
  constexpr gr_uint32 STRIP = TesraImageReader::STRIP_HEIGHT;
  TesraBytes samples(size_t{2} * SIDE * STRIP);
  void* band = samples.data();
  const auto readStrip = [&](gr_uint32 strip) {
    GRISceneBuffer buffer(reader->getPixelProps(), 2 * SIDE, STRIP, &band);
    return reader->readStrip(buffer, GRIScene(0, strip * STRIP, 2 * SIDE, STRIP, 1.0));
  };
  ASSERT_EQ(reader->readBegin(GRIScene(0, 0, 2 * SIDE, HEIGHT, 1.0)), 0u);
  auto early = std::make_unique<CountingDelegate>("wrong");
  reader->setPasswordDelegate(early.get());
  ASSERT_EQ(readStrip(0), 0u);
  EXPECT_EQ(early->timesAsked, 0);
  CountingDelegate late("sesame");
  reader->setPasswordDelegate(&late);
  early.reset();
  EXPECT_EQ(readStrip(1), 0u);
  EXPECT_EQ(late.timesAsked, 2);
  EXPECT_EQ(reader->readEnd(), 0u);
}

}  // namespace
