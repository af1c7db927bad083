/// @file
/// SubblockDecode, from the coded planes of a subblock to its wavelet coefficients.
#pragma once

#include <span>

#include "gr_lib_tg3kernel/src/tg3_subblock_lib/tg3_planeScan.h"
#include "gr_lib_utils/include/gr_memory.h"
#include "gr_lib_utils/include/gr_status.h"

/// One stored plane of one component; its bytes are the caller's.
struct TG3CodedPlane {
  std::span<const gr_uint8> bytes;
  bool hasData = false;    ///< a record stands for it in the file, if only with a length of 0
  bool useBypass = false;  ///< raw bits, not arithmetic code
};

/// The part of a subblock's columns or rows that is coded. The rest is zero.
struct TG3CodedRange {
  gr_uint32 first = 0;  ///< relative to the subblock
  gr_uint32 last = 0;   ///< included; the range is empty when it lies before `first`

  bool empty() const { return first > last; }
  gr_uint32 count() const { return empty() ? 0 : last - first + 1; }
  bool operator==(const TG3CodedRange&) const = default;
};

/// What is known of a subblock before its planes are read.
struct TG3SubblockShape {
  gr_uint32 subband = 0;
  gr_uint32 width = 0;   ///< in samples, possibly cut at the edge of the subband
  gr_uint32 height = 0;  ///< in samples
  TG3CodedRange columns;
  TG3CodedRange rows;
};

/// Decodes subblocks, one after the other. Planes are an embedded code with the arithmetic coder
/// and the contexts of JPEG 2000 (ISO/IEC 15444-1, Annexes C and D), but with one pass per plane
/// over the rows of the subblock. Corrupt bytes decode to wrong samples and never fail.
///
/// The working memory, about 1 bit a sample and plane and 27 bits a sample, is kept from one
/// subblock to the next.
class SubblockDecode {
 public:
  static constexpr gr_uint32 MAX_PLANES = 32;

  SubblockDecode() = default;

  /// Decodes all components of a subblock.
  /// @param planes  component after component, `numPlanes` (at most 32) slots each
  /// @param components  one pointer per component to the first sample of the subblock, of which
  ///                    shape.height rows of shape.width samples are written
  /// @param stride  from one row of a component to the next, in samples
  /// @return 0; 2012 for memory
  [[nodiscard]] GR_STATUS decode(const TG3SubblockShape& shape,
                                 std::span<const TG3CodedPlane> planes, gr_uint32 numPlanes,
                                 std::span<gr_int32* const> components, size_t stride);

 private:
  /// The first run of planes that are stored.
  struct PlaneBounds {
    gr_uint32 first = 0;
    gr_uint32 count = 0;  ///< 0: no plane is stored
  };
  static PlaneBounds boundsOf(std::span<const TG3CodedPlane> planes);

  GR_STATUS prepare(const TG3SubblockShape& shape, gr_uint32 numPlanes);
  gr_uint32 scanPlanes(std::span<const TG3CodedPlane> planes, const PlaneBounds& bounds);
  void makeSamples(const TG3SubblockShape& shape, const PlaneBounds& bounds, gr_uint32 numScanned,
                   gr_int32* samples, size_t stride) const;

  TG3PlaneScan m_scan;
  TG3ContextModel m_model{};
  GRArray<gr_uint16> m_flags;
  GRArray<gr_uint8> m_positive;
  GRArray<gr_uint64> m_significant;
  GRArray<gr_uint64> m_negative;
  GRArray<gr_uint64> m_bits;  ///< plane after plane
};
