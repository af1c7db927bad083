#include "nitf/nitf_imageSegment.h"

#include <algorithm>
#include <cstdlib>
#include <iterator>

#include "gr_lib_utils/include/gr_checkedMath.h"
#include "gr_lib_utils/include/gr_exception.h"
#include "gr_lib_utils/include/gr_ioStreamUtils.h"
#include "gr_lib_utils/include/gr_ioSubStream.h"
#include "gr_lib_utils/include/gr_status.h"
#include "nitf/nitf_imageManager.h"

namespace {

/// What each code of IC stands for, and the status of an image that has it.
struct Compression {
  std::string_view code;
  NITFCompression compression;
  GR_STATUS status;
};

constexpr Compression COMPRESSIONS[] = {
    {"NC", NITF_COMPRESSION_NONE, GR_STATUS_OK},
    {"NM", NITF_COMPRESSION_NONE, GR_STATUS_OK},
    {"C1", NITF_COMPRESSION_BILEVEL, NITF_STATUS_BILEVEL},
    {"M1", NITF_COMPRESSION_BILEVEL, NITF_STATUS_BILEVEL},
    {"C3", NITF_COMPRESSION_JPEG, GR_STATUS_OK},
    {"M3", NITF_COMPRESSION_JPEG, GR_STATUS_OK},
    {"C4", NITF_COMPRESSION_VQ, NITF_STATUS_VQ},
    {"M4", NITF_COMPRESSION_VQ, NITF_STATUS_VQ},
    {"C5", NITF_COMPRESSION_LOSSLESS_JPEG, NITF_STATUS_LOSSLESS_JPEG},
    {"M5", NITF_COMPRESSION_LOSSLESS_JPEG, NITF_STATUS_LOSSLESS_JPEG},
    {"I1", NITF_COMPRESSION_DOWNSAMPLED_JPEG, NITF_STATUS_DOWNSAMPLED_JPEG},
    {"C8", NITF_COMPRESSION_JPEG2000, GR_STATUS_OK},
    {"M8", NITF_COMPRESSION_JPEG2000, GR_STATUS_OK},
};

/// For people who look into files: that it may fail is no matter.
void dumpPixels(GRIOStreamInf& stream) {
  try {
    static_cast<void>(GRIOStreamUtils::copyToFile(stream, GRFileSpec("image.dat")));
  } catch (const GRUtilException&) {
    return;  // there's no room for a name
  }
}

}  // namespace

GR_STATUS NITFImageSegment::readHeader(NITFFieldReader& fields) {
  GR_RETURN_IF_FAILED(m_header.readIdentification(fields));
  GR_RETURN_IF_FAILED(readSecurity(fields));
  GR_RETURN_IF_FAILED(readEncryption(fields));
  return m_header.readDescription(fields, getVersion(), getManager().isCOMRATMissing());
}

GR_STATUS NITFImageSegment::initialize() {
  GR_RETURN_IF_FAILED(NITFSegment::initialize());
  m_status = interpret();
  if (m_status == GR_STATUS_NO_MEMORY) return m_status;  // says nothing about the image
  if (!GR_SUCCESS(m_status)) return GR_STATUS_OK;
  if (m_isMasked) {
    GR_RETURN_IF_FAILED(
        m_mask.read(getStream(), getDataOffset(), getDataLength(), countBlocks(), m_blocks));
  }
  if (!m_blocks.mayBeAbsent() && m_compression == NITF_COMPRESSION_NONE) {
    m_blocks.setUniform(countBlocks(), getBlockBytes());
  }
  return GR_STATUS_OK;
}

/// The status of the first thing that stands against reading the image.
GR_STATUS NITFImageSegment::interpret() {
  GR_RETURN_IF_FAILED(interpretCompression());
  GR_RETURN_IF_FAILED(interpretLayout());
  GR_RETURN_IF_FAILED(interpretPixel());
  if (m_header.hasTables) return NITF_STATUS_LUTS;
  return checkBlocks();
}

GR_STATUS NITFImageSegment::interpretCompression() {
  const auto* const found =
      std::find_if(std::begin(COMPRESSIONS), std::end(COMPRESSIONS),
                   [this](const Compression& c) { return m_header.IC == c.code; });
  if (found == std::end(COMPRESSIONS)) return NITF_STATUS_INVALID_FILE;
  m_compression = found->compression;
  m_isMasked = found->code.find('M') != std::string_view::npos;
  return found->status;
}

GR_STATUS NITFImageSegment::interpretLayout() {
  constexpr std::string_view MODES = "BPRS";
  const size_t mode = MODES.find(m_header.IMODE.view()[0]);
  if (m_compression == NITF_COMPRESSION_JPEG && mode > 1) return NITF_STATUS_JPEG;
  if (m_compression == NITF_COMPRESSION_JPEG2000 && mode > 0) return NITF_STATUS_INVALID_FILE;
  if (mode == std::string_view::npos) return NITF_STATUS_INVALID_FILE;
  m_layout = static_cast<NITFLayout>(NITF_LAYOUT_BLOCK + static_cast<gr_int32>(mode));
  return GR_STATUS_OK;
}

GR_STATUS NITFImageSegment::interpretPixel() {
  if (!(m_header.PJUST == "R")) return NITF_STATUS_PJUST;
  GRIColorSpace colorSpace = GRI_COLORSPACE_INVALID;
  GRIDataType dataType = GRI_DATATYPE_INVALID;
  GR_RETURN_IF_FAILED(interpretColor(colorSpace));
  GR_RETURN_IF_FAILED(interpretDataType(dataType));
  const gr_uint32 typeBits = GRIUtils::getNumBytes(dataType) * 8;
  if (m_header.ABPP == 0 || m_header.ABPP > typeBits) return NITF_STATUS_UNSUPPORTED_DATATYPE;
  try {
    m_pixelProps =
        gr_makeUnique<GRIPixel>(colorSpace, static_cast<gr_uint16>(m_header.NBANDS), dataType);
  } catch (const GRUtilException& exception) {
    return exception.getStatus();
  }
  if (m_pixelProps == nullptr) return GR_STATUS_NO_MEMORY;
  m_pixelProps->setPrecision(m_header.ABPP);
  return GR_STATUS_OK;
}

GR_STATUS NITFImageSegment::interpretColor(GRIColorSpace& colorSpace) const {
  constexpr gr_uint32 MAX_BANDS = 65535;
  if (m_header.IREP == "YCbCr601") return NITF_STATUS_UNSUPPORTED_COLORSPACE;
  if (m_header.NBANDS == 0 || m_header.NBANDS > MAX_BANDS) {
    return NITF_STATUS_UNSUPPORTED_COLORSPACE;
  }
  const auto& bands = m_header.IREPBAND;
  colorSpace = GRI_COLORSPACE_MULTISPECTRAL;
  if (m_header.IREP == "MONO    " && m_header.NBANDS == 1) {
    colorSpace = GRI_COLORSPACE_GRAYSCALE;
  } else if (m_header.IREP == "RGB     " && m_header.NBANDS == 3 && bands[0] == "R " &&
             bands[1] == "G " && bands[2] == "B ") {
    colorSpace = GRI_COLORSPACE_RGB;
  }
  return GR_STATUS_OK;
}

GR_STATUS NITFImageSegment::interpretDataType(GRIDataType& dataType) const {
  if (m_header.NBPP > 32) return NITF_STATUS_UNSUPPORTED_DATATYPE;
  const auto byWidth = [this](GRIDataType upTo8, GRIDataType upTo16, GRIDataType upTo32) {
    if (m_header.NBPP <= 8) return upTo8;
    return m_header.NBPP <= 16 ? upTo16 : upTo32;
  };
  if (m_header.PVTYPE == "INT") {
    dataType = byWidth(GRI_DATATYPE_UINT8, GRI_DATATYPE_UINT16, GRI_DATATYPE_UINT32);
  } else if (m_header.PVTYPE == "SI ") {
    dataType = byWidth(GRI_DATATYPE_SINT8, GRI_DATATYPE_SINT16, GRI_DATATYPE_SINT32);
  } else if (m_header.PVTYPE == "R  ") {
    dataType = GRI_DATATYPE_FLOAT32;
  } else {
    return NITF_STATUS_UNSUPPORTED_DATATYPE;
  }
  return GR_STATUS_OK;
}

/// Whether the blocks cover the image, so that every pixel has a block, and every block an entry.
GR_STATUS NITFImageSegment::checkBlocks() const {
  const NITFImageSubheader& h = m_header;
  if (h.NROWS == 0 || h.NCOLS == 0 || h.NBPR == 0 || h.NBPC == 0) return NITF_STATUS_INVALID_FILE;
  if (gr_uint64{h.NBPR} * h.NPPBH < h.NCOLS || gr_uint64{h.NBPC} * h.NPPBV < h.NROWS) {
    return NITF_STATUS_INVALID_FILE;
  }
  // Blocks lie one behind the other by bytes: a sample must take just those of its type. For a
  // single block the size of the data decides.
  const gr_uint32 sampleBits = m_pixelProps->getMaxBytesPerSample() * 8;
  if (m_compression == NITF_COMPRESSION_NONE && isBlocked() && h.NBPP != sampleBits) {
    return NITF_STATUS_NOT_BYTE_ALIGNED;
  }
  return GR_STATUS_OK;
}

gr_uint64 NITFImageSegment::countBlocks() const {
  const gr_uint64 bands = m_layout == NITF_LAYOUT_SEQUENTIAL ? m_header.NBANDS : 1;
  return gr_uint64{m_header.NBPR} * m_header.NBPC * bands;
}

gr_uint64 NITFImageSegment::getBlockBytes() const {
  const gr_uint64 bands = m_layout == NITF_LAYOUT_SEQUENTIAL ? 1 : m_header.NBANDS;
  const gr_uint64 pixels = gr_uint64{m_header.NPPBH} * m_header.NPPBV;
  return gr_saturatingMultiply(pixels, bands * (m_header.NBPP / 8));
}

GR_STATUS NITFImageSegment::getImageStream(std::unique_ptr<GRIOStreamInf>& stream) const {
  auto window = gr_makeUnique<GRIOSubStream>();
  if (window == nullptr) return GR_STATUS_NO_MEMORY;
  GRIOStreamInf* const duplicate = getStream().duplicate();
  if (duplicate == nullptr) return NITF_STATUS_DUPLICATE_STREAM;
  const gr_uint64 end = getDataOffset() + getDataLength();
  const gr_uint64 begin = getDataOffset() + m_mask.getPixelOffset();
  // From here on the duplicate is the window's.
  GR_RETURN_IF_FAILED(window->initialize(duplicate, static_cast<gr_int64>(begin),
                                         static_cast<gr_int64>(end), true));
  GR_RETURN_IF_FAILED(window->open());
  if (std::getenv("NITF_DUMP") != nullptr) dumpPixels(*window);
  GR_RETURN_IF_FAILED(window->seek(0, GRIO_SEEK_BEGIN));
  stream = std::move(window);
  return GR_STATUS_OK;
}
