/// @file
/// GRIMosaicLayout, which images a mosaic is made of and where each of them lies.
#pragma once

#include "filters/gri_box.h"
#include "filters/gri_rTree.h"
#include "gr_lib_utils/include/gr_memory.h"
#include "gr_lib_utils/include/gr_types.h"
#include "image/gri_geoCoord.h"

class GRIImageStage;

/// What a mosaic knows of an image without opening it.
struct GRIMosaicTile {
  gr_uint32 width = 0;
  gr_uint32 height = 0;
  double minMagnification = 1.0;
  double maxMagnification = 1.0;
  double xOrigin = 0.0;  // on the ground, of the upper left pixel
  double yOrigin = 0.0;
  double xResolution = 1.0;
  double yResolution = -1.0;

  /// The box on the ground, from corner to corner; empty or not finite for a position that no image
  /// can have.
  GRIBox box;
};

/// Takes the images of a mosaic one after the other, and lays them out by their positions in one
/// grid. Images are numbered in the order in which they come.
class GRIMosaicLayout {
 public:
  /// Which images can be combined.
  struct Rules {
    bool isApproximate = true;  ///< resolutions may differ as long as no pixel is off
    bool useMultires = true;    ///< images of several resolutions are scaled to the finest one
  };

  /// @param numTiles  how many images will come
  /// @return 0; 8 for memory
  [[nodiscard]] GR_STATUS initialize(gr_uint32 numTiles, const Rules& rules);
  /// Takes the next image.
  /// @return 0; 50211 for a position or size that no image can have; 50206 or 50207 for a
  ///         resolution of another sign than the first one's
  [[nodiscard]] GR_STATUS add(const GRIImageStage& stage);
  /// Lays out the grid, once all images are there.
  /// @return 0; 50211 for a grid of no or too many columns or rows, or so far away that its pixels
  ///         have no positions of their own; 50206, 50207, 50212 or 50213 for resolutions that the
  ///         rules don't let be combined; 50216 for memory
  [[nodiscard]] GR_STATUS finish();

  gr_uint32 getNumTiles() const { return m_numTiles; }
  const GRIMosaicTile& getTile(gr_uint32 tile) const { return m_tiles[tile]; }
  /// The boxes on the ground in which images are drawn: an image whose position is a rotated one is
  /// drawn upright from its upper left. Complete once the grid is laid out.
  const GRIRTree& getTree() const { return m_tree; }

  // Of the mosaic.
  gr_uint32 getWidth() const { return m_width; }
  gr_uint32 getHeight() const { return m_height; }
  double getMinMagnification() const { return m_minMagnification; }
  double getMaxMagnification() const { return m_maxMagnification; }
  /// Without a WKT.
  const GRIGeoCoord& getGeoCoord() const { return m_geoCoord; }

  // Of an image in the mosaic.
  /// Pixels of the mosaic to one of the image.
  double getXScale(gr_uint32 tile) const;
  double getYScale(gr_uint32 tile) const;
  /// Whether the image has to be scaled: when its pixels are of another size than the mosaic's, or
  /// when it hasn't all of the mosaic's magnifications.
  bool isScaled(gr_uint32 tile) const;
  /// Its upper left in pixels of the mosaic, at magnification 1.
  double getXOffset(gr_uint32 tile) const;
  double getYOffset(gr_uint32 tile) const;
  /// Its size in pixels of the mosaic at a magnification.
  void getDimsAtMag(gr_uint32 tile, double mag, gr_uint32& width, gr_uint32& height) const;

 private:
  GR_STATUS checkResolutions(const GRIMosaicTile& tile) const;
  double scaleOf(gr_uint32 tile) const;
  GRIBox drawnBoxOf(gr_uint32 tile) const;

  Rules m_rules;
  GRArray<GRIMosaicTile> m_tiles;
  gr_uint32 m_numTiles = 0;  // that have come
  GRIRTree m_tree;
  GRIBox m_bounds;             // around all images
  double m_xResolution = 0.0;  // without their signs
  double m_yResolution = 0.0;
  GRIGeoCoord m_geoCoord;
  gr_uint32 m_width = 0;
  gr_uint32 m_height = 0;
  double m_minMagnification = 1.0;
  double m_maxMagnification = 1.0;
};
