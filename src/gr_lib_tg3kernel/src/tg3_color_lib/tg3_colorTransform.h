/// @file
/// TG3ColorTransform, the colour rotation of an image's wavelet coefficients.
#pragma once

#include "gr_lib_utils/include/gr_status.h"
#include "gr_lib_utils/include/gr_types.h"

class TG3ImageInfo;

/// Turns decorrelated components back into those of the image. It works on coefficients, subband
/// by subband, before anything is added up.
class TG3ColorTransform {
 public:
  /// How a file names what was done to its components, and what undoes it.
  enum Kind : gr_int32 {
    KIND_NONE = 1,
    KIND_FORWARD_3 = 4,   ///< on 3 components
    KIND_FORWARD_4 = 7,   ///< on the first 3 of 4
    KIND_INVERSE_3 = 10,  ///< on 3 components
    KIND_INVERSE_4 = 13,  ///< on the first 3 of 4
    KIND_UNSET = 0xFE,
  };

  TG3ColorTransform() = default;

  /// @return 0; 2005 for another kind, or one that doesn't go with the number of components
  [[nodiscard]] GR_STATUS initialize(const TG3ImageInfo& info);

  bool needsTransform() const { return m_kind != KIND_NONE && m_kind != KIND_UNSET; }
  /// The kind that is applied: the inverse of the file's.
  Kind kind() const { return m_kind; }

  /// Transforms `count` coefficients of each component, of which there are as many as the image
  /// has. Coefficients that no valid file has wrap modulo 2^32.
  void apply(gr_int32* const* components, size_t count) const;

 private:
  Kind m_kind = KIND_UNSET;
};
