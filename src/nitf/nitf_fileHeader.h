/// @file
/// NITFFileHeader, the header of a NITF file, which tells where all its segments lie.
#pragma once

#include <array>

#include "gr_lib_utils/include/gr_memory.h"
#include "nitf/nitf_segment.h"
#include "nitf/nitf_segmentList.h"

/// The file header of NITF 2.0, NITF 2.1 and NSIF 1.0 (MIL-STD-2500C, table A-1).
class NITFFileHeader : public NITFSegment {
 public:
  using Background = std::array<gr_uint8, 3>;  // red, green, blue

  /// @param fileSize  bytes
  NITFFileHeader(const NITFImageManager& manager, GRIOStreamInf& stream, gr_uint64 fileSize);

  /// Makes and reads all segments of the file.
  /// @param lists  receives them; after a failure those before the failing one
  /// @return 0; 51210 when the segments don't fill the file; the first failure of a segment; 8
  [[nodiscard]] GR_STATUS createSegments(NITFSegmentLists& lists) const;

  const char* getIdentifier() const override { return m_FTITLE.text(); }
  /// The background colour; black in 2.0, which has none.
  const Background& getBackground() const { return m_FBKGC; }

 protected:
  [[nodiscard]] GR_STATUS readHeader(NITFFieldReader& fields) override;
  [[nodiscard]] GR_STATUS addSegmentMetadata(NITFMetadata& metadata) const override;

 private:
  // The lengths of a segment, in bytes.
  struct Entry {
    gr_uint32 headerLength = 0;
    gr_uint64 dataLength = 0;
  };
  using Table = GRArray<Entry>;  // of one kind of segment

  GR_STATUS readVersion(NITFFieldReader& fields);
  GR_STATUS readName(NITFFieldReader& fields);
  GR_STATUS readLengths(NITFFieldReader& fields);
  GR_STATUS readTables(NITFFieldReader& fields);
  static GR_STATUS readTable(NITFFieldReader& fields, gr_uint32 headerWidth, gr_uint32 dataWidth,
                             bool mayStream, Table& table);
  template <typename Segment>
  GR_STATUS createKind(const Table& table, gr_uint64& position,
                       NITFSegmentList<Segment>& list) const;

  gr_uint64 m_fileSize;    // bytes
  bool m_isSized = false;  // whether the header states the size of the file
  gr_uint32 m_HL = 0;      // bytes of this header
  Background m_FBKGC = {};
  NITFText<4> m_FHDR;
  NITFText<5> m_FVER;
  NITFText<4> m_STYPE;
  NITFText<10> m_OSTAID;
  NITFText<14> m_FDT;
  NITFText<80> m_FTITLE;
  NITFText<27> m_ONAME;

  Table m_images;
  Table m_graphics;
  Table m_labels;
  Table m_texts;
  Table m_data;
  Table m_reserved;
};
