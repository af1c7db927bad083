#include "gr_lib_tg2kernel/src/decode/tg2_imageReader.h"

#include <algorithm>
#include <cmath>
#include <limits>

#include "gr_lib_tg2kernel/src/decode/tesra_encrypt.h"
#include "gr_lib_tg2kernel/src/decode/tg2_headerIO.h"
#include "gr_lib_tg2kernel/src/decode/tg2_status.h"
#include "gr_lib_utils/include/gr_exception.h"
#include "gr_lib_utils/include/gr_fieldReader.h"
#include "gr_lib_utils/include/gr_ioStreamOpener.h"
#include "gr_lib_utils/include/gr_ioStreamUtils.h"
#include "gr_lib_utils/include/gr_memory.h"
#include "gr_lib_utils/include/gr_status.h"
#include "image/gri_geoCoord.h"
#include "image/gri_level.h"
#include "image/gri_pixel.h"
#include "image/gri_scene.h"
#include "metadata/gri_metadataAcc.h"
#include "metadata/gri_metadataClassicalReader.h"
#include "metadata/gri_metadataDatabase.h"

namespace {

constexpr gr_uint16 MARKER_METADATA = 0xFFD1;
constexpr int LARGEST_MAGNIFICATION_EXPONENT = 20;

// The colour space of an image that doesn't name it.
GRIColorSpace colorSpaceOf(gr_uint32 numBands) {
  switch (numBands) {
    case 1:
      return GRI_COLORSPACE_GRAYSCALE;
    case 3:
      return GRI_COLORSPACE_RGB;
    default:
      return GRI_COLORSPACE_CMYK;
  }
}

// Decoders write samples of these types.
bool isDecoded(GRIDataType dataType) {
  return dataType == GRI_DATATYPE_UINT8 || dataType == GRI_DATATYPE_UINT16 ||
         dataType == GRI_DATATYPE_FLOAT32;
}

// The pixels of a scene; false where they aren't pixels of any image.
bool rectOfScene(const GRIScene& scene, TG2Rect& rect) {
  rect.x0 = scene.getUpperLeftIntCol();
  rect.y0 = scene.getUpperLeftIntRow();
  const gr_int64 x1 = gr_int64{rect.x0} + scene.getNumCols() - 1;
  const gr_int64 y1 = gr_int64{rect.y0} + scene.getNumRows() - 1;
  constexpr gr_int64 LAST = std::numeric_limits<gr_int32>::max();
  if (x1 > LAST || y1 > LAST) return false;
  rect.x1 = static_cast<gr_int32>(x1);
  rect.y1 = static_cast<gr_int32>(y1);
  return true;
}

}  // namespace

GR_STATUS TG2ImageReader::initialize(std::unique_ptr<GRIOStreamInf> stream,
                                     GRIOStreamInf* worldStream, TesraMemoryUsage memoryUsage,
                                     TesraStreamUsage streamUsage) {
  m_ownedStream = std::move(stream);
  return initialize(*m_ownedStream, worldStream, memoryUsage, streamUsage);
}

GR_STATUS TG2ImageReader::initialize(GRIOStreamInf& stream, GRIOStreamInf* worldStream,
                                     TesraMemoryUsage memoryUsage, TesraStreamUsage streamUsage) {
  m_stream = &stream;
  m_memoryUsage = memoryUsage;
  m_streamUsage = streamUsage;
  try {
    GRIOStreamOpener opener(stream, streamUsage == TESRA_STREAM_KEEP_OPEN);
    GR_RETURN_IF_FAILED(opener.open());
    return opener.close(open(worldStream));
  } catch (const GRUtilException& exception) {
    return exception.getStatus();
  }
}

GR_STATUS TG2ImageReader::open(GRIOStreamInf* worldStream) {
  setSelective(true);
  GR_RETURN_IF_FAILED(readMetadata());
  GR_RETURN_IF_FAILED(readIndex());
  GR_RETURN_IF_FAILED(setProperties());
  GR_RETURN_IF_FAILED(addInputName(m_stream->getID()));
  if (worldStream == nullptr) return GR_STATUS_OK;
  bool changed = false;
  return readWorldFile(*worldStream, changed, false);
}

GR_STATUS TG2ImageReader::readMetadata() {
  GRIMetadataDatabase* const database = editMetadata();
  if (database == nullptr) return GR_STATUS_NO_MEMORY;
  const gr_int64 length = GRIOStreamUtils::getStreamLength(*m_stream);
  GR_RETURN_IF_FAILED(m_stream->seek(0, GRIO_SEEK_BEGIN));
  TG2MainHeader header;
  GR_RETURN_IF_FAILED(header.read(*m_stream));
  const gr_int64 offset = header.metadataOffset;
  if (offset == 0) return GR_STATUS_OK;

  if (offset > length || !GR_SUCCESS(m_stream->seek(offset, GRIO_SEEK_BEGIN))) {
    return TESRA_STATUS_METADATA;
  }
  gr_uint16 marker = 0;
  GRFieldReader fields(*m_stream, static_cast<gr_uint64>(length - offset), TESRA_STATUS_METADATA);
  GR_RETURN_IF_FAILED(fields.read(marker));
  if (marker != MARKER_METADATA) return GR_STATUS_OK;
  return GRIMetadataClassicalReader(*database, *m_stream, fields.left()).read();
}

GR_STATUS TG2ImageReader::readIndex() {
  m_addsNoise = !getMetadata().has(GRI_TAG_IMAGE_NO_DITHER);
  m_isLocked = tesraIsLocked(getMetadata());
  m_info = gr_makeUnique<TG2FileDBInfo>(*m_stream, &m_encryption, m_addsNoise,
                                        m_streamUsage == TESRA_STREAM_KEEP_OPEN,
                                        m_memoryUsage == TESRA_MEMORY_LARGE);
  return m_info != nullptr ? m_info->initialize() : GR_STATUS_NO_MEMORY;
}

GR_STATUS TG2ImageReader::setProperties() {
  const TG2Rect& window = m_info->getSupportRect();
  setDimensions(static_cast<gr_uint32>(window.getWidth()),
                static_cast<gr_uint32>(window.getHeight()));
  GR_RETURN_IF_FAILED(setPixelProperties());
  GR_RETURN_IF_FAILED(setGeoProperties());
  setMagnificationRange(std::ldexp(1.0, -int{getNumLevels()}),
                        std::ldexp(1.0, LARGEST_MAGNIFICATION_EXPONENT));
  return GR_STATUS_OK;
}

GR_STATUS TG2ImageReader::setPixelProperties() {
  const auto numBands = static_cast<gr_uint16>(m_info->getNumBands());
  GRIPixel pixel(colorSpaceOf(numBands), numBands, GRI_DATATYPE_UINT8);
  GR_RETURN_IF_FAILED(GRIMetadataAccConst(getMetadata()).getPixelProps(pixel));
  if (!isDecoded(pixel.getDataType())) return TESRA_STATUS_UNSUPPORTED_DATATYPE;
  return setPixelProps(pixel);
}

GR_STATUS TG2ImageReader::setGeoProperties() {
  GR_RETURN_IF_FAILED(setDefaultGeoCoord(*this));
  GRIGeoCoord geoCoord(getGeoCoord());
  bool found = false;
  const GR_STATUS status = geoCoord.readFromMetadata(getMetadata(), found);
  // Records in another form count as absent: a position can be missing, an image can't.
  if (status == GRI_STATUS_TAG_BAD_FORMAT) return GR_STATUS_OK;
  GR_RETURN_IF_FAILED(status);
  return found ? setGeoCoord(geoCoord) : GR_STATUS_OK;
}

GR_STATUS TG2ImageReader::getDimsAtMag(double mag, gr_uint32& width, gr_uint32& height) const {
  if (!(mag >= getMinMagnification() && mag <= getMaxMagnification())) {
    return GR_STATUS_OUT_OF_RANGE;
  }
  TG2Rect rect;
  GR_RETURN_IF_FAILED(m_info->getLevelSupport(gri_levelOf(mag), rect));
  width = static_cast<gr_uint32>(rect.getWidth());
  height = static_cast<gr_uint32>(rect.getHeight());
  return GR_STATUS_OK;
}

gr_int64 TG2ImageReader::getSourceFileSize() const {
  if (m_stream == nullptr) return -1;
  GRIOStreamOpener opener(*m_stream, m_streamUsage == TESRA_STREAM_KEEP_OPEN);
  if (!GR_SUCCESS(opener.open())) return -1;
  return std::max<gr_int64>(GRIOStreamUtils::getStreamLength(*m_stream), -1);
}

GR_STATUS TG2ImageReader::unlock() {
  if (!m_isLocked) return GR_STATUS_OK;
  GRContentKeys* const known = getContentKeys();
  if (known != nullptr && !m_encryption.isKeySet() && !known->find(0).empty()) {
    try {
      m_encryption.setKey(known->find(0));
    } catch (const GRUtilException& exception) {
      return exception.getStatus();
    }
  }
  GR_RETURN_IF_FAILED(tesraUnlock(getMetadata(), m_encryption, getKeyProviders()));
  return known != nullptr ? known->keep(0, m_encryption.getKey()) : GR_STATUS_OK;
}

GR_STATUS TG2ImageReader::decodeBegin(const GRIScene& scene) {
  if (m_decoder == nullptr) {
    GR_RETURN_IF_FAILED(unlock());
    m_decoder = gr_makeUnique<TG2Decoder>(*m_info);
    if (m_decoder == nullptr) return GR_STATUS_NO_MEMORY;
  }
  TG2Rect sceneRect;
  TG2Rect rect;
  gr_int32 level = 0;
  if (!rectOfScene(scene, sceneRect)) return TG2_STATUS_SUPPORT_TOO_LARGE;
  GR_RETURN_IF_FAILED(m_info->getSupport(sceneRect, gri_levelOf(scene.getMag()), rect, level));
  m_decoder->setInterrupt(getInterruptDelegate());
  return m_decoder->decodeBegin(rect, level, getStripHeight());
}

GR_STATUS TG2ImageReader::decodeStrip(GRISceneBuffer& buffer, const GRIScene& /*stripScene*/) {
  return m_decoder != nullptr ? m_decoder->decodeStrip(buffer) : GRI_STATUS_INVALID_ARGUMENT;
}

GR_STATUS TG2ImageReader::decodeEnd() {
  return m_decoder != nullptr ? m_decoder->decodeEnd() : GR_STATUS_OK;
}

gr_uint8 TG2ImageReader::getNumLevels() const {
  return static_cast<gr_uint8>(static_cast<gr_int32>(m_info->getNumLevels()) -
                               m_info->getSupportLevel());
}

void TG2ImageReader::getVersion(gr_uint8& major, gr_uint8& minor, gr_uint8& tweak,
                                gr_int8& letter) const {
  const TG2DBInfo::Version& version = m_info->getVersion();
  major = version.major;
  minor = version.minor;
  tweak = version.tweak;
  letter = 0;
}
