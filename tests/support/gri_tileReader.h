/// @file
/// GRITileReader and GRITileManager, images in memory that stand on the ground, for mosaics, and
/// that tell what was asked of them.
#pragma once

#include <cmath>
#include <functional>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include "gr_lib_utils/include/gr_exception.h"
#include "gr_lib_utils/include/gr_memory.h"
#include "gr_lib_utils/include/gr_smartPointer.h"
#include "gr_lib_utils/include/gr_status.h"
#include "image/gri_geoImageReader.h"
#include "image/gri_imageStageManager.h"
#include "image/gri_pixel.h"
#include "image/gri_sceneBuffer.h"
#include "metadata/gri_metadataAcc.h"

/// What the tiles of a manager went through, all together.
struct GRITileLog {
  size_t numOpened = 0;  ///< stages made
  size_t numAlive = 0;   ///< stages that are there
  size_t mostAlive = 0;
  std::vector<std::string> calls;  ///< "0 begin 3+5", "0 strip 3+5", "0 end": tile, rows
};

/// What an image is. Its samples are of UINT8 unless `pixel` says otherwise; they are kept in 8
/// bits all the same.
struct GRITile {
  gr_uint32 width = 1;
  gr_uint32 height = 1;
  double xOrigin = 0.0;
  double yOrigin = 0.0;
  double xResolution = 1.0;
  double yResolution = -1.0;
  double xRotation = 0.0;
  double yRotation = 0.0;
  double minMagnification = 1.0;
  double maxMagnification = 1.0;
  gr_uint8 base = 0;                ///< what tells its pixels from those of other tiles
  int noData = -1;                  ///< a value of all bands; negative for none
  std::vector<gr_uint8> samples{};  ///< empty: a pattern
  GRIPixel pixel{GRI_COLORSPACE_GRAYSCALE, 1, GRI_DATATYPE_UINT8};
  std::shared_ptr<GRIPixel> background{};  ///< null for none
  std::string name{};                      ///< IMAGE::INPUT_NAME, unless it is empty
  gr_uint64 fileSize = 0;                  ///< IMAGE::INPUT_FILE_SIZE, unless it is 0
  std::string wkt{};
  bool isSelective = true;
  GR_STATUS failure = 0;       ///< of making its stage
  GR_STATUS stripFailure = 0;  ///< of decoding a strip

  /// The sample at magnification 1.
  gr_uint8 at(gr_int64 column, gr_int64 row) const {
    if (!samples.empty()) return samples[static_cast<size_t>(row * width + column)];
    return static_cast<gr_uint8>(base + column * 7 + row * 31);
  }
  /// The sample at a magnification that is a power of two: the one at the upper left of its square.
  gr_uint8 at(gr_int64 column, gr_int64 row, double mag) const {
    return at(static_cast<gr_int64>(std::floor(static_cast<double>(column) / mag)),
              static_cast<gr_int64>(std::floor(static_cast<double>(row) / mag)));
  }
};

/// Insists on what real readers need: strips of its strip height, from the scene's first row on,
/// one after the other.
class GRITileReader final : public GRIGeoImageReader {
 public:
  GRITileReader(const GRITile& tile, gr_uint32 number, GRITileLog& log)
      : m_tile(tile), m_number(number), m_log(log) {
    ++m_log.numOpened;
    m_log.mostAlive = std::max(m_log.mostAlive, ++m_log.numAlive);
  }
  ~GRITileReader() override { --m_log.numAlive; }

  GR_STATUS initialize() {
    setDimensions(m_tile.width, m_tile.height);
    setMagnificationRange(m_tile.minMagnification, m_tile.maxMagnification);
    setSelective(m_tile.isSelective);
    GR_RETURN_IF_FAILED(setPixelProps(m_tile.pixel));
    if (m_tile.noData >= 0) {
      GRIPixel noData(m_tile.pixel);
      for (gr_uint16 band = 0; band < getNumBands(); ++band) {
        noData.getSample(band).setValueFromDouble(m_tile.noData);
      }
      GR_RETURN_IF_FAILED(setNoDataPixel(&noData));
    }
    GR_RETURN_IF_FAILED(setBackgroundPixel(m_tile.background.get()));
    GRIMetadataDatabase* records = editMetadata();
    if (records == nullptr) return GR_STATUS_NO_MEMORY;
    GRIMetadataAcc access(*records);
    if (!m_tile.name.empty()) GR_RETURN_IF_FAILED(access.setInputName(m_tile.name.c_str()));
    if (m_tile.fileSize > 0) GR_RETURN_IF_FAILED(access.setInputFileSize(m_tile.fileSize));
    GRIGeoCoord geoCoord(m_tile.xOrigin, m_tile.yOrigin, m_tile.xResolution, m_tile.yResolution,
                         m_tile.xRotation, m_tile.yRotation);
    if (!m_tile.wkt.empty()) geoCoord.setWKT(m_tile.wkt.c_str());
    return setGeoCoord(geoCoord);
  }

  gr_int64 getSourceFileSize() const override { return 1000; }

  GR_STATUS decodeBegin(const GRIScene& scene) override {
    note("begin", scene);
    m_scene = scene;
    m_rowsPerStrip = static_cast<gr_int32>(getStripHeight());
    m_nextRow = 0;
    return GR_STATUS_OK;
  }

  GR_STATUS decodeStrip(GRISceneBuffer& buffer, const GRIScene& stripScene) override {
    note("strip", stripScene);
    if (m_tile.stripFailure != 0) return m_tile.stripFailure;
    const gr_int32 firstRow = stripScene.getUpperLeftIntRow();
    const gr_int32 numRows = std::min(m_rowsPerStrip, m_scene.getNumRows() - m_nextRow);
    if (firstRow != m_scene.getUpperLeftIntRow() + m_nextRow ||
        stripScene.getNumRows() != numRows ||
        buffer.getWindowNumRows() != static_cast<gr_uint32>(numRows) ||
        buffer.getWindowNumCols() != static_cast<gr_uint32>(m_scene.getNumCols())) {
      return GRI_STATUS_SCENE_BUFFER_SIZE;
    }
    m_nextRow += numRows;
    for (gr_uint16 band = 0; band < getNumBands(); ++band) {
      for (gr_int32 row = 0; row < numRows; ++row) {
        for (gr_int32 col = 0; col < m_scene.getNumCols(); ++col) {
          GRISample sample(getPixelProps().getSample(band));
          sample.setValueFromDouble(static_cast<gr_uint8>(
              m_tile.at(m_scene.getUpperLeftIntCol() + col, firstRow + row, m_scene.getMag()) +
              band));
          std::memcpy(buffer.getSampleInWindow(static_cast<gr_uint32>(col),
                                               static_cast<gr_uint32>(row), band),
                      sample.getValuePtr(), sample.getNumBytes());
        }
      }
    }
    return GR_STATUS_OK;
  }

  GR_STATUS decodeEnd() override {
    m_log.calls.push_back(std::to_string(m_number) + " end");
    return GR_STATUS_OK;
  }

 private:
  void note(const char* call, const GRIScene& scene) const {
    m_log.calls.push_back(std::to_string(m_number) + " " + call + " " +
                          std::to_string(scene.getUpperLeftIntRow()) + "+" +
                          std::to_string(scene.getNumRows()));
  }

  GRITile m_tile;
  gr_uint32 m_number;
  GRITileLog& m_log;
  GRIScene m_scene;
  gr_int32 m_rowsPerStrip = 0;
  gr_int32 m_nextRow = 0;
};

class GRITileManager final : public GRIImageStageManager {
 public:
  explicit GRITileManager(std::vector<GRITile> tiles) : m_tiles(std::move(tiles)) {
    setNumImages(static_cast<gr_uint32>(m_tiles.size()));
  }

  GR_STATUS createImageStage(gr_uint32 imageNumber, GRIImageStage*& stage) override {
    stage = nullptr;
    const GRITile& tile = m_tiles[imageNumber];
    GR_RETURN_IF_FAILED(tile.failure);
    if (givesNull) return GR_STATUS_OK;
    GRUtilSmartPointer<GRITileReader> reader(
        gr_makeUnique<GRITileReader>(tile, imageNumber, log).release());
    GR_RETURN_IF_FAILED(reader->initialize());
    stage = reader.detach();
    return GR_STATUS_OK;
  }

  const std::vector<GRITile>& tiles() const { return m_tiles; }
  std::vector<GRITile>& tiles() { return m_tiles; }

  GRITileLog log;
  bool givesNull = false;

 private:
  std::vector<GRITile> m_tiles;
};
