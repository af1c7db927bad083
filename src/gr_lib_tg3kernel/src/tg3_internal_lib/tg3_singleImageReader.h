/// @file
/// TG3SingleImageReader, the image stage of one image of a container.
#pragma once

#include <memory>

#include "gr_lib_tg3kernel/src/tg3_internal_lib/tg3_decoderTool.h"
#include "gr_lib_tg3kernel/src/tg3_internal_lib/tg3_imageSource.h"
#include "gr_lib_tg3kernel/src/tg3_plane_lib/tg3_filePlaneSource.h"
#include "gr_lib_utils/include/gr_ioStream.h"
#include "gr_lib_utils/include/gr_smartPointer.h"
#include "image/gri_geoImageReader.h"
#include "image/tesra_imageReaderInterface.h"

class TG3FileSimpleContainer;

/// One image of a TG3 container: its properties and metadata come from the container, its samples
/// from a decoder tool, which is made at the first decode.
class TG3SingleImageReader : public GRIGeoImageReader, public TesraImageReaderInterface {
 public:
  static constexpr gr_uint32 STRIP_HEIGHT = 64;  // rows

  TG3SingleImageReader() = default;

  /// @param container    initialized; stays the caller's and must outlive the reader. Whether it
  ///                     leaves its stream open holds for the reader's own stream too.
  /// @param imageNumber  the image's number in the container
  /// @param worldStream  an open world file or null; the caller's, and only used in this call
  /// @return 0; 8 or 2012 for memory; 2010 when the container has no such image, or it twice; 50601
  ///         or 50602 for a colour space or data type that images don't have; 50505, 50507 or 50028
  ///         for bad metadata; else the status of a packet (2001, 2005, 2006), of the stream or of
  ///         the world file
  [[nodiscard]] GR_STATUS initialize(TG3FileSimpleContainer& container, gr_uint32 imageNumber,
                                     GRIOStreamInf* worldStream, TesraMemoryUsage memoryUsage);

  /// Bytes of the container's stream, or -1.
  gr_int64 getSourceFileSize() const override;

  /// The first one reads the index of the coded data.
  /// @return 0; 2005 for a lock that can't be one; 50001 for a data type that isn't decoded; 2010
  ///         for an image without coded data, or with it twice; else the status of the index or of
  ///         TG3DecoderTool::decodeBegin
  GR_STATUS decodeBegin(const GRIScene& scene) override;
  GR_STATUS decodeStrip(GRISceneBuffer& buffer, const GRIScene& stripScene) override;
  GR_STATUS decodeEnd() override;

  /// Keys that nobody had are asked for again.
  void setPasswordDelegate(TesraPasswordDelegate* delegate) override;

  gr_uint8 getNumLevels() const override;
  bool isLocked() const override;
  void getVersion(gr_uint8& major, gr_uint8& minor, gr_uint8& tweak,
                  gr_int8& letter) const override;

 private:
  GR_STATUS readMetadata();
  GR_STATUS setPixelProperties();
  GR_STATUS setSpecialPixels();
  GR_STATUS setLookupTable();
  GR_STATUS setGeoProperties(GRIOStreamInf* worldStream);
  GR_STATUS createTool();

  TG3FileSimpleContainer* m_container = nullptr;
  TesraMemoryUsage m_memoryUsage = TESRA_MEMORY_DEFAULT;
  std::unique_ptr<TG3ImageSource> m_imageSource;
  std::unique_ptr<TG3FileSimplePlaneSource> m_planeSource;
  GRUtilSmartPointer<TG3DecoderTool> m_tool;  // uses both sources, so it goes first
};
