/// @file
/// For tests: a picture without a file behind it, as a handle of the C interface.
#pragma once

#include <gtest/gtest.h>

#include <array>
#include <cstring>

#include "gr_lib_utils/include/gr_memory.h"
#include "gr_lib_utils/include/gr_status.h"
#include "gri_rdk_cdll.h"
#include "gri_rdk_cdll/gri_handles.h"
#include "image/gri_geoCoord.h"
#include "image/gri_imageReader.h"
#include "image/gri_pixel.h"
#include "image/gri_sceneBuffer.h"
#include "metadata/gri_metadataDatabase.h"

/// 100 columns, 70 rows, RGB of 16 bits, down to a quarter of its size, in strips of 16 rows.
class FakeStage : public GRIImageReader {
 public:
  static constexpr gr_uint32 WIDTH = 100;
  static constexpr gr_uint32 HEIGHT = 70;
  static constexpr gr_uint16 BANDS = 3;

  /// A handle on a new stage, for gric_closeImage.
  template <typename Stage = FakeStage>
  static gric_image open() {
    auto stage = gr_makeUnique<Stage>();
    EXPECT_EQ(stage->initialize(), GR_STATUS_OK);
    return gri_toHandle(stage.release());
  }
  static FakeStage& of(gric_image image) { return static_cast<FakeStage&>(gri_stageOf(image)); }

  /// What the decoder gives for a pixel.
  static gr_uint16 sampleAt(gr_uint32 band, gr_uint32 column, gr_uint32 row) {
    return static_cast<gr_uint16>(band * 10000 + row * 100 + column);
  }

  FakeStage() { ++s_alive; }
  ~FakeStage() override { --s_alive; }

  gr_int64 getSourceFileSize() const override { return 0; }
  GR_STATUS decodeBegin(const GRIScene&) override {
    ++begins;
    return GR_STATUS_OK;
  }
  GR_STATUS decodeStrip(GRISceneBuffer& buffer, const GRIScene& stripScene) override {
    if (!GR_SUCCESS(stripStatus)) return stripStatus;
    for (gr_uint16 band = 0; band < BANDS; ++band) {
      for (gr_uint32 row = 0; row < buffer.getWindowNumRows(); ++row) {
        for (gr_uint32 col = 0; col < buffer.getWindowNumCols(); ++col) {
          const gr_uint16 sample =
              sampleAt(band, static_cast<gr_uint32>(stripScene.getUpperLeftIntCol()) + col,
                       static_cast<gr_uint32>(stripScene.getUpperLeftIntRow()) + row);
          std::memcpy(buffer.getSampleInWindow(col, row, band), &sample, sizeof(sample));
        }
      }
    }
    return GR_STATUS_OK;
  }
  GR_STATUS decodeEnd() override {
    ++ends;
    return GR_STATUS_OK;
  }

  static inline int s_alive = 0;
  int begins = 0;
  int ends = 0;
  GR_STATUS stripStatus = GR_STATUS_OK;

 private:
  GR_STATUS initialize() {
    setDimensions(WIDTH, HEIGHT);
    setMagnificationRange(0.25, 1.0);
    GR_RETURN_IF_FAILED(setStripHeight(16));
    GR_RETURN_IF_FAILED(setDefaultGeoCoord(*this));
    GR_RETURN_IF_FAILED(setPixelProps(GRIPixel(GRI_COLORSPACE_RGB, BANDS, GRI_DATATYPE_UINT16)));
    const char* const name = "a picture";
    const std::array<gr_uint32, 1> scalar = {1};
    const std::array<gr_uint32, 2> matrix = {2, 3};
    const std::array<double, 6> values = {1, 2, 3, 4, 5, 6};
    GR_RETURN_IF_FAILED(editMetadata()->add(
        GRIMetadataRecord("FAKE::NAME", GRI_METADATA_DATATYPE_ASCII, 1, scalar.data(), &name)));
    return editMetadata()->add(GRIMetadataRecord("FAKE::MATRIX", GRI_METADATA_DATATYPE_FLOAT64, 2,
                                                 matrix.data(), values.data()));
  }
};
