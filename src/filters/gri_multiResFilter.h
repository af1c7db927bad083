/// @file
/// GRIMultiResFilter, an image at another resolution than its own.
#pragma once

#include <memory>
#include <optional>

#include "filters/gri_resampler.h"
#include "filters/gri_resizedFilter.h"
#include "image/gri_sceneBuffer.h"

/// Shows the previous stage scaled by a fixed factor: with a factor of 2 it has twice the columns
/// and rows, and pixels half as large on the ground.
///
/// A scene is decoded at that magnification of the image, a power of two, that comes nearest, and
/// what is missing to the scene's is made up for by the nearest neighbour.
class GRIMultiResFilter final : public GRIOverrideStripHeight<GRIResizedFilter> {
 public:
  /// How a scene is decoded.
  enum class Mode {
    RESAMPLE = 1,  ///< strips of the image go through the resampler
    PASS = 2,      ///< strips of the image are those of the scene
    ROWS = 3,      ///< each row of the scene is a scene of the image of its own
  };

  GRIMultiResFilter() = default;

  /// Columns or rows of a scaled image: rounded up, but not for a millionth of a pixel, which is
  /// what is left of a quotient of two resolutions.
  /// @return 0 where that is none, or 2^31 and more
  static gr_uint32 scaledSize(gr_uint32 size, double scale);

  /// @param previousStage   the image; takes over one reference, also at a failure
  /// @param xScale, yScale  above 0 and finite; 0.0 in either: `magnification` is both
  /// @param minMag, maxMag  magnifications that the filter has at least
  /// @return 0; 8 for memory; 50203 for samples that aren't resampled; 50211 for a scale that is no
  ///         number above 0 or makes an image without a pixel or of 2^31 and more columns or rows
  [[nodiscard]] GR_STATUS initialize(GRIImageStage* previousStage, double xScale, double yScale,
                                     double minMag, double maxMag, double magnification);

  /// Has the scene that begins next show the pixels that this one, of which it is a part, would
  /// show there. The mode depends on the size of the whole.
  void setWholeScene(const GRIScene& scene) { m_wholeScene = scene; }

  /// @return 0; 50232 for a scene beside the image; else the image's status
  GR_STATUS decodeBegin(const GRIScene& scene) override;
  /// @return 0; 50216 for memory; else the image's status
  GR_STATUS decodeStrip(GRISceneBuffer& buffer, const GRIScene& stripScene) override;
  GR_STATUS decodeEnd() override;

  Mode getMode() const { return m_mode; }                      ///< of the scene that has begun
  double getImageMagnification() const { return m_imageMag; }  ///< of the same

 private:
  /// Rows of the image that are decoded, one strip of them.
  struct Strip {
    std::unique_ptr<GRISceneBuffer> buffer;
    gr_int32 firstRow = 0;  // counted from the scene of the image

    gr_int32 getEnd() const;
  };

  /// Columns of the scene whose positions in the image are added up one after the other.
  struct Piece {
    gr_int64 left = 0;      // the column of the image from which its positions are counted
    gr_int32 numCols = 1;   // of the scene
    float position = 0.0F;  // of the first of them
  };

  /// Columns of the image at its magnification.
  struct Columns {
    gr_int64 first;
    gr_int64 last;
  };

  /// Rows of the image in memory.
  struct Source {
    const GRISceneBuffer* first;
    const GRISceneBuffer* second;  // directly below; null for none
    gr_int64 left;                 // the column of the image that is theirs of number 0
  };

  GR_STATUS chooseMode(const GRIScene& whole);
  bool passes(const GRIScene& scene) const;
  GRIScene requireScene(const GRIScene& scene) const;
  gr_uint32 rowsPerImageStrip(gr_int32 numCols) const;
  gr_int64 imageRowOf(gr_int32 row) const;
  Piece pieceFrom(gr_int32 column) const;
  gr_int64 imageColumnOf(gr_int32 column) const;
  Columns imageColumnsOf(gr_int32 first, gr_int32 last) const;
  GR_STATUS resampleStrip(GRISceneBuffer& buffer, gr_int32 firstRow);
  void resampleRow(GRISceneBuffer& buffer, const GRIResampleRect& dest, const Source& source,
                   gr_uint32 row) const;
  GR_STATUS loadRow(gr_int32 row);
  GR_STATUS loadStrip();
  GR_STATUS decodeRowByRow(GRISceneBuffer& buffer, gr_int32 firstRow);
  GR_STATUS decodePart(GRISceneBuffer& buffer, const GRIResampleRect& part, gr_int32 imageRow);

  double m_xScale = 1.0;
  double m_yScale = 1.0;
  std::unique_ptr<GRIResampler> m_resampler;
  std::optional<GRIScene> m_wholeScene;  // of the scene that begins next

  // Of the scene at hand.
  Mode m_mode = Mode::PASS;
  GRIScene m_scene;
  GRIScene m_imageScene;       // what is decoded of the image, in whole pixels
  double m_imageMag = 1.0;     // at which magnification
  gr_uint32 m_imageWidth = 0;  // of all of the image there
  gr_uint32 m_imageHeight = 0;
  double m_xResample = 1.0;  // pixels of the image to one of the scene
  double m_yResample = 1.0;
  gr_int32 m_columnsPerPiece = 1;
  gr_int64 m_margin = 0;      // columns of the strips in front of those that are decoded
  bool m_isReading = false;   // whether the image has begun with its scene
  gr_uint32 m_stripRows = 0;  // of the image
  Strip m_strips[2];          // the earlier one and the one below it; or only the first
};
