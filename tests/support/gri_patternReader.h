/// @file
/// GRIPatternReader, a reader whose pixels are a known function of column, row and band, and that
/// tells what was asked of it.
#pragma once

#include <cstring>
#include <map>
#include <string>
#include <vector>

#include "gr_lib_utils/include/gr_smartPointer.h"
#include "gr_lib_utils/include/gr_status.h"
#include "image/gri_geoImageReader.h"
#include "image/gri_sampleTypes.h"
#include "image/gri_sceneBuffer.h"

/// What the calls of one or more stages were, in their order.
using GRICallLog = std::vector<std::string>;

/// An image in memory without the memory. All magnifications of its range show the same function,
/// of the columns and rows at that magnification.
class GRIPatternReader final : public GRIGeoImageReader {
 public:
  GRIPatternReader() = default;

  GR_STATUS initialize(gr_uint32 width, gr_uint32 height, const GRIPixel& pixelProps,
                       double minMagnification = 1.0, double maxMagnification = 1.0) {
    setDimensions(width, height);
    setMagnificationRange(minMagnification, maxMagnification);
    setSelective(true);
    GR_RETURN_IF_FAILED(setPixelProps(pixelProps));
    return setDefaultGeoCoord(*this);
  }

  /// Logs every call of the decode trio as "begin", "strip FIRSTROW+ROWS" and "end".
  void logTo(GRICallLog& log) { m_log = &log; }
  /// Makes a later call end with `status`: "begin", "end" or "strip", the latter the one that holds
  /// `row`.
  void failAt(const std::string& call, GR_STATUS status, gr_int32 row = 0) {
    m_failures[call] = status;
    if (call == "strip") m_failingRow = row;
  }
  /// Whether a decode has begun and not ended: what decodeBegin takes and decodeEnd gives back.
  bool isDecoding() const { return m_isDecoding; }

  /// The sample at a place, as a number of any type: different for neighbours in every direction.
  template <typename T>
  static T valueAt(gr_int64 column, gr_int64 row, gr_uint16 band) {
    return static_cast<T>((column * 7 + row * 31 + gr_int64{band} * 101) % 113);
  }

  gr_int64 getSourceFileSize() const override { return static_cast<gr_int64>(getNumBytes()); }

  GR_STATUS decodeBegin(const GRIScene&) override {
    note("begin");
    if (m_failures.contains("begin")) return m_failures["begin"];
    m_isDecoding = true;
    return GR_STATUS_OK;
  }

  GR_STATUS decodeStrip(GRISceneBuffer& buffer, const GRIScene& stripScene) override {
    const gr_int32 firstRow = stripScene.getUpperLeftIntRow();
    const gr_int32 numRows = stripScene.getNumRows();
    note("strip " + std::to_string(firstRow) + "+" + std::to_string(numRows));
    if (m_failures.contains("strip") && firstRow <= m_failingRow &&
        m_failingRow < firstRow + numRows) {
      return m_failures["strip"];
    }
    for (gr_uint16 band = 0; band < getNumBands(); ++band) {
      fillBand(buffer, stripScene, band);
    }
    return GR_STATUS_OK;
  }

  GR_STATUS decodeEnd() override {
    note("end");
    m_isDecoding = false;
    return m_failures.contains("end") ? m_failures["end"] : GR_STATUS_OK;
  }

  using GRIImageStage::fillBackground;

 private:
  void note(const std::string& call) const {
    if (m_log != nullptr) m_log->push_back(call);
  }

  void fillBand(const GRISceneBuffer& buffer, const GRIScene& scene, gr_uint16 band) const {
    gri_visitType(
        getPixelProps().getSample(band).getDataType(),
        [&](auto tag) {
          using T = typename decltype(tag)::Type;
          for (gr_int32 row = 0; row < scene.getNumRows(); ++row) {
            for (gr_int32 col = 0; col < scene.getNumCols(); ++col) {
              const T value = valueAt<T>(scene.getUpperLeftIntCol() + col,
                                         scene.getUpperLeftIntRow() + row, band);
              std::memcpy(buffer.getSampleInWindow(static_cast<gr_uint32>(col),
                                                   static_cast<gr_uint32>(row), band),
                          &value, sizeof(value));
            }
          }
          return 0;
        },
        0);
  }

  GRICallLog* m_log = nullptr;
  std::map<std::string, GR_STATUS> m_failures;
  gr_int32 m_failingRow = 0;
  bool m_isDecoding = false;
};
