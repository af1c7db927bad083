#include "gr_lib_tg3kernel/src/tg3_internal_lib/tg3_decoderTool.h"

#include <algorithm>
#include <cassert>
#include <cmath>

#include "gr_lib_tg3kernel/src/tg3_internal_lib/tg3_pixelProps.h"
#include "gr_lib_tg3kernel/src/tg3_internal_lib/tg3_sceneGeometry.h"
#include "gr_lib_utils/include/gr_checkedMath.h"
#include "gr_lib_utils/include/gr_exception.h"
#include "gr_lib_utils/include/gr_memory.h"
#include "gr_lib_utils/include/gr_status.h"
#include "image/gri_level.h"
#include "image/gri_pixel.h"
#include "image/gri_sceneBuffer.h"

namespace {

constexpr int LARGEST_MAGNIFICATION_EXPONENT = 127;

// Decoders write samples of these types, all others stop here.
bool isDecoded(GRIDataType dataType) {
  return dataType == GRI_DATATYPE_UINT8 || dataType == GRI_DATATYPE_SINT8 ||
         dataType == GRI_DATATYPE_UINT16 || dataType == GRI_DATATYPE_SINT16;
}

void setAllSamples(GRIPixel& pixel, double value) {
  for (gr_uint16 band = 0; band < pixel.getNumBands(); ++band) {
    pixel.getSample(band).setValueFromDouble(value);
  }
}

}  // namespace

GR_STATUS TG3DecoderTool::initialize(const TG3ImageSource& imageSource,
                                     TG3PlaneStoreClient& client) {
  m_imageSource = &imageSource;
  m_client = &client;
  setDimensions(imageSource.getWidth(), imageSource.getHeight());
  setMagnificationRange(std::ldexp(1.0, -imageSource.getNumVisibleLevels()),
                        std::ldexp(1.0, LARGEST_MAGNIFICATION_EXPONENT));
  setSelective(true);
  GR_RETURN_IF_FAILED(setStripHeight(STRIP_HEIGHT));
  GR_RETURN_IF_FAILED(setDefaultGeoCoord(*this));
  return setPixelProperties(imageSource.getInfo());
}

GR_STATUS TG3DecoderTool::setPixelProperties(const TG3ImageInfo& info) {
  std::unique_ptr<GRIPixel> pixel;
  GR_RETURN_IF_FAILED(tg3_makePixel(info, GRI_STATUS_UNSUPPORTED_COLORSPACE,
                                    GRI_STATUS_UNSUPPORTED_DATATYPE, pixel));
  if (!isDecoded(pixel->getDataType())) return GRI_STATUS_UNSUPPORTED_DATATYPE;
  GR_RETURN_IF_FAILED(setPixelProps(*pixel));
  try {
    GRIPixel max(*pixel);
    setAllSamples(*pixel, info.dynamicRangeMin);
    setAllSamples(max, info.dynamicRangeMax);
    return setDynamicRange(*pixel, max);
  } catch (const GRUtilException& exception) {
    return exception.getStatus();
  }
}

GR_STATUS TG3DecoderTool::createDecodeBase() {
  std::unique_ptr<DecodeBase> decodeBase = gr_makeUnique<DecodeBase>();
  if (decodeBase == nullptr) return TG3_STATUS_NO_MEMORY;
  GR_RETURN_IF_FAILED(decodeBase->initialize(m_imageSource->getInfo(), *m_client));
  m_decodeBase = std::move(decodeBase);
  return GR_STATUS_OK;
}

GR_STATUS TG3DecoderTool::decodeBegin(const GRIScene& scene) {
  const TG3ImageInfo& info = m_imageSource->getInfo();
  m_waveletDecoder.reset();
  m_numStrips = 0;
  if (getStripHeight() == 0) return GRI_STATUS_INVALID_ARGUMENT;
  if (info.boundary != TG3_BOUNDARY_REFLECTIVE || info.wavelet != TG3_WAVELET_5_3_HV) {
    return TG3_STATUS_FORMAT_ERROR;
  }

  TG3VisibleRect rect;
  rect.left = scene.getUpperLeftIntCol();
  rect.top = scene.getUpperLeftIntRow();
  rect.right = rect.left + scene.getNumCols() - 1;
  rect.bottom = rect.top + scene.getNumRows() - 1;
  Pipe::Geometry geometry;
  GR_RETURN_IF_FAILED(tg3_locateScene(info, rect, gri_levelOf(scene.getMag()), geometry));

  if (m_decodeBase == nullptr) GR_RETURN_IF_FAILED(createDecodeBase());
  m_decodeBase->setInterruptDelegate(getInterruptDelegate());
  std::unique_ptr<PipelinedWaveletDecoder> decoder = gr_makeUnique<PipelinedWaveletDecoder>();
  if (decoder == nullptr) return TG3_STATUS_NO_MEMORY;
  const PipelinedWaveletDecoder::Samples samples{.low = info.dynamicRangeMin,
                                                 .high = info.dynamicRangeMax,
                                                 .bytes = getPixelProps().getMaxBytesPerSample()};
  GR_RETURN_IF_FAILED(decoder->initialize(geometry, samples, *m_decodeBase));

  m_waveletDecoder = std::move(decoder);
  m_columns = geometry.columns.count();
  m_rows = geometry.rows.count();
  m_rowsPerStrip = getStripHeight();
  m_numStrips = static_cast<gr_uint32>(gr_ceilDivide(m_rows, m_rowsPerStrip));
  m_currentStripNumber = 0;
  return GR_STATUS_OK;
}

GR_STATUS TG3DecoderTool::decodeStrip(GRISceneBuffer& buffer, const GRIScene& stripScene) {
  static_cast<void>(stripScene);  // strips come one after the other; the buffer has its size
  assert(m_currentStripNumber < m_numStrips);
  if (m_currentStripNumber >= m_numStrips) return GRI_STATUS_INVALID_ARGUMENT;
  const gr_uint32 firstRow = m_currentStripNumber * m_rowsPerStrip;
  const gr_uint32 numRows = std::min(m_rowsPerStrip, m_rows - firstRow);
  if (buffer.getWindowNumCols() != m_columns || buffer.getWindowNumRows() != numRows) {
    return GRI_STATUS_SCENE_BUFFER_SIZE;
  }

  const GR_STATUS status = decodeRows(buffer, numRows);
  if (!GR_SUCCESS(status)) {
    m_waveletDecoder.reset();
    m_numStrips = 0;
    return status;
  }
  ++m_currentStripNumber;
  return GR_STATUS_OK;
}

GR_STATUS TG3DecoderTool::decodeRows(GRISceneBuffer& buffer, gr_uint32 numRows) {
  return m_waveletDecoder->decodeRows(
      numRows, std::span<void* const>(buffer.getWindowBSQData(), buffer.getNumBands()),
      buffer.getRowBytes(0));
}

GR_STATUS TG3DecoderTool::decodeEnd() {
  m_waveletDecoder.reset();
  m_numStrips = 0;
  if (m_decodeBase != nullptr) m_decodeBase->dropRows();
  return GR_STATUS_OK;
}

GR_STATUS TG3FileSimpleDecoderTool::decodeBegin(const GRIScene& scene) {
  return closeAfter(TG3DecoderTool::decodeBegin(scene));
}

GR_STATUS TG3FileSimpleDecoderTool::decodeStrip(GRISceneBuffer& buffer,
                                                const GRIScene& stripScene) {
  return closeAfter(TG3DecoderTool::decodeStrip(buffer, stripScene));
}

GR_STATUS TG3FileSimpleDecoderTool::decodeEnd() { return closeAfter(TG3DecoderTool::decodeEnd()); }

// The client opens its stream when it needs it.
GR_STATUS TG3FileSimpleDecoderTool::closeAfter(GR_STATUS status) {
  if (getClient() != nullptr) getClient()->endUse();
  return status;
}
