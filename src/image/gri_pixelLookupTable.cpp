#include "image/gri_pixelLookupTable.h"

#include <cassert>
#include <cstring>

#include "gr_lib_utils/include/gr_checkedMath.h"
#include "gr_lib_utils/include/gr_exception.h"

GRIPixelLookupTable::GRIPixelLookupTable(const GRIPixel& pixelProps, gr_uint32 tableSize,
                                         const void* table)
    : GRIPixel(pixelProps), m_tableSize(tableSize) {
  assert(getDataType() != GRI_DATATYPE_INVALID && tableSize > 0);
  const gr_uint64 bytes = gr_saturatingMultiply(getNumBytes(), tableSize);
  if (!GR_SUCCESS(m_table.allocate(bytes))) throw GRUtilException(GR_STATUS_NO_MEMORY);
  if (table != nullptr) std::memcpy(m_table.data(), table, m_table.size());
}

GRIPixelLookupTable::GRIPixelLookupTable(const GRIPixelLookupTable& other)
    : GRIPixelLookupTable(other, other.m_tableSize, other.m_table.data()) {}

size_t GRIPixelLookupTable::offsetOf(gr_uint16 band, gr_uint32 index) const {
  assert(index < m_tableSize);
  return (size_t{band} * m_tableSize + index) * getSample(0).getNumBytes();
}

void GRIPixelLookupTable::setTableEntry(gr_uint32 index, const GRIPixel& pixel) {
  assert(pixel.getColorSpace() == getColorSpace() && pixel.getNumBands() == getNumBands());
  for (gr_uint16 band = 0; band < getNumBands(); ++band) {
    std::memcpy(m_table.data() + offsetOf(band, index), pixel.getSample(band).getValuePtr(),
                getSample(0).getNumBytes());
  }
}

std::unique_ptr<GRIPixel> GRIPixelLookupTable::getTableEntry(gr_uint32 index) const {
  try {
    auto pixel = gr_makeUnique<GRIPixel>(static_cast<const GRIPixel&>(*this));
    for (gr_uint16 band = 0; pixel != nullptr && band < getNumBands(); ++band) {
      pixel->setSampleValueBytes(band, m_table.data() + offsetOf(band, index));
    }
    return pixel;
  } catch (const GRUtilException&) {
    return nullptr;
  }
}
