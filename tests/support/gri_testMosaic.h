/// @file
/// Mosaics of tiles in memory.
#pragma once

#include <gtest/gtest.h>

#include <vector>

#include "filters/gri_mosaicFilter.h"
#include "tests/support/gri_tileReader.h"

/// How the mosaic is set up.
struct MosaicOptions {
  bool isApproximate = true;
  bool useMultires = true;
  const GRIPixel* background = nullptr;
  gr_uint32 stripHeight = 64;
  bool releasesTiles = true;
};

/// A mosaic of tiles and what it is made of.
class Mosaic {
 public:
  explicit Mosaic(const std::vector<GRITile>& tiles, const MosaicOptions& setup = {})
      : m_manager(gr_makeUnique<GRITileManager>(tiles).release()),
        m_filter(gr_makeUnique<GRIMosaicFilter>().release()) {
    m_filter->setReleaseClosedTiles(setup.releasesTiles);
    m_status =
        m_filter->initialize(*m_manager, setup.background, setup.isApproximate, setup.useMultires);
    EXPECT_EQ(m_filter->setStripHeight(setup.stripHeight), 0u);
    EXPECT_EQ(m_manager->log.numAlive, 0u);  // tiles are opened when a scene comes to them
    EXPECT_LE(m_manager->log.mostAlive, 1u);
    m_manager->log = GRITileLog();
  }

  GR_STATUS status() const { return m_status; }
  GRIMosaicFilter& filter() const { return *m_filter; }
  GRITileManager& manager() const { return *m_manager; }
  GRITileLog& log() const { return m_manager->log; }

  GR_STATUS decode(const GRIScene& scene, std::vector<gr_uint8>& samples) const {
    samples.assign(
        static_cast<size_t>(scene.getNumCols()) * static_cast<size_t>(scene.getNumRows()), 0xA5);
    void* planes[] = {samples.data()};
    GRISceneBuffer buffer(m_filter->getPixelProps(), static_cast<gr_uint32>(scene.getNumCols()),
                          static_cast<gr_uint32>(scene.getNumRows()), planes);
    return m_filter->read(scene, buffer);
  }
  std::vector<gr_uint8> decoded(const GRIScene& scene) const {
    std::vector<gr_uint8> samples;
    EXPECT_EQ(decode(scene, samples), 0u);
    return samples;
  }

 private:
  GRUtilSmartPointer<GRITileManager> m_manager;
  GRUtilSmartPointer<GRIMosaicFilter> m_filter;
  GR_STATUS m_status = 0;
};

/// A tile of resolution 1 that lies at a column and row of a grid whose row 0 is at y 0.
inline GRITile tileAt(double column, double row, gr_uint32 width, gr_uint32 height,
                      gr_uint8 base = 0) {
  GRITile tile;
  tile.width = width;
  tile.height = height;
  tile.xOrigin = column;
  tile.yOrigin = -row;
  tile.base = base;
  return tile;
}

inline GR_STATUS statusOf(const std::vector<GRITile>& tiles, const MosaicOptions& setup = {}) {
  return Mosaic(tiles, setup).status();
}

inline GRIPixel grayPixel(int value) {
  GRIPixel pixel(GRI_COLORSPACE_GRAYSCALE, 1, GRI_DATATYPE_UINT8);
  pixel.setAllUint8(static_cast<gr_uint8>(value));
  return pixel;
}
