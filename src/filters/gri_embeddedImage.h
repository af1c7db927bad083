/// @file
/// GRIEmbeddedImage, an image inside of a larger frame.
#pragma once

#include "filters/gri_placement.h"
#include "filters/gri_resizedFilter.h"

class GRIMultiResFilter;

/// Shows the previous stage at an offset in a frame. A scene of the frame asks the image for just
/// what it covers of it; around it is the background, or what the buffer had before where there is
/// no background. Pixels of no data leave the buffer as it was, too.
class GRIEmbeddedImage final : public GRIOverrideBackgroundPixel<GRIResizedFilter> {
 public:
  GRIEmbeddedImage() = default;

  /// @param previousStage     the image; takes over one reference, also at a failure
  /// @param width, height     of the frame
  /// @param xOffset, yOffset  of the image in the frame, in pixels at magnification 1
  /// @param minMag, maxMag    magnifications of the frame
  /// @param background        what strips are filled with first; null: they aren't filled
  /// @param noData            what counts as no data where the image itself doesn't say; null: all
  ///                          its pixels are data
  /// @return 0; 8 for memory; 50016, 50017 or 50018 for a background of another kind of pixel
  [[nodiscard]] GR_STATUS initialize(GRIImageStage* previousStage, gr_uint32 width,
                                     gr_uint32 height, double xOffset, double yOffset,
                                     double minMag, double maxMag, const GRIPixel* background,
                                     const GRIPixel* noData);

  /// The offset in pixels at a magnification.
  double getOffsetX(double mag) const { return m_xOffset * mag; }
  double getOffsetY(double mag) const { return m_yOffset * mag; }
  /// What a scene of the frame shows of the image, in pixels of the image.
  /// @return whether that is anything
  bool mapScene(const GRIScene& scene, GRIScene& clipped) const;

  /// @return 0; 50232 for an image that passes the scene by more than rounding explains
  GR_STATUS decodeBegin(const GRIScene& scene) override;
  /// @return 0; 50216 for memory; 3 for no data in samples that aren't UINT8, UINT16, SINT16 or
  ///         FLOAT32; else the image's status
  GR_STATUS decodeStrip(GRISceneBuffer& buffer, const GRIScene& stripScene) override;
  GR_STATUS decodeEnd() override;

  /// Whether the scene that has begun shows any of the image.
  bool touchesImage() const { return !m_placement.isEmpty(); }

 private:
  GR_STATUS place(const GRIScene& scene, GRIPlacement& placement) const;
  GR_STATUS beginRows(gr_int32 firstRow, gr_int32 numRows);
  GR_STATUS endRows();
  GR_STATUS decodeRows(GRISceneBuffer& window, const GRIScene& rows);

  GRIMultiResFilter* m_scaledImage = nullptr;  // the previous stage, if it is one
  double m_xOffset = 0.0;
  double m_yOffset = 0.0;
  GRIScene m_scene;  // the one at hand
  GRIPlacement m_placement;
  gr_int32 m_rowsNext = 0;   // the next row of the placement that the image decodes
  gr_int32 m_rowsEnd = 0;    // one past its last one
  bool m_isReading = false;  // whether the image has such rows
};
