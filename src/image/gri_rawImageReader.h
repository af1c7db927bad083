/// @file
/// GRIRawImageReader, uncompressed samples in rows.
#pragma once

#include <memory>

#include "gr_lib_utils/include/gr_fileSpec.h"
#include "gr_lib_utils/include/gr_ioStream.h"
#include "gr_lib_utils/include/gr_memory.h"
#include "image/gri_geoImageReader.h"

/// How the bands of a raw image lie together.
enum GRIRawLayout : gr_int32 {
  GRI_RAW_LAYOUT_BIP = 1,  ///< band interleaved by pixel
  GRI_RAW_LAYOUT_BSQ = 2,  ///< band sequential
  GRI_RAW_LAYOUT_BIL = 3,  ///< band interleaved by line
};

/// Reads a rectangle of samples that a stream holds row after row, between a header and a trailer
/// that it skips. It holds a few rows of the scene's width, whatever the size of the image.
///
/// What describes the samples is set before initialize.
class GRIRawImageReader : public GRIGeoImageReader {
 public:
  GRIRawImageReader() = default;

  void setRowLength(gr_uint64 bytes) { m_rowLength = bytes; }  ///< 0: rows without padding
  void setLayout(GRIRawLayout layout) { m_layout = layout; }
  void setHeaderLength(gr_uint64 bytes) { m_headerLength = bytes; }
  void setTrailerLength(gr_uint64 bytes) { m_trailerLength = bytes; }
  void setByteOrder(GRIEndian byteOrder) { m_byteOrder = byteOrder; }
  /// Whether the relation of image to file is recorded in the metadata.
  void setRecordsCompressionRatio(bool records) { m_recordsCompressionRatio = records; }
  /// The position; without it the image has the default one. Copied; 0 or 8.
  [[nodiscard]] GR_STATUS setInputGeoCoord(const GRIGeoCoord& geoCoord);

  /// @param stream  open or closed, and left so; it stays the caller's and outlives the reader
  /// @param pixelProps  bands of one of the ten sample types
  /// @param width, height  in pixels, above 0
  /// @return 0; 50001 for bands of different or other types; 50025 when the stream isn't empty and
  ///         hasn't just the size of header, rows and trailer; the stream's status when it can't
  ///         be opened or measured; 8
  [[nodiscard]] GR_STATUS initialize(GRIOStreamInf* stream, const GRIPixel& pixelProps,
                                     gr_uint32 width, gr_uint32 height);
  /// The same on a file. @return as above; 50004 when there is no such file
  [[nodiscard]] GR_STATUS initialize(const GRFileSpec& path, const GRIPixel& pixelProps,
                                     gr_uint32 width, gr_uint32 height);

  gr_int64 getSourceFileSize() const override { return m_streamSize; }
  GR_STATUS decodeBegin(const GRIScene& scene) override;
  GR_STATUS decodeStrip(GRISceneBuffer& buffer, const GRIScene& stripScene) override;
  GR_STATUS decodeEnd() override;

 private:
  /// A rectangle of the image, in pixels.
  struct Rectangle {
    gr_uint32 col, row, numCols, numRows;
  };

  GR_STATUS measureStream();
  GR_STATUS setProperties(const GRIPixel& pixelProps, gr_uint32 width, gr_uint32 height);
  bool isWholeRow(gr_uint32 numCols) const;
  GR_STATUS readAt(gr_uint64 offset, void* to, gr_uint64 length);
  GR_STATUS readInterleaved(GRISceneBuffer& buffer, const Rectangle& rectangle);
  GR_STATUS readBand(GRISceneBuffer& buffer, gr_uint16 band, const Rectangle& rectangle);
  GR_STATUS readByLine(GRISceneBuffer& buffer, const Rectangle& rectangle);
  void toHostOrder(GRISceneBuffer& buffer) const;

  std::unique_ptr<GRIOStreamInf> m_ownedStream;
  GRIOStreamInf* m_stream = nullptr;
  gr_int64 m_streamSize = 0;      // bytes
  gr_uint64 m_rowLength = 0;      // bytes from row to row, of a pixel's or of one band's samples
  gr_uint64 m_headerLength = 0;   // bytes
  gr_uint64 m_trailerLength = 0;  // bytes
  gr_uint32 m_sampleBytes = 1;
  GRIRawLayout m_layout = GRI_RAW_LAYOUT_BIP;
  GRIEndian m_byteOrder = GRI_ENDIAN_HOST;
  bool m_recordsCompressionRatio = false;
  bool m_hasInputGeoCoord = false;

  gr_uint64 m_position = 0;  // of the stream, during a strip
  GRArray<gr_uint8> m_rows;  // a few pixel-interleaved rows of the scene's width
};
