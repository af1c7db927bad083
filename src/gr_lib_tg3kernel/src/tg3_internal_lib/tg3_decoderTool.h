/// @file
/// TG3DecoderTool, which decodes scenes of one image strip by strip.
#pragma once

#include <memory>

#include "gr_lib_tg3kernel/src/tg3_internal_lib/tg3_decodeBase.h"
#include "gr_lib_tg3kernel/src/tg3_internal_lib/tg3_imageSource.h"
#include "gr_lib_tg3kernel/src/tg3_internal_lib/tg3_pipelinedWaveletDecoder.h"
#include "gr_lib_tg3kernel/src/tg3_plane_lib/tg3_planeStoreClient.h"
#include "image/gri_imageReader.h"

/// An image stage that owns the wavelet pipeline. It knows the samples alone: metadata and
/// georeference belong to the reader in front of it.
class TG3DecoderTool : public GRIImageReader {
 public:
  static constexpr gr_uint32 STRIP_HEIGHT = 16;  // rows, unless the reader sets another

  TG3DecoderTool() = default;

  /// @param imageSource  initialized; the caller's, and it outlives the tool
  /// @param client       the image's planes; the same
  /// @return 0; 8 for memory; 50019 for a colour space and 50001 for a data type that isn't decoded
  [[nodiscard]] GR_STATUS initialize(const TG3ImageSource& imageSource,
                                     TG3PlaneStoreClient& client);

  /// Not known here: -1.
  gr_int64 getSourceFileSize() const override { return -1; }

  /// @return 0; 2009 for a scene that leaves the image, or an image that has fewer levels; 2005 for
  ///         a wavelet, boundary rule or colour transform that isn't decoded; 2012 for memory, or
  ///         for an image of less than 3 columns or rows that isn't synthesized any more
  GR_STATUS decodeBegin(const GRIScene& scene) override;
  /// Decodes the next strip: getStripHeight() rows, or what is left.
  /// @param buffer  its window has the strip's size
  /// @return 0; 50003 past the last strip; 50027 for a window of another size; else the status of
  ///         the coded data (2001, 2010, 2011, 2012), and then the decode has ended
  GR_STATUS decodeStrip(GRISceneBuffer& buffer, const GRIScene& stripScene) override;
  GR_STATUS decodeEnd() override;

 protected:
  TG3PlaneStoreClient* getClient() const { return m_client; }

 private:
  GR_STATUS setPixelProperties(const TG3ImageInfo& info);
  GR_STATUS createDecodeBase();
  GR_STATUS decodeRows(GRISceneBuffer& buffer, gr_uint32 numRows);

  const TG3ImageSource* m_imageSource = nullptr;
  TG3PlaneStoreClient* m_client = nullptr;
  std::unique_ptr<DecodeBase> m_decodeBase;  // outlives the decodes, and the decoder below
  std::unique_ptr<PipelinedWaveletDecoder> m_waveletDecoder;  // of the decode that is running
  gr_uint32 m_columns = 0;                                    // of the scene
  gr_uint32 m_rows = 0;                                       // of the scene
  gr_uint32 m_rowsPerStrip = 0;
  gr_uint32 m_numStrips = 0;
  gr_uint32 m_currentStripNumber = 0;
};

/// The tool for an image in a file, which is open only while an operation runs, unless it is to
/// stay open.
class TG3FileSimpleDecoderTool : public TG3DecoderTool {
 public:
  TG3FileSimpleDecoderTool() = default;

  GR_STATUS decodeBegin(const GRIScene& scene) override;
  GR_STATUS decodeStrip(GRISceneBuffer& buffer, const GRIScene& stripScene) override;
  GR_STATUS decodeEnd() override;

 private:
  GR_STATUS closeAfter(GR_STATUS status);
};
