/// @file
/// TG3PlaneLock, what deciphers the planes of a locked image.
#pragma once

#include <span>

#include "gr_lib_tg3kernel/src/tg3_plane_lib/tg3_planeDesc.h"

class TG3PlaneLock {
 public:
  virtual ~TG3PlaneLock() = default;
  TG3PlaneLock(const TG3PlaneLock&) = delete;
  TG3PlaneLock& operator=(const TG3PlaneLock&) = delete;

  /// Deciphers the bytes of a plane in place; those of a plane outside of the lock stay as they
  /// are.
  /// @return 0; 2011 where the key can't be had; 2012 for memory
  [[nodiscard]] virtual GR_STATUS decipher(const TG3PlaneDesc& plane,
                                           std::span<gr_uint8> bytes) = 0;

 protected:
  TG3PlaneLock() = default;
};
