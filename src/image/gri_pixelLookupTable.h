/// @file
/// GRIPixelLookupTable, a pixel with a palette.
#pragma once

#include <memory>

#include "image/gri_pixel.h"

/// A table of pixels of one layout: all entries of band 0, then those of band 1, and so on.
class GRIPixelLookupTable : public GRIPixel {
 public:
  /// @param pixelProps  the layout of the entries: bands of one type
  /// @param tableSize  number of entries, at least 1
  /// @param table  bands x tableSize samples, copied; null for zeros
  /// Throws GRUtilException(8).
  GRIPixelLookupTable(const GRIPixel& pixelProps, gr_uint32 tableSize, const void* table);
  GRIPixelLookupTable(const GRIPixelLookupTable& other);
  GRIPixelLookupTable& operator=(const GRIPixelLookupTable&) = delete;

  /// @param index  below getTableSize()
  /// @param pixel  of the table's colour space and band count
  void setTableEntry(gr_uint32 index, const GRIPixel& pixel);
  /// A new pixel with an entry's values; null when memory runs out.
  std::unique_ptr<GRIPixel> getTableEntry(gr_uint32 index) const;
  gr_uint32 getTableSize() const { return m_tableSize; }
  const void* getTable() const { return m_table.data(); }

 private:
  size_t offsetOf(gr_uint16 band, gr_uint32 index) const;

  gr_uint32 m_tableSize;
  GRArray<gr_uint8> m_table;
};
