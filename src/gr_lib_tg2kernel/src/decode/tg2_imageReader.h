/// @file
/// TG2ImageReader, the image stage of a file of generation 2.
#pragma once

#include <memory>

#include "gr_lib_tg2kernel/src/decode/tg2_decoder.h"
#include "gr_lib_tg2kernel/src/decode/tg2_fileDBInfo.h"
#include "gr_lib_utils/include/gr_encryption.h"
#include "gr_lib_utils/include/gr_ioStream.h"
#include "image/gri_geoImageReader.h"
#include "image/tesra_imageReaderInterface.h"

/// One image: its properties come from the header and the records of metadata, its samples from a
/// decoder, which is made at the first decode.
class TG2ImageReader : public GRIGeoImageReader, public TesraImageReaderInterface {
 public:
  TG2ImageReader() = default;

  /// @param stream       stays the caller's and must outlive the reader. One that is open stays
  ///                     open; one that is closed is opened and closed around each use.
  /// @param worldStream  an open world file or null; the caller's, and only used in this call
  /// @return 0; 8 for memory; 50605 when the metadata can't be reached; 50505 or 50507 for bad
  ///         records; 50601 for a number of bands other than 1, 3 or 4, or a colour space of
  ///         another number; 50602 for a data type that isn't decoded; the status of
  ///         TG2FileDBInfo::initialize, of the stream or of the world file
  [[nodiscard]] GR_STATUS initialize(GRIOStreamInf& stream, GRIOStreamInf* worldStream,
                                     TesraMemoryUsage memoryUsage, TesraStreamUsage streamUsage);
  /// The same with a stream that becomes the reader's.
  [[nodiscard]] GR_STATUS initialize(std::unique_ptr<GRIOStreamInf> stream,
                                     GRIOStreamInf* worldStream, TesraMemoryUsage memoryUsage,
                                     TesraStreamUsage streamUsage);

  /// @return 0; 3 for a magnification out of the range; 8117 when a side passes 2^31
  GR_STATUS getDimsAtMag(double mag, gr_uint32& width, gr_uint32& height) const override;
  /// Bytes of the stream, or -1.
  gr_int64 getSourceFileSize() const override;

  /// @return 0; the status of tesraUnlock for a locked image; 8 for memory; 8117 for a scene that
  ///         isn't in the image
  GR_STATUS decodeBegin(const GRIScene& scene) override;
  GR_STATUS decodeStrip(GRISceneBuffer& buffer, const GRIScene& stripScene) override;
  GR_STATUS decodeEnd() override;

  gr_uint8 getNumLevels() const override;
  bool isLocked() const override { return m_isLocked; }
  void getVersion(gr_uint8& major, gr_uint8& minor, gr_uint8& tweak,
                  gr_int8& letter) const override;

 private:
  GR_STATUS open(GRIOStreamInf* worldStream);
  GR_STATUS readMetadata();
  GR_STATUS readIndex();
  GR_STATUS setProperties();
  GR_STATUS setPixelProperties();
  GR_STATUS setGeoProperties();
  GR_STATUS unlock();

  std::unique_ptr<GRIOStreamInf> m_ownedStream;  // when it is ours
  GRIOStreamInf* m_stream = nullptr;
  TesraMemoryUsage m_memoryUsage = TESRA_MEMORY_DEFAULT;
  TesraStreamUsage m_streamUsage = TESRA_STREAM_CLOSE;
  bool m_addsNoise = true;
  bool m_isLocked = false;
  Encryption m_encryption;
  std::unique_ptr<TG2FileDBInfo> m_info;  // uses the stream and the cipher
  std::unique_ptr<TG2Decoder> m_decoder;  // uses the index
};
