/// @file
/// NITFSecurityBlock, the classification fields of a segment.
#pragma once

#include "gr_lib_utils/include/gr_types.h"
#include "nitf/nitf_fieldReader.h"
#include "nitf/nitf_metadata.h"
#include "nitf/nitf_version.h"

/// In 2.1 sixteen fields of 167 bytes in all (MIL-STD-2500C, table A-1), in 2.0 one text of 167 or
/// 207 bytes.
class NITFSecurityBlock {
 public:
  static constexpr gr_uint32 LENGTH = 167;       // bytes
  static constexpr gr_uint32 LONG_LENGTH = 207;  // of 2.0 with a downgrading event

  /// @return 0 or 51210
  [[nodiscard]] GR_STATUS read(NITFFieldReader& fields, NITFVersion version);
  /// Adds SECURITY (2.0), or SCLAS and those of the others that aren't blank (2.1).
  [[nodiscard]] GR_STATUS addMetadata(NITFMetadata& metadata) const;

 private:
  GR_STATUS read20(NITFFieldReader& fields);
  GR_STATUS read21(NITFFieldReader& fields);

  NITFVersion m_version = NITF_VERSION_NONE;

  // 2.0; which of the two lengths it is, the block itself tells.
  bool m_isLong = false;
  NITFText<LENGTH> m_block;
  NITFText<LONG_LENGTH> m_longBlock;

  // 2.1.
  NITFText<1> m_SCLAS;
  NITFText<2> m_SCLSY;
  NITFText<11> m_SCODE;
  NITFText<2> m_SCTLH;
  NITFText<20> m_SREL;
  NITFText<2> m_SDCTP;
  NITFText<8> m_SDCDT;
  NITFText<4> m_SDCXM;
  NITFText<1> m_SDG;
  NITFText<8> m_SDGDT;
  NITFText<43> m_SCLTX;
  NITFText<1> m_SCATP;
  NITFText<40> m_SCAUT;
  NITFText<1> m_SCRSN;
  NITFText<8> m_SSRDT;
  NITFText<15> m_SCTLN;
};
