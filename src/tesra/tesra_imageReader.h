/// @file
/// TesraImageReader, the front of every open Tesra image.
#pragma once

#include <memory>

#include "gr_lib_utils/include/gr_fileSpec.h"
#include "gr_lib_utils/include/gr_ioStream.h"
#include "gr_lib_utils/include/gr_smartPointer.h"
#include "image/gri_imageFilter.h"
#include "image/tesra_imageReaderInterface.h"
#include "tesra/tesra_imageStageManager.h"

/// A Tesra file of either generation as one image: a filter over the reader of its image, or over
/// the mosaic of its images.
class TesraImageReader : public GRIImageFilter, public TesraImageReaderInterface {
 public:
  static constexpr gr_uint32 STRIP_HEIGHT = 64;  // rows, with which every decode starts

  TesraImageReader() = default;
  ~TesraImageReader() override;

  /// Opens a file, which stays open as long as the reader lives.
  /// @param useWorldFile  whether a world file beside it gives the position; one that is absent or
  ///                      malformed changes nothing
  /// @return 0; 8 for memory; 50613 when the file can't be opened; 3 for a container without an
  ///         image; else the status of TesraImageStageManager, or of GRIMosaicFilter for several
  [[nodiscard]] GR_STATUS initialize(const GRFileSpec& path, bool useWorldFile,
                                     TesraMemoryUsage memoryUsage, TesraStreamUsage streamUsage);
  /// @param stream       as for TesraImageStageManager::initialize
  /// @param worldStream  an open world file or null; the caller's, and only used in this call
  [[nodiscard]] GR_STATUS initialize(GRIOStreamInf& stream, GRIOStreamInf* worldStream,
                                     TesraMemoryUsage memoryUsage, TesraStreamUsage streamUsage);

  gr_uint8 getNumLevels() const override { return m_numLevels; }  ///< the most of any image
  bool isLocked() const override { return m_locked; }             ///< whether any image is
  void getVersion(gr_uint8& major, gr_uint8& minor, gr_uint8& tweak,
                  gr_int8& letter) const override;

  /// Makes `password` what locked parts are asked with.
  /// @return 0; 8 for memory, and then the earlier one stays
  [[nodiscard]] GR_STATUS setPassword(const char* password);
  void setPasswordDelegate(TesraPasswordDelegate* delegate) override;

 private:
  GR_STATUS makeManager();
  GR_STATUS finish(GRIOStreamInf* worldStream);
  GR_STATUS createMosaic(GRIImageStage*& stage);
  void applyWorldFile(GRIOStreamInf& worldStream);

  GRUtilSmartPointer<TesraImageStageManager> m_manager;
  std::unique_ptr<TesraPasswordDelegate> m_passwordOwner;  // of setPassword
  gr_uint8 m_numLevels = 0;
  bool m_locked = false;
};
