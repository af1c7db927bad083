/// @file
/// NITFSegment, the base of the file header and of all segments of a NITF file.
#pragma once

#include <array>

#include "gr_lib_utils/include/gr_ioStream.h"
#include "gr_lib_utils/include/gr_types.h"
#include "nitf/nitf_fieldReader.h"
#include "nitf/nitf_metadata.h"
#include "nitf/nitf_securityBlock.h"
#include "nitf/nitf_version.h"

class NITFImageManager;

/// Where a segment lies, in bytes of the file, and its number.
struct NITFSegmentPlace {
  gr_uint32 number = 0;        // from 1 in its kind; 0 for the file header
  gr_uint64 headerOffset = 0;  // of the subheader
  gr_uint64 headerLength = 0;  // 0 for the file header, which tells its own
  gr_uint64 dataOffset = 0;
  gr_uint64 dataLength = 0;
};

/// Which extension areas a kind of segment has.
enum class NITFAreas { NONE, EXTENSION, USER_AND_EXTENSION };

/// An area of tagged extensions behind the fields of a header.
struct NITFExtensionArea {
  gr_uint64 offset = 0;    // of the first tag in the file
  gr_uint32 length = 0;    // bytes of tags
  gr_uint32 overflow = 0;  // number of the data segment with the rest; 0 for none
};

/// Reads a subheader: the code of the segment, the fields of its kind, the extension areas.
///
/// Lives as long as its manager. It is read once, and only looked at from then on.
class NITFSegment {
 public:
  /// @param manager, stream  outlive the segment
  /// @param code  two letters that begin the subheader; "FH" for the file header, which has none
  NITFSegment(const NITFImageManager& manager, GRIOStreamInf& stream, const char* code,
              NITFAreas areas, const NITFSegmentPlace& place);
  virtual ~NITFSegment() = default;
  NITFSegment(const NITFSegment&) = delete;
  NITFSegment& operator=(const NITFSegment&) = delete;

  /// Reads the subheader.
  /// @return 0; 51204 for a short read; 51210 when it isn't what it has to be; 8; or the status of
  ///         the kind of segment
  [[nodiscard]] virtual GR_STATUS initialize();
  /// Adds the records of the segment: security, the extensions of its areas and of the overflow
  /// segments that continue them, and then what the kind tells.
  /// @return 0; 50504 when a tag is there already, as when an extension occurs twice; 51210 for
  ///         extensions that don't fill their area, and for an overflow segment that isn't there or
  ///         belongs to another; 51204 for a short read; 8
  [[nodiscard]] virtual GR_STATUS addMetadata(GRIMetadataDatabase& database) const;

  NITFVersion getVersion() const { return m_version; }
  gr_uint32 getNumber() const { return m_place.number; }
  gr_uint64 getHeaderOffset() const { return m_place.headerOffset; }
  gr_uint64 getHeaderLength() const { return m_place.headerLength; }
  gr_uint64 getDataOffset() const { return m_place.dataOffset; }
  gr_uint64 getDataLength() const { return m_place.dataLength; }
  const char* getCode() const { return m_code; }
  /// "NITF::", the code, the number in three digits and "::".
  const char* getPrefix() const { return m_prefix.data(); }
  /// The text by which people know the segment, with its blanks.
  virtual const char* getIdentifier() const = 0;
  const NITFExtensionArea& getUserArea() const { return m_userArea; }
  const NITFExtensionArea& getExtensionArea() const { return m_extensionArea; }

 protected:
  static constexpr gr_uint64 FIRST_READ = 4096;  // bytes of a header whose length isn't known
  static constexpr size_t PREFIX_LENGTH = 13;

  /// Reads the fields of the kind, behind the code and before the areas.
  [[nodiscard]] virtual GR_STATUS readHeader(NITFFieldReader& fields) = 0;
  /// Reads what the kind wants of the data area.
  [[nodiscard]] virtual GR_STATUS readData() { return GR_STATUS_OK; }
  /// Adds the records of the kind.
  [[nodiscard]] virtual GR_STATUS addSegmentMetadata(NITFMetadata&) const { return GR_STATUS_OK; }

  [[nodiscard]] GR_STATUS readSecurity(NITFFieldReader& fields);
  /// The mark of encryption, which must be "0". @return 0; 51210; 51211
  [[nodiscard]] static GR_STATUS readEncryption(NITFFieldReader& fields);

  /// Reads the data area as a whole, which its length in the header keeps small.
  /// @return 0; 51204, or the stream's last error, for a short read; 8
  [[nodiscard]] GR_STATUS readWholeData(GRArray<gr_uint8>& data);

  void setVersion(NITFVersion version) { m_version = version; }
  const NITFImageManager& getManager() const { return m_manager; }
  GRIOStreamInf& getStream() const { return m_stream; }

 private:
  GR_STATUS readAreas(NITFFieldReader& fields);
  GR_STATUS addArea(const NITFExtensionArea& area, GRIMetadataDatabase& database) const;
  GR_STATUS addOverflow(const NITFExtensionArea& area, bool isUser,
                        GRIMetadataDatabase& database) const;
  void makePrefix();

  const NITFImageManager& m_manager;
  GRIOStreamInf& m_stream;
  const char* m_code;  // a literal
  NITFAreas m_areas;
  NITFSegmentPlace m_place;
  NITFVersion m_version = NITF_VERSION_NONE;
  NITFSecurityBlock m_security;
  NITFExtensionArea m_userArea;
  NITFExtensionArea m_extensionArea;
  std::array<char, PREFIX_LENGTH + 1> m_prefix = {};
};
