/// @file
/// GRLock, the lock of an image, and its three kinds.
#pragma once

#include <array>
#include <memory>

#include "gr_lib_tg3kernel/src/tg3_packet_lib/tg3_securityPacket.h"
#include "gr_lib_tg3kernel/src/tg3_plane_lib/gr_tg3Key.h"
#include "gr_lib_tg3kernel/src/tg3_plane_lib/tg3_planeLock.h"
#include "gr_lib_utils/include/gr_contentKeys.h"

class TG3ImageInfo;
class TG3SubblockRectLocator;

/// Says which planes are locked by which key, and deciphers them.
class GRLock : public TG3PlaneLock {
 public:
  static constexpr gr_int32 NOT_LOCKED = -1;
  using Description = std::array<char, 40>;  ///< with a zero at its end

  /// Makes the lock that a packet stores.
  /// @param info  of the packet's image; the caller's, and it outlives the lock
  /// @return 0; 2005 when the packet doesn't hold what a lock of its kind needs; 2012 for memory
  [[nodiscard]] static GR_STATUS make(const TG3SecurityPacket& packet, const TG3ImageInfo& info,
                                      std::unique_ptr<GRLock>& lock);

  /// The number of the key that locks a plane.
  /// @param index  receives it, or NOT_LOCKED
  /// @return 0; 2011 when the lock doesn't fit the image, and 2012 for memory
  [[nodiscard]] virtual GR_STATUS getKeyIndex(const TG3PlaneDesc& plane, gr_int32& index) = 0;
  virtual TG3LockKind getKind() const = 0;
  virtual gr_uint32 getNumKeys() const = 0;
  /// What key `index` opens.
  virtual Description getKeyDescription(gr_uint32 index) const;
  /// Whether the key in front of a plane's bytes says which key locks it.
  virtual bool usesStoredKeyIndex() const { return false; }

  /// Who is asked for keys; the caller's, and it outlives the lock. Null for nobody.
  void setKeyProviders(const KeyProviderRegistry* providers) { m_providers = providers; }
  /// Where keys are that earlier locks of the image got, and where this one's go; the caller's, and
  /// they outlive the lock. Null for nowhere.
  void setContentKeys(GRContentKeys* keys) { m_contentKeys = keys; }
  /// Lets keys be asked for again that nobody had: there may be somebody now.
  void allowAsking();

  /// Asks for the plane's key when it is the first one of this key.
  [[nodiscard]] GR_STATUS decipher(const TG3PlaneDesc& plane, std::span<gr_uint8> bytes) override;

 protected:
  GRLock() = default;

  /// Reads what stands in front of the keys. Short data is the status of `fields`.
  virtual GR_STATUS readData(GRFieldReader& fields) = 0;

 private:
  GR_STATUS readKeys(GRFieldReader& fields, bool isLegacy);
  GR_STATUS unlock(GRTG3Key& key, gr_uint32 number);

  GRArray<GRTG3Key> m_keys;
  const KeyProviderRegistry* m_providers = nullptr;
  GRContentKeys* m_contentKeys = nullptr;
};

/// Locks an image as a whole.
class GRLockImage final : public GRLock {
 public:
  GR_STATUS getKeyIndex(const TG3PlaneDesc& plane, gr_int32& index) override;
  TG3LockKind getKind() const override { return TG3_LOCK_IMAGE; }
  gr_uint32 getNumKeys() const override { return 1; }
  Description getKeyDescription(gr_uint32 index) const override;

 protected:
  GR_STATUS readData(GRFieldReader& fields) override;
};

/// Locks the scales from the finest one to a certain one, each with a key of its own.
class GRLockScale : public GRLock {
 public:
  GR_STATUS getKeyIndex(const TG3PlaneDesc& plane, gr_int32& index) override;
  TG3LockKind getKind() const override { return TG3_LOCK_SCALE; }
  gr_uint32 getNumKeys() const override { return gr_uint32{m_scale} + 1; }
  Description getKeyDescription(gr_uint32 index) const override;

 protected:
  GR_STATUS readData(GRFieldReader& fields) override;

  gr_uint8 m_scale = 0;  ///< the coarsest one that is locked
  gr_uint8 m_nlev = 0;   ///< wavelet levels, as the lock was told
};

/// Locks a rectangle, at the scales from the finest one to a certain one.
class GRLockScene final : public GRLockScale {
 public:
  explicit GRLockScene(const TG3ImageInfo& info);
  ~GRLockScene() override;

  GR_STATUS getKeyIndex(const TG3PlaneDesc& plane, gr_int32& index) override;
  TG3LockKind getKind() const override { return TG3_LOCK_SCENE; }

 protected:
  GR_STATUS readData(GRFieldReader& fields) override;

 private:
  GR_STATUS makeLocator();

  const TG3ImageInfo& m_info;
  std::array<gr_int32, 4> m_rectangle{};  // left, top, right, bottom of the visible image
  std::unique_ptr<TG3SubblockRectLocator> m_locator;  // made when it's first needed
};
