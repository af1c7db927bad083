#include "gr_lib_tg3kernel/src/tg3_plane_lib/gr_lock.h"

#include <cstdio>

#include "gr_lib_tg3kernel/src/tg3_packet_lib/tg3_imageInfo.h"
#include "gr_lib_tg3kernel/src/tg3_subblock_lib/tg3_subblockLocator.h"
#include "gr_lib_utils/include/gr_ioStreamUtils.h"
#include "gr_lib_utils/include/gr_status.h"

GR_STATUS GRLock::make(const TG3SecurityPacket& packet, const TG3ImageInfo& info,
                       std::unique_ptr<GRLock>& lock) {
  std::unique_ptr<GRLock> made;
  switch (packet.getLockKind()) {
    case TG3_LOCK_IMAGE:
      made = gr_makeUnique<GRLockImage>();
      break;
    case TG3_LOCK_SCALE:
      made = gr_makeUnique<GRLockScale>();
      break;
    case TG3_LOCK_SCENE:
      made = gr_makeUnique<GRLockScene>(info);
      break;
  }
  if (made == nullptr) return TG3_STATUS_NO_MEMORY;

  const std::span<const gr_uint8> data = packet.getLockData();
  const auto length = static_cast<gr_uint32>(data.size());
  const std::unique_ptr<GRIOStreamInf> stream = GRIOStreamUtils::openMemStream();
  if (stream == nullptr || stream->write(data.data(), length) != length) {
    return TG3_STATUS_NO_MEMORY;
  }
  GR_RETURN_IF_FAILED(stream->seek(0, GRIO_SEEK_BEGIN));
  GRFieldReader fields(*stream, length, TG3_STATUS_FORMAT_ERROR);
  GR_RETURN_IF_FAILED(made->readData(fields));
  GR_RETURN_IF_FAILED(made->readKeys(fields, packet.isLegacy()));
  lock = std::move(made);
  return GR_STATUS_OK;
}

GR_STATUS GRLock::readKeys(GRFieldReader& fields, bool isLegacy) {
  if (!GR_SUCCESS(m_keys.allocate(getNumKeys()))) return TG3_STATUS_NO_MEMORY;
  for (GRTG3Key& key : m_keys) GR_RETURN_IF_FAILED(key.readData(fields, isLegacy));
  return GR_STATUS_OK;
}

GRLock::Description GRLock::getKeyDescription(gr_uint32 index) const {
  Description description{};
  std::snprintf(description.data(), description.size(), "the portion locked with key %u", index);
  return description;
}

void GRLock::allowAsking() {
  for (GRTG3Key& key : m_keys) key.allowAsking();
}

GR_STATUS GRLock::decipher(const TG3PlaneDesc& plane, std::span<gr_uint8> bytes) {
  gr_int32 index = NOT_LOCKED;
  GR_RETURN_IF_FAILED(getKeyIndex(plane, index));
  if (index == NOT_LOCKED) return GR_STATUS_OK;
  const auto number = static_cast<gr_uint32>(index);
  if (number >= m_keys.size()) return TG3_STATUS_SECURITY;
  GRTG3Key& key = m_keys[number];
  if (!key.haveContentKey()) GR_RETURN_IF_FAILED(unlock(key, number));
  key.decrypt(bytes);
  return GR_STATUS_OK;
}

GR_STATUS GRLock::unlock(GRTG3Key& key, gr_uint32 number) {
  if (m_contentKeys != nullptr && !m_contentKeys->find(number).empty()) {
    return key.setContentKey(m_contentKeys->find(number));
  }
  if (m_providers == nullptr) return TG3_STATUS_SECURITY;
  GR_RETURN_IF_FAILED(key.unlock(*m_providers, getKeyDescription(number).data()));
  if (m_contentKeys == nullptr) return GR_STATUS_OK;
  return GR_SUCCESS(m_contentKeys->keep(number, key.getContentKey())) ? GR_STATUS_OK
                                                                      : TG3_STATUS_NO_MEMORY;
}

GR_STATUS GRLockImage::getKeyIndex(const TG3PlaneDesc& /*plane*/, gr_int32& index) {
  index = 0;
  return GR_STATUS_OK;
}

GRLock::Description GRLockImage::getKeyDescription(gr_uint32 /*index*/) const {
  return {"this image"};
}

GR_STATUS GRLockImage::readData(GRFieldReader& /*fields*/) { return GR_STATUS_OK; }

GR_STATUS GRLockScale::getKeyIndex(const TG3PlaneDesc& plane, gr_int32& index) {
  // The scale of what the subband's level makes. A correction band belongs to the next coarser one,
  // which shows it; there is none at full size.
  const gr_int32 subband = plane.subband;
  gr_int32 scale = m_nlev - ((subband + 3) >> 2);
  if (scale != 0 && subband % 4 == 1) ++scale;
  // Below 0 the number of levels is a lie.
  index = scale < 0 || scale > m_scale ? NOT_LOCKED : scale;
  return GR_STATUS_OK;
}

GRLock::Description GRLockScale::getKeyDescription(gr_uint32 index) const {
  Description description{};
  std::snprintf(description.data(), description.size(), "scale %u", index);
  return description;
}

GR_STATUS GRLockScale::readData(GRFieldReader& fields) {
  GR_RETURN_IF_FAILED(fields.read(m_scale));
  GR_RETURN_IF_FAILED(fields.read(m_nlev));
  return m_scale > m_nlev ? TG3_STATUS_FORMAT_ERROR : GR_STATUS_OK;
}

GRLockScene::GRLockScene(const TG3ImageInfo& info) : m_info(info) {}
GRLockScene::~GRLockScene() = default;

GR_STATUS GRLockScene::getKeyIndex(const TG3PlaneDesc& plane, gr_int32& index) {
  GR_RETURN_IF_FAILED(GRLockScale::getKeyIndex(plane, index));
  if (index == NOT_LOCKED) return GR_STATUS_OK;
  if (m_locator == nullptr) GR_RETURN_IF_FAILED(makeLocator());
  if (!m_locator->meets(plane.subband, plane.subblock)) index = NOT_LOCKED;
  return GR_STATUS_OK;
}

GR_STATUS GRLockScene::readData(GRFieldReader& fields) {
  GR_RETURN_IF_FAILED(GRLockScale::readData(fields));
  for (gr_int32& number : m_rectangle) GR_RETURN_IF_FAILED(fields.read(number));
  return GR_STATUS_OK;
}

GR_STATUS GRLockScene::makeLocator() {
  auto locator = gr_makeUnique<TG3SubblockRectLocator>(m_info);
  if (locator == nullptr) return TG3_STATUS_NO_MEMORY;
  const auto [left, top, right, bottom] = m_rectangle;
  if (!GR_SUCCESS(locator->initialize({left, top, right, bottom}, 0, m_scale))) {
    return TG3_STATUS_SECURITY;
  }
  m_locator = std::move(locator);
  return GR_STATUS_OK;
}
