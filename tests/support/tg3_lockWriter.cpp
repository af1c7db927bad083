#include "tests/support/tg3_lockWriter.h"

#include <algorithm>
#include <memory>

#include "gr_lib_utils/include/gr_encryption.h"
#include "gr_lib_utils/include/gr_sha1.h"

namespace {

std::vector<gr_uint8> bytesOf(const std::string& text) { return {text.begin(), text.end()}; }

/// Columns or rows, from the first to the last.
struct Range {
  gr_int64 first;
  gr_int64 last;
};

// What a range of `size` samples is synthesized from, in one of its two halves.
Range synthesizedFrom(Range range, gr_int64 size, bool isHigh) {
  const gr_int64 low = isHigh ? 0 : 1;
  const gr_int64 from = std::max<gr_int64>(range.first - (range.first % 2 + 1) + low, 0);
  const gr_int64 to = std::min(range.last + range.last % 2 + 1, size - 2 + low);
  return {from / 2, to / 2};
}

// The part of a subband that a range of visible samples is made of.
Range neededOf(gr_uint32 subband, gr_uint32 numLevels, gr_uint32 removed, gr_int64 size,
               gr_int64 visibleFirst, Range range, bool isHigh) {
  const gr_int64 offset = visibleFirst >> removed;
  Range needed = {range.first + offset, range.last + offset};
  if (numLevels == 0) return needed;
  const gr_uint32 level = subband == 0 ? 1 : (subband - 1) / 4 + 1;
  for (gr_uint32 scale = 0; scale < numLevels - level; ++scale) {
    if (scale >= removed) needed = synthesizedFrom(needed, size, false);
    size = (size + 1) / 2;
  }
  return synthesizedFrom(needed, size, isHigh);
}

bool meets(const TG3TestLock& lock, const TG3TestImage& image, gr_uint32 subband,
           gr_uint64 subblock) {
  const auto support = image.virtualSupport.value_or(TG3TestImage::VirtualSupport{});
  const auto& [left, top, right, bottom] = lock.rectangle;
  const int level = subband == 0 ? 1 : static_cast<int>((subband - 1) / 4) + 1;
  const int scale = image.numLevels == 0 ? 0 : image.numLevels - level;
  const int removed = support.numLevelsRemoved;
  if (scale < removed || scale > lock.scale + removed) return false;
  const bool isHighInX = subband != 0 && subband % 2 == 0;
  const bool isHighInY = subband != 0 && (subband % 4 == 3 || subband % 4 == 0);
  const Range columns = neededOf(subband, image.numLevels, support.numLevelsRemoved, image.width,
                                 support.left, {left, right}, isHighInX);
  const Range rows = neededOf(subband, image.numLevels, support.numLevelsRemoved, image.height,
                              support.top, {top, bottom}, isHighInY);
  const TG3TestGeometry::Rect block = image.geometry().blockRect(subband, subblock);
  return block.left <= columns.last && gr_int64{block.left} + block.width > columns.first &&
         block.top <= rows.last && gr_int64{block.top} + block.height > rows.first;
}

}  // namespace

const std::string& TG3TestLock::password(gr_uint32 key) const {
  return passwords[std::min<size_t>(key, passwords.size() - 1)];
}

std::vector<gr_uint8> TG3TestLock::contentKey(gr_uint32 key) const {
  if (isLegacy) return bytesOf(password(key));
  std::vector<gr_uint8> bytes(contentKeyLength);
  for (size_t i = 0; i < bytes.size(); ++i)
    bytes[i] = static_cast<gr_uint8>(i * 41 + size_t{7} * key + 3);
  return bytes;
}

std::vector<gr_uint8> tg3_lockBody(const TG3TestLock& lock) {
  TG3TestBytes body;
  body.put(lock.cipher, 1).put(lock.digest, 1).put(lock.kind, 1);
  if (lock.kind == 2 || lock.kind == 3) body.put(lock.scale, 1).put(lock.numLevels, 1);
  if (lock.kind == 3) {
    for (const gr_int32 number : lock.rectangle) body.put(static_cast<gr_uint32>(number), 4);
  }
  for (gr_uint32 key = 0; key < lock.numKeys(); ++key) {
    const std::vector<gr_uint8> password = bytesOf(lock.password(key));
    body.put(lock.claimedKeyLength.value_or(lock.contentKeyLength), 2);
    if (lock.isLegacy) body.put(lock.numConjuncts, 2);
    body.put(lock.providerType, 1);
    if (!lock.isLegacy) {
      std::vector<gr_uint8> contentKey = lock.contentKey(key);
      Encryption encryption;
      encryption.setKey(password);
      encryption.encrypt(contentKey);
      body.put(contentKey);
    }
    if (lock.isLegacy || lock.providerType != 5) {
      GRSha1Digest digest{};
      static_cast<void>(gr_sha1(password, digest));
      body.put(digest);
    }
    if (lock.isLegacy) body.put(lock.usesGuid, 1);
  }
  return body.bytes();
}

TG3TestPacket tg3_lockPacket(const TG3TestLock& lock, gr_uint32 image) {
  TG3TestPacket packet = {.type = 5, .image = image};
  packet.versionMajor = lock.isLegacy ? 0 : 1;
  return packet;
}

std::optional<gr_uint32> tg3_keyOf(const TG3TestLock& lock, const TG3TestImage& image,
                                   gr_uint32 subband, gr_uint64 subblock) {
  if (lock.kind == 1) return 0;
  // The scale of what a subband's level makes; the corrections of a scale belong to the next one,
  // but for those that would be of full size. The coarsest low-pass band is a scale of its own.
  const int level = subband == 0 ? 0 : static_cast<int>((subband - 1) / 4) + 1;
  int scale = lock.numLevels - level;
  if (subband % 4 == 1 && scale != 0) ++scale;
  if (scale < 0 || scale > lock.scale) return std::nullopt;
  if (lock.kind == 3 && !meets(lock, image, subband, subblock)) return std::nullopt;
  return static_cast<gr_uint32>(scale);
}

TG3TestImage tg3_locked(TG3TestImage image, const TG3TestLock& lock) {
  image.isLocked = true;
  // std::function copies what it holds, ciphers can't be.
  std::vector<std::shared_ptr<Encryption>> ciphers;
  for (gr_uint32 key = 0; key < lock.numKeys(); ++key) {
    ciphers.push_back(std::make_shared<Encryption>());
    // Of some bad locks nothing can be a key; their planes stay plain.
    const std::vector<gr_uint8> contentKey = lock.contentKey(key);
    if (Encryption::checkKey(contentKey.size()) == Encryption::KEY_OK) {
      ciphers.back()->setKey(contentKey);
    }
  }
  image.cipher = [lock, plain = image, ciphers](const TG3TestSubblock& subblock,
                                                TG3TestPlane& plane) {
    const auto key = tg3_keyOf(lock, plain, subblock.subband, subblock.subblock);
    if (key) ciphers[*key]->encrypt(plane.bytes);
  };
  return image;
}

std::vector<gr_uint8> tg3_writeLockedImage(const TG3TestImage& image, const TG3TestLock& lock,
                                           const std::vector<std::vector<gr_int32>>& samples) {
  TG3Writer writer;
  writer.addImage(tg3_locked(image, lock), samples);
  writer.addPacket(tg3_lockPacket(lock, image.image), tg3_lockBody(lock));
  return writer.bytes();
}
