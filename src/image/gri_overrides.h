/// @file
/// The GRIOverride* mixins, each a property that a stage holds itself, where a filter forwards it.
///
/// Each is a class template over its base and keeps a plain structure of its name with "Data"
/// behind it. A reader stacks all of them on GRIImageStage, a filter those few that it changes on
/// GRIImageFilter.
#pragma once

#include "gr_lib_utils/include/gr_types.h"
#include "image/gri_overridesData.h"

template <typename Base>
class GRIOverrideDimensions : public Base {
 public:
  gr_uint32 getWidth() const override { return m_dimensions.width; }
  gr_uint32 getHeight() const override { return m_dimensions.height; }

 protected:
  void setDimensions(gr_uint32 width, gr_uint32 height) { m_dimensions = {width, height}; }

 private:
  GRIOverrideDimensionsData m_dimensions;
};

template <typename Base>
class GRIOverridePixelProps : public Base {
 public:
  const GRIPixel& getPixelProps() const override { return *m_pixelProps.pixelProps; }
  const GRIPixel& getMinDynamicRange() const override { return *m_pixelProps.min; }
  const GRIPixel& getMaxDynamicRange() const override { return *m_pixelProps.max; }
  GR_STATUS setDynamicRange(const GRIPixel& min, const GRIPixel& max) override {
    return m_pixelProps.setDynamicRange(min, max);
  }
  GR_STATUS setPrecision(gr_uint8 bits) override { return m_pixelProps.setPrecision(bits); }

 protected:
  /// Replaces the pixel, and sets the range to that of the type. @return 0 or 8
  GR_STATUS setPixelProps(const GRIPixel& pixel) { return m_pixelProps.setPixelProps(pixel); }
  bool hasPixelProps() const { return m_pixelProps.pixelProps != nullptr; }

 private:
  GRIOverridePixelPropsData m_pixelProps;
};

template <typename Base>
class GRIOverrideBackgroundPixel : public Base {
 public:
  const GRIPixel* getBackgroundPixel() const override { return m_pixels.background.get(); }
  const GRIPixel* getNoDataPixel() const override { return m_pixels.noData.get(); }
  GR_STATUS setBackgroundPixel(const GRIPixel* pixel) override {
    return GRIOverrideBackgroundPixelData::replace(m_pixels.background, pixel);
  }
  GR_STATUS setNoDataPixel(const GRIPixel* pixel) override {
    return GRIOverrideBackgroundPixelData::replace(m_pixels.noData, pixel);
  }

 private:
  GRIOverrideBackgroundPixelData m_pixels;
};

template <typename Base>
class GRIOverrideGeoCoord : public Base {
 public:
  const GRIGeoCoord& getGeoCoord() const override { return m_geoCoord.geoCoord; }
  bool isGeoCoordImplicit() const override { return m_geoCoord.isImplicit; }
  GR_STATUS setGeoCoord(const GRIGeoCoord& geoCoord) override { return m_geoCoord.set(geoCoord); }

 protected:
  /// The coordinate of an image without a position: row numbers map to y going up from 0 at the
  /// bottom row. @return 0 or 8
  GR_STATUS setDefaultGeoCoord(const GRIImage& image) { return m_geoCoord.setDefault(image); }

 private:
  GRIOverrideGeoCoordData m_geoCoord;
};

template <typename Base>
class GRIOverrideMagnification : public Base {
 public:
  double getMinMagnification() const override { return m_magnification.min; }
  double getMaxMagnification() const override { return m_magnification.max; }

 protected:
  void setMagnificationRange(double min, double max) { m_magnification = {min, max}; }

 private:
  GRIOverrideMagnificationData m_magnification;
};

template <typename Base>
class GRIOverrideIsSelective : public Base {
 public:
  bool isSelective() const override { return m_selective.isSelective; }

 protected:
  void setSelective(bool isSelective) { m_selective.isSelective = isSelective; }

 private:
  GRIOverrideIsSelectiveData m_selective;
};

template <typename Base>
class GRIOverrideStripHeight : public Base {
 public:
  gr_uint32 getStripHeight() const override { return m_stripHeight.stripHeight; }
  GR_STATUS setStripHeight(gr_uint32 stripHeight) override {
    m_stripHeight.stripHeight = stripHeight;
    return 0;
  }

 private:
  GRIOverrideStripHeightData m_stripHeight;
};

template <typename Base>
class GRIOverrideDelegates : public Base {
 public:
  void setProgressDelegate(GRIProgressDelegate* delegate) override {
    m_delegates.progress = delegate;
  }
  GRIProgressDelegate* getProgressDelegate() const override { return m_delegates.progress; }
  void setInterruptDelegate(GRIInterruptDelegate* delegate) override {
    m_delegates.interrupt = delegate;
  }
  GRIInterruptDelegate* getInterruptDelegate() const override { return m_delegates.interrupt; }

 private:
  GRIOverrideDelegatesData m_delegates;
};

template <typename Base>
class GRIOverridePixelLookupTables : public Base {
 public:
  const GRIPixelLookupTable* getPixelLookupTable() const override { return m_table.table.get(); }
  GR_STATUS setPixelLookupTable(const GRIPixelLookupTable* table) override {
    return m_table.set(table);
  }

 private:
  GRIOverridePixelLookupTablesData m_table;
};

template <typename Base>
class GRIOverrideMetadata : public Base {
 public:
  const GRIMetadataDatabase& getMetadata() const override { return m_metadata.get(); }
  /// Empties the records, then adds copies of the given ones, if any.
  GR_STATUS setMetadata(const GRIMetadataDatabase* metadata) override {
    return m_metadata.set(metadata);
  }

 protected:
  /// The records, to be filled; null when memory runs out.
  GRIMetadataDatabase* editMetadata() { return m_metadata.edit(); }
  /// Records where the image came from, the ID of its stream for example. @return 0 or 8
  GR_STATUS addInputName(const char* name) { return m_metadata.addInputName(name); }
  /// Records bytes of samples to bytes of file. @return 0 or 8
  GR_STATUS addCompressionRatio(double ratio) { return m_metadata.addCompressionRatio(ratio); }

 private:
  GRIOverrideMetadataData m_metadata;
};
