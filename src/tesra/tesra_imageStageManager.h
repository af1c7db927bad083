/// @file
/// TesraImageStageManager, a Tesra file of either generation and the images in it.
#pragma once

#include <memory>

#include "gr_lib_utils/include/gr_contentKeys.h"
#include "gr_lib_utils/include/gr_fileSpec.h"
#include "gr_lib_utils/include/gr_ioStream.h"
#include "gr_lib_utils/include/gr_memory.h"
#include "image/gri_imageStageManager.h"
#include "image/tesra_imageReaderInterface.h"

class TG3FileSimpleContainer;

/// Looks at the first bytes of a file, tells which generation wrote it and how many images it
/// holds, and makes a reader for each of them.
///
/// The readers use the stream and the container of the manager, which must outlive them. Keys that
/// they prove for a locked image stay with the manager: later readers of it don't ask again.
class TesraImageStageManager : public GRIImageStageManager {
 public:
  TesraImageStageManager();
  ~TesraImageStageManager() override;

  /// Opens a file, which stays open as long as the manager lives.
  /// @return 0; 50613 (with the path for the message) when it can't be opened; else as below
  [[nodiscard]] GR_STATUS initialize(const GRFileSpec& path, TesraMemoryUsage memoryUsage,
                                     TesraStreamUsage streamUsage);
  /// @param stream  stays the caller's and must outlive the manager. One that is open stays open;
  ///                one that is closed is opened and closed around each use.
  /// @return 0; 8 for memory; 50613 when the stream can't be opened; 50607 when it is no Tesra
  ///         file; 50612 for a container with an image of unknown kind; else the status of the
  ///         container or of an image's header (2001, 2005, 2006, 2010, 2012)
  [[nodiscard]] GR_STATUS initialize(GRIOStreamInf& stream, TesraMemoryUsage memoryUsage,
                                     TesraStreamUsage streamUsage);

  /// Makes the reader of an image.
  /// @param stage  receives it with one reference, the caller's; null on failure
  /// @return 0; 3 for a number at or past getNumImages(); 8 for memory; 50607 for an image of
  ///         generation 2 that isn't all in the file; else the reader's status
  [[nodiscard]] GR_STATUS createImageStage(gr_uint32 imageNumber, GRIImageStage*& stage) override;

  /// What is known of an image; levels and lock are those of its reader, once it was made.
  enum class Kind : gr_uint32 { TG2 = 1, TG3 = 2 };
  struct Image {
    gr_uint32 imageId = 0;
    Kind kind = Kind::TG3;
    gr_uint8 numLevels = 0;
    bool locked = false;
    GRContentKeys contentKeys;  ///< those that its readers have proved, for the next ones
  };
  const GRArray<Image>& getImages() const { return m_images; }

  /// The four version bytes of the file.
  struct Version {
    gr_uint8 major = 0;  ///< the generation
    gr_uint8 minor = 0;
    gr_uint8 tweak = 0;
    gr_int8 letter = 0;
  };
  const Version& getVersion() const { return m_version; }
  /// What the readers are made with, which may be less than was asked for.
  TesraMemoryUsage getMemoryUsage() const { return m_memoryUsage; }

  /// Who the readers ask for a password: those that are made from now on.
  void setPasswordDelegate(TesraPasswordDelegate* delegate) { m_passwordDelegate = delegate; }

 private:
  GR_STATUS readImages();
  GR_STATUS readVersion();
  GR_STATUS readContainer();
  GR_STATUS chooseMemoryUsage();
  GR_STATUS createTG2Reader(Image& image, GRIImageStage*& stage);
  GR_STATUS createTG3Reader(Image& image, GRIImageStage*& stage);

  std::unique_ptr<GRIOStreamInf> m_ownedStream;  // when we opened the file ourselves
  GRIOStreamInf* m_stream = nullptr;
  std::unique_ptr<TG3FileSimpleContainer> m_container;  // null for generations 1 and 2
  Version m_version;
  GRArray<Image> m_images;
  TesraMemoryUsage m_memoryUsage = TESRA_MEMORY_DEFAULT;
  TesraStreamUsage m_streamUsage = TESRA_STREAM_CLOSE;
  TesraPasswordDelegate* m_passwordDelegate = nullptr;
};
