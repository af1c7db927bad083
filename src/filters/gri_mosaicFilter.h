/// @file
/// GRIMosaicFilter, many images shown as one.
#pragma once

#include <memory>

#include "filters/gri_embeddedImage.h"
#include "filters/gri_mosaicLayout.h"
#include "gr_lib_utils/include/gr_memory.h"
#include "gr_lib_utils/include/gr_smartPointer.h"
#include "image/gri_imageReader.h"
#include "image/gri_imageStageManager.h"

/// Shows the images of a manager side by side, where their positions on the ground put them, in the
/// grid of the finest of their resolutions. Images are the mosaic's tiles and are numbered from 0,
/// in the manager's order: where they overlap, those with higher numbers lie on top, and pixels of
/// no data let through what is below.
///
/// The mosaic holds a small record of each tile. A tile is opened when the first strip of a scene
/// comes to it, and ended after the last one.
class GRIMosaicFilter final : public GRIImageReader {
 public:
  /// Hears of each tile that is opened.
  class TileCreatedDelegate {
   public:
    virtual ~TileCreatedDelegate() = default;
    /// @return 0; anything else ends what needed the tile
    virtual GR_STATUS onTileCreated(gr_uint32 tile, GRIImageStage& stage) = 0;

   protected:
    TileCreatedDelegate() = default;
    TileCreatedDelegate(const TileCreatedDelegate&) = default;
    TileCreatedDelegate& operator=(const TileCreatedDelegate&) = default;
  };

  /// The record that tells how many tiles there are, a UINT32.
  static constexpr const char* NUM_TILES_TAG = "IMAGE::NUMBER_OF_TILES";

  GRIMosaicFilter() = default;

  /// Opens each image once, one after the other, to learn what it is.
  /// @param manager          of which a reference is taken
  /// @param backgroundPixel  where no tile is; null: the first image's, or zeros
  /// @param isApproximate, useMultires  see GRIMosaicLayout::Rules
  /// @return 0; 50203 without images; 50205 when the images have different pixels; 50206, 50207,
  ///         50211, 50212, 50213 for positions that don't go together (GRIMosaicLayout); 8 or
  ///         50216 for memory; else the status of an image
  [[nodiscard]] GR_STATUS initialize(GRIImageStageManager& manager, const GRIPixel* backgroundPixel,
                                     bool isApproximate, bool useMultires);

  /// Whether a tile is given back once the strips have passed it. If not, it stays for later
  /// scenes.
  void setReleaseClosedTiles(bool releaseClosedTiles) { m_releaseClosedTiles = releaseClosedTiles; }
  /// @param delegate  the caller's; null for none
  void setTileCreatedDelegate(TileCreatedDelegate* delegate) { m_tileCreatedDelegate = delegate; }

  gr_uint32 getNumTiles() const { return m_layout.getNumTiles(); }
  gr_uint32 getNumOpenTiles() const { return m_numOpenTiles; }
  /// One of those that are open. @param index  below getNumOpenTiles()
  GRIEmbeddedImage& getOpenTile(gr_uint32 index) const {
    return *m_slots[m_openTiles[index]].stage;
  }
  /// A tile in the frame of the mosaic; opens it if it isn't.
  /// @param stage  stays the mosaic's
  /// @return 0; 8 for memory; else the status of the image, a filter or the delegate
  [[nodiscard]] GR_STATUS getImageStage(gr_uint32 tile, GRIEmbeddedImage*& stage);

  gr_int64 getSourceFileSize() const override { return m_sourceFileSize; }
  gr_int64 getSceneCost(const GRIScene& scene) const override;
  GR_STATUS decodeBegin(const GRIScene& scene) override;
  GR_STATUS decodeStrip(GRISceneBuffer& buffer, const GRIScene& stripScene) override;
  GR_STATUS decodeEnd() override;

 private:
  static constexpr gr_int32 IDLE = -1;

  /// What there is of a tile while it is open.
  struct Slot {
    GRUtilSmartPointer<GRIEmbeddedImage> stage;
    gr_int32 stripsLeft = IDLE;  // of the scene, with the one at hand; IDLE without a scene
  };
  class ListImageStagesInSceneCallback;

  GR_STATUS takeOver(const GRIImageStage& first, const GRIPixel* backgroundPixel);
  GR_STATUS findTiles(const GRIScene& scene, GRArray<gr_uint32>& hits, gr_uint32& numHits) const;
  GR_STATUS placeTile(gr_uint32 tile, const GRIScene& scene, GRIPlacement& placement) const;
  GR_STATUS createStage(gr_uint32 tile, GRUtilSmartPointer<GRIEmbeddedImage>& stage);
  GR_STATUS decodeTile(gr_uint32 tile, GRISceneBuffer& buffer, const GRIScene& stripScene);
  GR_STATUS finishStrip();

  GRUtilSmartPointer<GRIImageStageManager> m_imageStageManager;
  gr_int64 m_sourceFileSize = 0;  // of all tiles, bytes
  GRIMosaicLayout m_layout;
  GRArray<Slot> m_slots;           // one for each tile
  GRArray<gr_uint32> m_openTiles;  // the numbers of those that are open
  gr_uint32 m_numOpenTiles = 0;
  GRArray<gr_uint32> m_hits;  // of one strip
  TileCreatedDelegate* m_tileCreatedDelegate = nullptr;
  bool m_releaseClosedTiles = false;
  GRIScene m_scene;             // the one at hand
  gr_int32 m_rowsPerStrip = 1;  // of it
};
