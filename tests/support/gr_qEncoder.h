/// @file
/// The arithmetic encoder of JPEG 2000, for tests that need coded data.
#pragma once

#include <array>
#include <vector>

#include "gr_lib_tg3kernel/src/tg3_mq_lib/gr_qDecoder.h"

/// Codes decisions into the bytes of one plane (ISO/IEC 15444-1, Annex C.2, software conventions).
class GRMQEncoder {
 public:
  struct Context {
    gr_uint32 row = 0;
    gr_uint32 mps = 0;
  };
  /// Contexts as they stand before the first plane (ISO/IEC 15444-1, Table D.7).
  static std::array<Context, GRMQ_NUM_CONTEXTS> initialContexts();

  void encode(Context& context, gr_uint32 decision);
  /// Ends the plane: its bytes, at least one.
  std::vector<gr_uint8> finish();

 private:
  void renormalize();
  void byteOut();

  gr_uint32 m_a = 0x8000;
  gr_uint32 m_c = 0;
  int m_count = 12;
  std::vector<gr_uint8> m_bytes = {0};  ///< the first one only takes part in the carry rule
};
