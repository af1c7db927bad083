#include "tesra/tesra_imageStageManager.h"

#include <cstring>

#include "gr_lib_tg2kernel/src/decode/tg2_imageReader.h"
#include "gr_lib_tg3kernel/src/tg3_db_lib/tg3_fileSimpleContainer.h"
#include "gr_lib_tg3kernel/src/tg3_internal_lib/tg3_singleImageReader.h"
#include "gr_lib_utils/include/gr_checkedMath.h"
#include "gr_lib_utils/include/gr_ioStreamOpener.h"
#include "gr_lib_utils/include/gr_ioStreamUtils.h"
#include "gr_lib_utils/include/gr_smartPointer.h"
#include "gr_lib_utils/include/gr_status.h"
#include "gr_lib_utils/include/gr_statusData.h"

namespace {

constexpr gr_uint8 MAGIC[4] = {'t', 's', 'r', 'a'};
// With more bytes of samples than this the readers of a container economise on memory.
constexpr gr_uint64 MOST_BYTES_FOR_DEFAULT = 0x10000000;

// Bytes of all samples of an image; as many as fit 64 bits.
gr_uint64 bytesOfSamples(const TG3ImageInfo& info) {
  constexpr gr_uint64 BITS_PER_BYTE = 8;
  const gr_uint64 samples =
      gr_saturatingMultiply(gr_uint64{info.width} * info.height, info.numComponents);
  return gr_saturatingMultiply(samples, gr_ceilDivide(info.domainBits, BITS_PER_BYTE));
}

}  // namespace

TesraImageStageManager::TesraImageStageManager() = default;
TesraImageStageManager::~TesraImageStageManager() = default;

GR_STATUS TesraImageStageManager::initialize(const GRFileSpec& path, TesraMemoryUsage memoryUsage,
                                             TesraStreamUsage streamUsage) {
  m_ownedStream = GRIOStreamUtils::openReadStream(path);
  if (m_ownedStream == nullptr) {
    GRUtilStatusData::pushBegin(TESRA_STATUS_CANNOT_OPEN);
    GRUtilStatusData::pushFileSpec(path);
    GRUtilStatusData::pushEnd();
    return TESRA_STATUS_CANNOT_OPEN;
  }
  return initialize(*m_ownedStream, memoryUsage, streamUsage);
}

GR_STATUS TesraImageStageManager::initialize(GRIOStreamInf& stream, TesraMemoryUsage memoryUsage,
                                             TesraStreamUsage streamUsage) {
  m_stream = &stream;
  m_memoryUsage = memoryUsage;
  m_streamUsage = streamUsage;
  GRIOStreamOpener opener(stream, streamUsage == TESRA_STREAM_KEEP_OPEN);
  if (!GR_SUCCESS(opener.open())) return TESRA_STATUS_CANNOT_OPEN;
  return opener.close(readImages());
}

GR_STATUS TesraImageStageManager::readImages() {
  GR_RETURN_IF_FAILED(readVersion());
  switch (m_version.major) {
    case 1:
    case 2:
      if (!GR_SUCCESS(m_images.allocate(1))) return GR_STATUS_NO_MEMORY;
      m_images[0].kind = Kind::TG2;
      setNumImages(1);
      return GR_STATUS_OK;
    case 3:
      GR_RETURN_IF_FAILED(readContainer());
      return chooseMemoryUsage();
    default:
      return TESRA_STATUS_INVALID_FORMAT;
  }
}

GR_STATUS TesraImageStageManager::readVersion() {
  gr_uint8 bytes[8] = {};
  if (!GR_SUCCESS(m_stream->seek(0, GRIO_SEEK_BEGIN)) ||
      m_stream->read(bytes, sizeof(bytes)) != sizeof(bytes) ||
      std::memcmp(bytes, MAGIC, sizeof(MAGIC)) != 0 ||
      !GR_SUCCESS(m_stream->seek(0, GRIO_SEEK_BEGIN))) {
    return TESRA_STATUS_INVALID_FORMAT;
  }
  m_version = {.major = bytes[4],
               .minor = bytes[5],
               .tweak = bytes[6],
               .letter = static_cast<gr_int8>(bytes[7])};
  return GR_STATUS_OK;
}

GR_STATUS TesraImageStageManager::readContainer() {
  m_container =
      gr_makeUnique<TG3FileSimpleContainer>(*m_stream, m_streamUsage == TESRA_STREAM_KEEP_OPEN);
  if (m_container == nullptr) return GR_STATUS_NO_MEMORY;
  GR_RETURN_IF_FAILED(m_container->initialize());
  if (!GR_SUCCESS(m_images.allocate(m_container->getNumImages()))) return GR_STATUS_NO_MEMORY;
  size_t number = 0;
  for (const TG3ImageDesc& desc : m_container->getImages()) {
    Image& image = m_images[number++];
    image.imageId = desc.image;
    switch (desc.kind) {
      case TG3_IMAGE_TG3:
        image.kind = Kind::TG3;
        break;
      case TG3_IMAGE_TG2:
        image.kind = Kind::TG2;
        break;
      default:
        return TESRA_STATUS_UNKNOWN_TILE_FORMAT;
    }
  }
  setNumImages(static_cast<gr_uint32>(number));
  return GR_STATUS_OK;
}

// Images of the older generation count nothing: their size isn't known before they are opened.
GR_STATUS TesraImageStageManager::chooseMemoryUsage() {
  if (m_memoryUsage != TESRA_MEMORY_DEFAULT) return GR_STATUS_OK;
  gr_uint64 total = 0;
  for (const Image& image : m_images) {
    if (image.kind != Kind::TG3) continue;
    const TG3HeaderPacket* header = nullptr;
    GR_RETURN_IF_FAILED(m_container->getHeader(image.imageId, header));
    total = gr_saturatingAdd(total, bytesOfSamples(header->getImageInfo()));
  }
  if (total > MOST_BYTES_FOR_DEFAULT) m_memoryUsage = TESRA_MEMORY_SMALL;
  return GR_STATUS_OK;
}

GR_STATUS TesraImageStageManager::createImageStage(gr_uint32 imageNumber, GRIImageStage*& stage) {
  stage = nullptr;
  if (imageNumber >= m_images.size()) return GR_STATUS_OUT_OF_RANGE;
  Image& image = m_images[imageNumber];
  switch (image.kind) {
    case Kind::TG3:
      return createTG3Reader(image, stage);
    case Kind::TG2:
      return createTG2Reader(image, stage);
  }
  return TESRA_STATUS_UNKNOWN_TILE_FORMAT;
}

GR_STATUS TesraImageStageManager::createTG2Reader(Image& image, GRIImageStage*& stage) {
  GRUtilSmartPointer<TG2ImageReader> reader(gr_makeUnique<TG2ImageReader>().release());
  if (!reader) return GR_STATUS_NO_MEMORY;
  if (m_container == nullptr) {
    GR_RETURN_IF_FAILED(reader->initialize(*m_stream, nullptr, m_memoryUsage, m_streamUsage));
  } else {
    std::unique_ptr<GRIOStreamInf> stream;
    GR_RETURN_IF_FAILED(m_container->makeTG2Stream(image.imageId, stream));
    GR_RETURN_IF_FAILED(
        reader->initialize(std::move(stream), nullptr, m_memoryUsage, m_streamUsage));
  }
  reader->setPasswordDelegate(m_passwordDelegate);
  reader->setContentKeys(&image.contentKeys);
  image.numLevels = reader->getNumLevels();
  image.locked = reader->isLocked();
  stage = reader.detach();
  return GR_STATUS_OK;
}

GR_STATUS TesraImageStageManager::createTG3Reader(Image& image, GRIImageStage*& stage) {
  GRUtilSmartPointer<TG3SingleImageReader> reader(gr_makeUnique<TG3SingleImageReader>().release());
  if (!reader) return GR_STATUS_NO_MEMORY;
  GR_RETURN_IF_FAILED(reader->initialize(*m_container, image.imageId, nullptr, m_memoryUsage));
  reader->setPasswordDelegate(m_passwordDelegate);
  reader->setContentKeys(&image.contentKeys);
  image.numLevels = reader->getNumLevels();
  image.locked = reader->isLocked();
  stage = reader.detach();
  return GR_STATUS_OK;
}
