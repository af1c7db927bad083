/// @file
/// NITFImageReader, the base of the readers of NITF images.
#pragma once

#include <memory>

#include "gr_lib_utils/include/gr_ioStream.h"
#include "gr_lib_utils/include/gr_smartPointer.h"
#include "image/gri_geoImageReader.h"
#include "nitf/nitf_imageManager.h"

class NITFImageSegment;

/// Takes from a segment everything that doesn't depend on how the pixels are stored. Keeps the
/// manager alive, and with it the segment.
class NITFImageReader : public GRIGeoImageReader {
 public:
  NITFImageReader() { setSelective(true); }

  /// @param stream  of the pixels (NITFImageSegment::getImageStream)
  /// @param segment  of `manager`, with the status 0
  /// @param useWorldFile  whether a world file beside the file places the image
  /// @return 0; 50006 for a bad world file; 8; the status of the concrete reader
  [[nodiscard]] virtual GR_STATUS initialize(std::unique_ptr<GRIOStreamInf> stream,
                                             GRUtilSmartPointer<NITFImageManager> manager,
                                             const NITFImageSegment& segment, bool useWorldFile);

  /// Adds the records of the file header, then those of the image.
  /// @return 0; 50504 for a tag that is there twice; 8
  [[nodiscard]] GR_STATUS addSegmentRecords();

  gr_int64 getSourceFileSize() const override;  ///< of the whole file

 protected:
  const NITFImageSegment& getSegment() const { return *m_segment; }
  GRIOStreamInf& getStream() const { return *m_stream; }

 private:
  GR_STATUS takeSegment();
  GR_STATUS setBackgroundFromHeader();
  GR_STATUS setNoDataFromMask();
  GR_STATUS setRangeFromPrecision();
  GR_STATUS moveByLocation();

  GRUtilSmartPointer<NITFImageManager> m_manager;
  const NITFImageSegment* m_segment = nullptr;
  std::unique_ptr<GRIOStreamInf> m_stream;
};
