#include "tesra/tesra_imageReader.h"

#include <algorithm>

#include "filters/gri_mosaicFilter.h"
#include "gr_lib_utils/include/gr_exception.h"
#include "gr_lib_utils/include/gr_fileUtils.h"
#include "gr_lib_utils/include/gr_ioStreamUtils.h"
#include "gr_lib_utils/include/gr_memory.h"
#include "gr_lib_utils/include/gr_status.h"
#include "image/gri_geoCoord.h"

namespace {

// Tells the readers at the end of a chain of stages, as far as they are there.
void handOver(GRIImageStage* stage, TesraPasswordDelegate* delegate) {
  if (auto* reader = dynamic_cast<TesraImageReaderInterface*>(stage)) {
    reader->setPasswordDelegate(delegate);
  } else if (const auto* mosaic = dynamic_cast<GRIMosaicFilter*>(stage)) {
    for (gr_uint32 i = 0; i < mosaic->getNumOpenTiles(); ++i) {
      handOver(&mosaic->getOpenTile(i), delegate);
    }
  } else if (const auto* filter = dynamic_cast<GRIImageFilter*>(stage)) {
    handOver(filter->getPreviousStage(), delegate);
  }
}

}  // namespace

// The stage uses the manager, so it goes first.
TesraImageReader::~TesraImageReader() { GRIImageFilter::initialize(nullptr); }

GR_STATUS TesraImageReader::makeManager() {
  m_manager =
      GRUtilSmartPointer<TesraImageStageManager>(gr_makeUnique<TesraImageStageManager>().release());
  if (!m_manager) return GR_STATUS_NO_MEMORY;
  m_manager->setPasswordDelegate(getPasswordDelegate());
  return GR_STATUS_OK;
}

GR_STATUS TesraImageReader::initialize(const GRFileSpec& path, bool useWorldFile,
                                       TesraMemoryUsage memoryUsage, TesraStreamUsage streamUsage) {
  try {
    GR_RETURN_IF_FAILED(makeManager());
    GR_RETURN_IF_FAILED(m_manager->initialize(path, memoryUsage, streamUsage));
    std::unique_ptr<GRIOStreamInf> worldStream;
    if (useWorldFile) {
      GRFileSpec worldFile;
      GR_RETURN_IF_FAILED(GRIGeoCoord::getWorldFileName(path, worldFile));
      if (GRFileUtils::fileExists(worldFile)) {
        worldStream = GRIOStreamUtils::openReadStream(worldFile);
      }
    }
    return finish(worldStream.get());
  } catch (const GRUtilException& exception) {
    return exception.getStatus();
  }
}

GR_STATUS TesraImageReader::initialize(GRIOStreamInf& stream, GRIOStreamInf* worldStream,
                                       TesraMemoryUsage memoryUsage, TesraStreamUsage streamUsage) {
  try {
    GR_RETURN_IF_FAILED(makeManager());
    GR_RETURN_IF_FAILED(m_manager->initialize(stream, memoryUsage, streamUsage));
    return finish(worldStream);
  } catch (const GRUtilException& exception) {
    return exception.getStatus();
  }
}

GR_STATUS TesraImageReader::finish(GRIOStreamInf* worldStream) {
  GRIImageStage* stage = nullptr;
  GR_RETURN_IF_FAILED(m_manager->getNumImages() < 2 ? m_manager->createImageStage(0, stage)
                                                    : createMosaic(stage));
  GRIImageFilter::initialize(stage);
  GR_RETURN_IF_FAILED(setStripHeight(STRIP_HEIGHT));
  for (const TesraImageStageManager::Image& image : m_manager->getImages()) {
    m_numLevels = std::max(m_numLevels, image.numLevels);
    m_locked = m_locked || image.locked;
  }
  if (worldStream != nullptr) applyWorldFile(*worldStream);
  return GR_STATUS_OK;
}

/// Shows the images side by side. Opens all of them once, one after the other; those that a scene
/// has shown stay open only where memory may be large.
GR_STATUS TesraImageReader::createMosaic(GRIImageStage*& stage) {
  GRUtilSmartPointer<GRIMosaicFilter> mosaic(gr_makeUnique<GRIMosaicFilter>().release());
  if (!mosaic) return GR_STATUS_NO_MEMORY;
  mosaic->setReleaseClosedTiles(m_manager->getMemoryUsage() != TESRA_MEMORY_LARGE);
  GR_RETURN_IF_FAILED(mosaic->initialize(*m_manager, nullptr, true, true));
  stage = mosaic.detach();
  return GR_STATUS_OK;
}

// A bad world file leaves the position as it was, and the image opens all the same.
void TesraImageReader::applyWorldFile(GRIOStreamInf& worldStream) {
  GRIGeoCoord geoCoord(getGeoCoord());
  if (GR_SUCCESS(geoCoord.readWorldFile(worldStream))) {
    static_cast<void>(setGeoCoord(geoCoord));
  }
}

void TesraImageReader::getVersion(gr_uint8& major, gr_uint8& minor, gr_uint8& tweak,
                                  gr_int8& letter) const {
  const TesraImageStageManager::Version& version = m_manager->getVersion();
  major = version.major;
  minor = version.minor;
  tweak = version.tweak;
  letter = version.letter;
}

GR_STATUS TesraImageReader::setPassword(const char* password) {
  std::unique_ptr<TesraPasswordDelegate> delegate = TesraSimplePasswordDelegate::create(password);
  if (delegate == nullptr) return GR_STATUS_NO_MEMORY;
  setPasswordDelegate(delegate.get());
  m_passwordOwner = std::move(delegate);
  return GR_STATUS_OK;
}

void TesraImageReader::setPasswordDelegate(TesraPasswordDelegate* delegate) {
  TesraImageReaderInterface::setPasswordDelegate(delegate);
  if (m_manager) m_manager->setPasswordDelegate(delegate);
  handOver(getPreviousStage(), delegate);
}
