/// @file
/// NITFImageSegment, one image of a NITF file.
#pragma once

#include <memory>

#include "image/gri_pixel.h"
#include "nitf/nitf_blockTable.h"
#include "nitf/nitf_imageMask.h"
#include "nitf/nitf_imageSubheader.h"
#include "nitf/nitf_segment.h"

/// The order of the samples in the file, IMODE.
enum NITFLayout : gr_int32 {
  NITF_LAYOUT_NONE = 0,
  NITF_LAYOUT_BLOCK = 1,       ///< "B": band after band in each block
  NITF_LAYOUT_PIXEL = 2,       ///< "P": the bands of each pixel together
  NITF_LAYOUT_ROW = 3,         ///< "R": the bands of each row of a block together
  NITF_LAYOUT_SEQUENTIAL = 4,  ///< "S": all blocks of a band, then those of the next
};

/// The way in which the samples are stored, IC.
enum NITFCompression : gr_int32 {
  NITF_COMPRESSION_OTHER = 0,
  NITF_COMPRESSION_NONE = 1,
  NITF_COMPRESSION_BILEVEL = 2,
  NITF_COMPRESSION_JPEG = 3,
  NITF_COMPRESSION_VQ = 4,
  NITF_COMPRESSION_LOSSLESS_JPEG = 5,
  NITF_COMPRESSION_DOWNSAMPLED_JPEG = 6,
  NITF_COMPRESSION_JPEG2000 = 7,
};

/// Reads the subheader and decides whether and how the image can be read. One that can't be read is
/// no failure of the file: the reason is kept as the status of the image.
class NITFImageSegment : public NITFSegment {
 public:
  NITFImageSegment(const NITFImageManager& manager, GRIOStreamInf& stream,
                   const NITFSegmentPlace& place)
      : NITFSegment(manager, stream, "IM", NITFAreas::USER_AND_EXTENSION, place) {}

  /// @return as NITFSegment::initialize; 51211 for an encrypted image; 51210 for a mask whose
  ///         lengths don't fit
  [[nodiscard]] GR_STATUS initialize() override;

  const char* getIdentifier() const override { return m_header.IID1.text(); }
  /// Why the image can't be read:
  /// 0; 51201 data type; 51202 colour space; 51205 look-up tables; 51210 fields that don't agree;
  /// 51215 to 51219 compression; 51221 samples that aren't whole bytes; 51225 justification.
  GR_STATUS getStatus() const { return m_status; }

  const NITFImageSubheader& getHeader() const { return m_header; }
  NITFLayout getLayout() const { return m_layout; }
  NITFCompression getCompression() const { return m_compression; }
  bool isMasked() const { return m_isMasked; }
  bool isBlocked() const { return m_header.NBPR > 1 || m_header.NBPC > 1; }
  /// The bands; only where the status is 0.
  const GRIPixel& getPixelProps() const { return *m_pixelProps; }
  const NITFImageMask& getMask() const { return m_mask; }
  const NITFBlockTable& getBlocks() const { return m_blocks; }
  /// Bytes of a block, with all its bands unless the layout is sequential.
  gr_uint64 getBlockBytes() const;

  /// Makes a stream over the pixels, from the first pixel byte to the end of the data area. It is
  /// open, at its begin, and has a position of its own.
  /// With the environment variable NITF_DUMP, the pixels are also written to the file "image.dat".
  /// @return 0; 51230 when the file's stream can't be duplicated; the status of opening it; 8
  [[nodiscard]] GR_STATUS getImageStream(std::unique_ptr<GRIOStreamInf>& stream) const;

 protected:
  [[nodiscard]] GR_STATUS readHeader(NITFFieldReader& fields) override;

 private:
  GR_STATUS interpret();
  GR_STATUS interpretCompression();
  GR_STATUS interpretLayout();
  GR_STATUS interpretPixel();
  GR_STATUS interpretColor(GRIColorSpace& colorSpace) const;
  GR_STATUS interpretDataType(GRIDataType& dataType) const;
  GR_STATUS checkBlocks() const;
  gr_uint64 countBlocks() const;

  NITFImageSubheader m_header;
  GR_STATUS m_status = GR_STATUS_OK;
  NITFLayout m_layout = NITF_LAYOUT_NONE;
  NITFCompression m_compression = NITF_COMPRESSION_OTHER;
  bool m_isMasked = false;
  std::unique_ptr<GRIPixel> m_pixelProps;
  NITFImageMask m_mask;
  NITFBlockTable m_blocks;
};
