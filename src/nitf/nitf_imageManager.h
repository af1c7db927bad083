/// @file
/// NITFImageManager, a NITF file with all its segments.
#pragma once

#include <array>
#include <memory>

#include "gr_lib_utils/include/gr_fileSpec.h"
#include "gr_lib_utils/include/gr_ioStream.h"
#include "gr_lib_utils/include/gr_smartPointer.h"
#include "image/gri_imageStageManager.h"
#include "nitf/nitf_segmentList.h"

class GRIMetadataDatabase;
class NITFFileHeader;
class NITFImageReader;

/// Opens a NITF file once and makes a reader of any of its images. Readers keep the manager alive.
///
/// Serves one thread at a time, as createReader opens and closes the one stream. The readers that
/// it makes have streams of their own.
class NITFImageManager : public GRIImageStageManager {
 public:
  static constexpr size_t NUM_FIRST_BYTES = 25;
  using FirstBytes = std::array<gr_uint8, NUM_FIRST_BYTES>;

  NITFImageManager();
  ~NITFImageManager() override;

  /// Reads the header and all subheaders of a file.
  /// @param useWorldFile  whether a world file beside the file places its first image
  /// @return 0; 51203 when the file can't be opened; 51204 when it ends early; 51210 when it isn't
  ///         a NITF file; 51211 encrypted; 51212 not finished; 51213 NITF 1.1; 51220 a graphic of
  ///         an unknown kind; 8
  [[nodiscard]] GR_STATUS initialize(const GRFileSpec& fileSpec, bool useWorldFile);

  /// Makes a reader of an image, ready to decode.
  /// @param segmentNumber  from 1
  /// @param reader  receives it
  /// @return 0; 51206 when there is no such image; the status of the image segment; 51214 or 51216
  ///         for a compression without a reader; the status of the reader
  [[nodiscard]] GR_STATUS createReader(GRUtilSmartPointer<NITFImageReader>& reader,
                                       gr_uint32 segmentNumber);
  /// The same with numbers from 0.
  [[nodiscard]] GR_STATUS createImageStage(gr_uint32 imageNumber, GRIImageStage*& stage) override;

  /// Adds the records of all images ("NITF::IM...") to a database.
  /// @return 0; the first failure: of an image, or 50504 for a tag that is there already; 8
  [[nodiscard]] GR_STATUS mergeMetadata(GRIMetadataDatabase& database);

  const NITFFileHeader& getFileHeader() const { return *m_header; }
  const GRFileSpec& getFileSpec() const { return m_fileSpec; }
  gr_uint64 getFileSize() const { return m_fileSize; }  ///< bytes
  /// The first bytes of the file; zeros where it couldn't be read.
  const FirstBytes& getFirstBytes() const { return m_firstBytes; }

  gr_uint32 getNumImageSegments() const;
  gr_uint32 getNumGraphicSegments() const;
  gr_uint32 getNumLabelSegments() const;
  gr_uint32 getNumTextSegments() const;
  gr_uint32 getNumDataSegments() const;
  gr_uint32 getNumResSegments() const;
  // `number` counts from 1, up to the number of segments.
  const NITFImageSegment& getImageSegment(gr_uint32 number) const;
  const NITFGraphicSegment& getGraphicSegment(gr_uint32 number) const;
  const NITFLabelSegment& getLabelSegment(gr_uint32 number) const;
  const NITFTextSegment& getTextSegment(gr_uint32 number) const;
  const NITFDataSegment& getDataSegment(gr_uint32 number) const;
  const NITFResSegment& getResSegment(gr_uint32 number) const;
  /// IID1 of an image.
  const char* getSegmentIdentifier(gr_uint32 number) const;

  /// Whether JPEG 2000 images lack the field COMRAT; to be set before initialize.
  void setCOMRATMissing(bool isMissing) { m_isCOMRATMissing = isMissing; }
  bool isCOMRATMissing() const { return m_isCOMRATMissing; }

 private:
  GR_STATUS readFirstBytes();
  static GR_STATUS makeReader(const NITFImageSegment& segment,
                              GRUtilSmartPointer<NITFImageReader>& reader);

  // In the order in which they are made: the segments look at the stream and the header.
  GRFileSpec m_fileSpec;
  gr_uint64 m_fileSize = 0;
  bool m_useWorldFile = false;
  bool m_isCOMRATMissing = false;
  FirstBytes m_firstBytes = {};
  std::unique_ptr<GRIOStreamInf> m_stream;
  std::unique_ptr<NITFFileHeader> m_header;
  NITFSegmentLists m_segments;
};
