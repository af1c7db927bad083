/// @file
/// NITFRawSimpleReader, an uncompressed NITF image of one block.
#pragma once

#include "image/gri_rawImageReader.h"
#include "nitf/nitf_imageReader.h"

/// Such an image is a raw one, which is read by rows: nothing of its size is held.
class NITFRawSimpleReader : public NITFImageReader {
 public:
  /// @return also 50025 when the pixels aren't as many as the image has
  [[nodiscard]] GR_STATUS initialize(std::unique_ptr<GRIOStreamInf> stream,
                                     GRUtilSmartPointer<NITFImageManager> manager,
                                     const NITFImageSegment& segment, bool useWorldFile) override;

  /// @return also 51204 when there are no pixels in the file
  [[nodiscard]] GR_STATUS decodeBegin(const GRIScene& scene) override;
  /// @return 0; 51204, or the stream's last error, for a short read; 8
  [[nodiscard]] GR_STATUS decodeStrip(GRISceneBuffer& buffer, const GRIScene& scene) override;
  [[nodiscard]] GR_STATUS decodeEnd() override;

 private:
  GRUtilSmartPointer<GRIRawImageReader> m_raw;
};
