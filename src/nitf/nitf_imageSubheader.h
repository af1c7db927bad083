/// @file
/// NITFImageSubheader, the fields of an image subheader.
#pragma once

#include <array>

#include "gr_lib_utils/include/gr_types.h"
#include "nitf/nitf_fieldReader.h"
#include "nitf/nitf_text.h"
#include "nitf/nitf_version.h"

/// The fields under the names that they have in MIL-STD-2500C, table A-3. What they mean together,
/// and what of it can be read, NITFImageSegment decides.
struct NITFImageSubheader {
  static constexpr size_t MAX_COMMENTS = 9;
  static constexpr gr_uint32 MAX_TABLE_ENTRIES = 256;

  /// The fields before the security block. @return 0 or 51210
  [[nodiscard]] GR_STATUS readIdentification(NITFFieldReader& fields);
  /// The fields from the mark of encryption on, which has been read, to the extension areas.
  /// @param isCOMRATMissing  whether a JPEG 2000 image has no COMRAT
  /// @return 0; 51210 for a field that isn't whole, or has a value that it can't have
  [[nodiscard]] GR_STATUS readDescription(NITFFieldReader& fields, NITFVersion version,
                                          bool isCOMRATMissing);

  NITFText<10> IID1;
  NITFText<14> IDATIM;
  NITFText<17> TGTID;
  NITFText<80> IID2;
  NITFText<42> ISORCE;
  gr_uint32 NROWS = 0;
  gr_uint32 NCOLS = 0;
  NITFText<3> PVTYPE;
  NITFText<8> IREP;
  NITFText<8> ICAT;
  gr_uint32 ABPP = 0;  // bits
  NITFText<1> PJUST;   // "R" or "L"
  NITFText<1> ICORDS;  // a blank where there is no IGEOLO
  NITFText<60> IGEOLO;
  gr_uint32 NICOM = 0;
  std::array<NITFText<80>, MAX_COMMENTS> ICOM;
  NITFText<2> IC;
  NITFText<4> COMRAT;
  gr_uint32 NBANDS = 0;                 // of either field
  std::array<NITFText<2>, 3> IREPBAND;  // of the first three bands
  bool hasTables = false;               // whether any band has a look-up table
  NITFText<1> IMODE;
  gr_uint32 NBPR = 0;   // blocks in a row
  gr_uint32 NBPC = 0;   // blocks in a column
  gr_uint32 NPPBH = 0;  // columns of a block; NCOLS where the file says 0
  gr_uint32 NPPBV = 0;  // rows of a block; NROWS where the file says 0
  gr_uint32 NBPP = 0;   // bits
  gr_int32 ilocRow = 0;
  gr_int32 ilocColumn = 0;
  NITFText<4> IMAG;

 private:
  GR_STATUS readCoordinates(NITFFieldReader& fields, NITFVersion version);
  GR_STATUS readComments(NITFFieldReader& fields);
  GR_STATUS readCompression(NITFFieldReader& fields, bool isCOMRATMissing);
  GR_STATUS readBands(NITFFieldReader& fields, NITFVersion version);
  GR_STATUS readBand(NITFFieldReader& fields, NITFText<2>& representation);
  GR_STATUS readBlocks(NITFFieldReader& fields, NITFVersion version);
};
