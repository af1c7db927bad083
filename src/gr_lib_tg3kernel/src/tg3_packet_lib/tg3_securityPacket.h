/// @file
/// TG3SecurityPacket, the lock of an image as the file stores it.
#pragma once

#include <span>

#include "gr_lib_tg3kernel/src/tg3_packet_lib/tg3_packet.h"
#include "gr_lib_utils/include/gr_memory.h"

/// Which planes of an image a lock covers.
enum TG3LockKind : gr_uint8 {
  TG3_LOCK_IMAGE = 1,
  TG3_LOCK_SCALE = 2,
  TG3_LOCK_SCENE = 3,
};

/// Knows the kind of the lock and holds the data that the lock is made of.
class TG3SecurityPacket final : public TG3Packet {
 public:
  TG3SecurityPacket(const TG3PacketType& type, const TG3PacketPlace& place)
      : TG3Packet(type, place) {}

  TG3LockKind getLockKind() const { return m_lockKind; }
  /// What follows the kind: the data of the lock, then its keys (GRLock::make).
  std::span<const gr_uint8> getLockData() const { return m_lockData.span(); }
  /// Whether the keys are in the older form.
  bool isLegacy() const { return m_type.versionMajor == 0; }

  /// @return 0; 2001 when the body isn't all there; 2005 for an unknown cipher, digest or kind;
  ///         2012 for memory
  [[nodiscard]] GR_STATUS read(GRIOStreamInf& stream) override;

 private:
  TG3LockKind m_lockKind = TG3_LOCK_IMAGE;
  GRArray<gr_uint8> m_lockData;
};
