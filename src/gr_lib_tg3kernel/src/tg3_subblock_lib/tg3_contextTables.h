/// @file
/// The contexts of the bit-plane coder, by the flags of a sample.
///
/// Each sample has a word of flags: which of its eight neighbours are significant, and what it is
/// itself.
#pragma once

#include <array>

#include "gr_lib_tg3kernel/src/tg3_mq_lib/gr_qDecoder.h"
#include "gr_lib_utils/include/gr_types.h"

constexpr gr_uint16 TG3_FLAG_LOWER_RIGHT = 0x0001;
constexpr gr_uint16 TG3_FLAG_LOWER_LEFT = 0x0002;
constexpr gr_uint16 TG3_FLAG_UPPER_RIGHT = 0x0004;
constexpr gr_uint16 TG3_FLAG_UPPER_LEFT = 0x0008;
constexpr gr_uint16 TG3_FLAG_RIGHT = 0x0010;
constexpr gr_uint16 TG3_FLAG_LEFT = 0x0020;
constexpr gr_uint16 TG3_FLAG_UPPER = 0x0040;
constexpr gr_uint16 TG3_FLAG_LOWER = 0x0080;
constexpr gr_uint16 TG3_FLAG_SIGNIFICANT = 0x0100;
constexpr gr_uint16 TG3_FLAG_REFINED = 0x0200;  ///< has had its first refinement

// Which of the nearest neighbours are positive stands in a byte of its own: a sign is known later
// than that there is one, and the context of the next magnitude doesn't wait for it.
constexpr gr_uint8 TG3_POSITIVE_RIGHT = 0x10;
constexpr gr_uint8 TG3_POSITIVE_LEFT = 0x20;
constexpr gr_uint8 TG3_POSITIVE_UPPER = 0x40;
constexpr gr_uint8 TG3_POSITIVE_LOWER = 0x80;

/// The contexts of a subband, and the tables that lead to them by a sample's flags.
struct TG3ContextModel {
  GRMQModel coder;
  /// The context of a magnitude bit by the flags of a sample: zero coding while the sample isn't
  /// significant, else refinement.
  std::array<gr_uint8, 0x400> magnitude{};
  /// The context of a sign in bits 0-6, what the decision is XORed with in bit 7; by
  /// tg3_signIndex.
  std::array<gr_uint8, 0x100> sign{};

  /// Starts a component of a subblock: one kind of table for a subband that is high in x, one for
  /// high in both, and one for the rest.
  void reset(gr_uint32 subband);
};

/// Of a sample's flags and of which of its neighbours are positive.
constexpr gr_uint32 tg3_signIndex(gr_uint32 flags, gr_uint32 positive) {
  return ((flags >> 4) & 0x0F) | positive;
}
