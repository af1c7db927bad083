#include "gr_lib_tg3kernel/src/tg3_internal_lib/tg3_singleImageReader.h"

#include <cmath>
#include <span>

#include "gr_lib_tg3kernel/src/tg3_db_lib/tg3_fileSimpleContainer.h"
#include "gr_lib_tg3kernel/src/tg3_db_lib/tg3_metadataTool.h"
#include "gr_lib_tg3kernel/src/tg3_internal_lib/tg3_pixelProps.h"
#include "gr_lib_utils/include/gr_exception.h"
#include "gr_lib_utils/include/gr_ioStreamOpener.h"
#include "gr_lib_utils/include/gr_ioStreamUtils.h"
#include "gr_lib_utils/include/gr_memory.h"
#include "gr_lib_utils/include/gr_status.h"
#include "image/gri_geoCoord.h"
#include "image/gri_pixel.h"
#include "image/gri_pixelLookupTable.h"
#include "metadata/gri_metadataAcc.h"
#include "metadata/gri_metadataClassicalReader.h"
#include "metadata/gri_metadataDatabase.h"

namespace {

constexpr int LARGEST_MAGNIFICATION_EXPONENT = 127;

}  // namespace

GR_STATUS TG3SingleImageReader::initialize(TG3FileSimpleContainer& container, gr_uint32 imageNumber,
                                           GRIOStreamInf* worldStream,
                                           TesraMemoryUsage memoryUsage) {
  m_container = &container;
  m_memoryUsage = memoryUsage;
  m_imageSource = gr_makeUnique<TG3FileSimpleImageSource>(container, imageNumber);
  if (m_imageSource == nullptr) return GR_STATUS_NO_MEMORY;
  try {
    GR_RETURN_IF_FAILED(m_imageSource->initialize());
    GR_RETURN_IF_FAILED(setStripHeight(STRIP_HEIGHT));
    setSelective(true);
    GR_RETURN_IF_FAILED(readMetadata());
    setDimensions(m_imageSource->getWidth(), m_imageSource->getHeight());
    GR_RETURN_IF_FAILED(setPixelProperties());
    GR_RETURN_IF_FAILED(setSpecialPixels());
    GR_RETURN_IF_FAILED(setLookupTable());
    setMagnificationRange(std::ldexp(1.0, -m_imageSource->getNumVisibleLevels()),
                          std::ldexp(1.0, LARGEST_MAGNIFICATION_EXPONENT));
    GR_RETURN_IF_FAILED(setGeoProperties(worldStream));
    return addInputName(container.getStream().getID());
  } catch (const GRUtilException& exception) {
    return exception.getStatus();
  }
}

GR_STATUS TG3SingleImageReader::readMetadata() {
  TG3MetadataTool tool(*m_container);
  const TG3MetadataDesc desc = TG3MetadataDesc::classical(m_imageSource->getImageNumber());
  if (!tool.has(desc)) return GR_STATUS_OK;

  gr_uint64 offset = 0;
  gr_uint64 length = 0;
  GR_RETURN_IF_FAILED(tool.getPlace(desc, offset, length));
  GRIMetadataDatabase* database = editMetadata();
  if (database == nullptr) return GR_STATUS_NO_MEMORY;
  GRIOStreamInf& stream = m_container->getStream();
  GRIOStreamOpener opener(stream, m_container->leavesOpen());
  GR_RETURN_IF_FAILED(opener.open());
  GR_RETURN_IF_FAILED(stream.seek(static_cast<gr_int64>(offset), GRIO_SEEK_BEGIN));
  return opener.close(GRIMetadataClassicalReader(*database, stream, length).read());
}

GR_STATUS TG3SingleImageReader::setPixelProperties() {
  std::unique_ptr<GRIPixel> pixel;
  GR_RETURN_IF_FAILED(tg3_makePixel(m_imageSource->getInfo(), TESRA_STATUS_UNSUPPORTED_COLORSPACE,
                                    TESRA_STATUS_UNSUPPORTED_DATATYPE, pixel));
  GR_RETURN_IF_FAILED(setPixelProps(*pixel));  // the range is now that of the data type

  GRIPixel min(getMinDynamicRange());
  GRIPixel max(getMaxDynamicRange());
  const GR_STATUS status = GRIMetadataAccConst(getMetadata()).getDynamicRange(min, max);
  if (status == GRI_STATUS_TAG_NOT_FOUND) return GR_STATUS_OK;
  GR_RETURN_IF_FAILED(status);
  return setDynamicRange(min, max);
}

GR_STATUS TG3SingleImageReader::setSpecialPixels() {
  const GRIMetadataAccConst metadata(getMetadata());
  const TG3GeorefData& georef = m_imageSource->getGeoref();
  std::unique_ptr<GRIPixel> fromGeoref;
  bool found = false;

  GRIPixel background(getPixelProps());
  GR_RETURN_IF_FAILED(metadata.getBackgroundPixel(background, &found));
  if (found) {
    GR_RETURN_IF_FAILED(setBackgroundPixel(&background));
  } else if (georef.background) {
    GR_RETURN_IF_FAILED(tg3_makePixel(getPixelProps(), *georef.background, fromGeoref));
    GR_RETURN_IF_FAILED(setBackgroundPixel(fromGeoref.get()));
  }

  GRIPixel noData(getPixelProps());
  GR_RETURN_IF_FAILED(metadata.getNoDataPixel(noData, &found));
  if (found) return setNoDataPixel(&noData);
  if (!georef.noData) return GR_STATUS_OK;
  GR_RETURN_IF_FAILED(tg3_makePixel(getPixelProps(), *georef.noData, fromGeoref));
  return setNoDataPixel(fromGeoref.get());
}

GR_STATUS TG3SingleImageReader::setLookupTable() {
  std::unique_ptr<GRIPixelLookupTable> table;
  const GR_STATUS status =
      GRIMetadataAccConst(getMetadata()).getPixelLookupTable(getPixelProps(), table);
  if (status == GRI_STATUS_TAG_NOT_FOUND) return GR_STATUS_OK;
  GR_RETURN_IF_FAILED(status);
  return setPixelLookupTable(table.get());
}

GR_STATUS TG3SingleImageReader::setGeoProperties(GRIOStreamInf* worldStream) {
  GR_RETURN_IF_FAILED(setDefaultGeoCoord(*this));
  GRIGeoCoord geoCoord(getGeoCoord());
  bool found = false;
  const GR_STATUS status = geoCoord.readFromMetadata(getMetadata(), found);
  // Records in another form count as absent: a position can be missing, an image can't.
  if (status != GRI_STATUS_TAG_BAD_FORMAT) GR_RETURN_IF_FAILED(status);
  if (!GR_SUCCESS(status)) found = false;

  if (const auto& geo = m_imageSource->getGeoref().geo) {
    geoCoord.setXOrigin(geo->xUL);
    geoCoord.setYOrigin(geo->yUL);
    geoCoord.setXResolution(geo->xRes);
    geoCoord.setYResolution(-std::abs(geo->yRes));
    geoCoord.setXRot(0.0);
    geoCoord.setYRot(0.0);
    found = true;
  }
  if (found) GR_RETURN_IF_FAILED(setGeoCoord(geoCoord));
  if (worldStream == nullptr) return GR_STATUS_OK;
  bool changed = false;
  return readWorldFile(*worldStream, changed, false);
}

gr_int64 TG3SingleImageReader::getSourceFileSize() const {
  if (m_container == nullptr) return -1;
  GRIOStreamInf& stream = m_container->getStream();
  GRIOStreamOpener opener(stream, m_container->leavesOpen());
  if (!GR_SUCCESS(opener.open())) return -1;
  const gr_int64 length = GRIOStreamUtils::getStreamLength(stream);
  return length < 0 ? -1 : length;
}

gr_uint8 TG3SingleImageReader::getNumLevels() const { return m_imageSource->getNumVisibleLevels(); }

bool TG3SingleImageReader::isLocked() const { return m_imageSource->getInfo().locked; }

void TG3SingleImageReader::getVersion(gr_uint8& major, gr_uint8& minor, gr_uint8& tweak,
                                      gr_int8& letter) const {
  const TG3Version& version = m_container->getVersion();
  major = version.major;
  minor = version.minor;
  tweak = version.revision;
  letter = version.letter;
}

void TG3SingleImageReader::setPasswordDelegate(TesraPasswordDelegate* delegate) {
  TesraImageReaderInterface::setPasswordDelegate(delegate);
  if (m_planeSource == nullptr) return;
  if (GRLock* const lock = m_planeSource->getLock()) lock->allowAsking();
}

GR_STATUS TG3SingleImageReader::createTool() {
  std::unique_ptr<TG3FileSimplePlaneSource> planeSource = gr_makeUnique<TG3FileSimplePlaneSource>();
  if (planeSource == nullptr) return GR_STATUS_NO_MEMORY;
  GR_RETURN_IF_FAILED(
      planeSource->initialize(*m_container, m_imageSource->getImageNumber(), m_memoryUsage));
  if (GRLock* const lock = planeSource->getLock()) {
    lock->setKeyProviders(&getKeyProviders());
    lock->setContentKeys(getContentKeys());
  }

  std::unique_ptr<TG3FileSimpleDecoderTool> made = gr_makeUnique<TG3FileSimpleDecoderTool>();
  if (made == nullptr) return GR_STATUS_NO_MEMORY;
  GRUtilSmartPointer<TG3FileSimpleDecoderTool> tool(made.release());
  GR_RETURN_IF_FAILED(tool->initialize(*m_imageSource, planeSource->getClient()));
  m_planeSource = std::move(planeSource);
  m_tool = GRUtilSmartPointer<TG3DecoderTool>(tool.detach());
  return GR_STATUS_OK;
}

GR_STATUS TG3SingleImageReader::decodeBegin(const GRIScene& scene) {
  try {
    if (!m_tool) GR_RETURN_IF_FAILED(createTool());
    // The tool counts strips itself, so it must cut the scene as our caller does.
    GR_RETURN_IF_FAILED(m_tool->setStripHeight(getStripHeight()));
    m_tool->setInterruptDelegate(getInterruptDelegate());
    return m_tool->decodeBegin(scene);
  } catch (const GRUtilException& exception) {
    return exception.getStatus();
  }
}

GR_STATUS TG3SingleImageReader::decodeStrip(GRISceneBuffer& buffer, const GRIScene& stripScene) {
  if (!m_tool) return TG3_STATUS_BAD_CONTEXT;
  return m_tool->decodeStrip(buffer, stripScene);
}

GR_STATUS TG3SingleImageReader::decodeEnd() { return m_tool ? m_tool->decodeEnd() : GR_STATUS_OK; }
