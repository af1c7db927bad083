/// @file
/// GRIPixel, an array of samples with a colour space.
#pragma once

#include <memory>

#include "gr_lib_utils/include/gr_memory.h"
#include "gr_lib_utils/include/gr_types.h"
#include "image/gri_dataTypes.h"
#include "image/gri_sample.h"

/// Both the description of an image's bands (how many, of which type, what they mean) and a
/// concrete pixel (background, no data, the limits of the range).
///
/// Constructors and assignment throw GRUtilException(8) when memory runs out.
class GRIPixel {
 public:
  /// @param colorSpace, numBands, dataType  none invalid or 0
  /// @param samples  one per band, copied; null to make them by the colour space, with value 0 and
  ///                 the alpha band last: then `numBands` is what the colour space says, which
  ///                 must be one of those that name their colours (not CMY). Band counts and
  ///                 colour spaces that come from a file are tested first: see fits().
  GRIPixel(GRIColorSpace colorSpace, gr_uint16 numBands, GRIDataType dataType,
           const GRISample* samples = nullptr);
  GRIPixel(const GRISample* samples, gr_uint16 numBands, GRIColorSpace colorSpace);
  GRIPixel(const GRIPixel& other);
  GRIPixel& operator=(const GRIPixel& other);
  virtual ~GRIPixel() = default;

  /// A copy as a pixel of its own; null when memory runs out. Nothing is thrown.
  std::unique_ptr<GRIPixel> clone() const;

  /// Whether a pixel can be made of these without samples.
  static bool fits(GRIColorSpace colorSpace, gr_uint32 numBands, GRIDataType dataType);

  /// Equal in colour space, band count and all samples.
  bool operator==(const GRIPixel& other) const;

  gr_uint16 getNumBands() const { return m_numBands; }
  GRIColorSpace getColorSpace() const { return m_colorSpace; }
  const GRISample& getSample(gr_uint16 band) const;
  GRISample& getSample(gr_uint16 band);
  /// The type of all bands, or invalid where they differ.
  GRIDataType getDataType() const;
  gr_uint32 getNumBytes() const;           ///< of one pixel, all bands
  gr_uint32 getMaxBytesPerSample() const;  ///< of the widest band

  /// Whether the other pixel can stand in for this one.
  /// @return 0; 50016 when the data types differ, else 50017 when the colour spaces differ, else
  ///         50018 when the band counts differ
  [[nodiscard]] GR_STATUS checkImpedance(const GRIPixel& other) const;

  bool isMin() const;  ///< every sample is (GRISample::isMin)
  bool isMax() const;
  void setToMin();
  void setToMax();
  /// @param bits  of every band; 1 to the width of each band's type
  void setPrecision(gr_uint32 bits);

  // One value for all bands, one value per band from an array, one band: by type.
  void setAllUint8(gr_uint8 value);
  void setAllUint16(gr_uint16 value);
  void setAllFloat32(float value);
  void setValuesUint8(const gr_uint8* values);
  void setValuesUint16(const gr_uint16* values);
  void setValuesFloat32(const float* values);
  void setSampleUint8(gr_uint16 band, gr_uint8 value);
  void setSampleUint16(gr_uint16 band, gr_uint16 value);
  void setSampleFloat32(gr_uint16 band, float value);
  /// The bytes of one band's value, in the machine's order.
  void setSampleValueBytes(gr_uint16 band, const void* value);

 private:
  void copySamples(const GRISample* samples);

  GRArray<GRISample> m_samples;
  gr_uint16 m_numBands = 0;
  GRIColorSpace m_colorSpace = GRI_COLORSPACE_INVALID;
};
