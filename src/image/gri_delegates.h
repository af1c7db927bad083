/// @file
/// What a user of a stage can hear from a decode, and how to stop it.
#pragma once

#include "gr_lib_utils/include/gr_types.h"

/// Is told how far a decode is. Stages keep pointers to delegates and don't own them.
class GRIProgressDelegate {
 public:
  virtual ~GRIProgressDelegate() = default;
  /// @param progress  0 at the start, 1 at the end; between, the part that is behind
  /// @return 0, or a status with which the decode ends
  virtual GR_STATUS setProgress(float progress) = 0;
};

/// Is asked whether to go on.
class GRIInterruptDelegate {
 public:
  virtual ~GRIInterruptDelegate() = default;
  /// @return 0, or a status with which the decode ends
  virtual GR_STATUS getInterruptStatus() = 0;
};
