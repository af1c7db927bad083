/// @file
/// A picture as a read-only data set of GDAL's.
#pragma once

#include <gdal_priv.h>

#include <memory>
#include <vector>

#include "hosts/common/gri_hostImage.h"
#include "hosts/gdal/gri_gdalStrip.h"

/// Which part of a picture a data set shows, and how.
struct GRIGdalView {
  double magnification = 1;
  GRIHostWindow window = {};    // in pixels at that magnification; of width 0: the whole picture
  std::vector<int> bands = {};  // numbers from 1, in the order wanted; empty: all of them
  bool keepGoing = false;       // what can't be decoded is filled with no-data, see damage()
};

/// Shows a window of a picture at a magnification, or the whole of it with the smaller
/// magnifications as overviews. Its blocks are strips over the whole width; windows that are
/// narrower, or larger than a block, are decoded as they are asked for, past GDAL's cache.
///
/// The picture's bands are decoded together, so read them together: through the data set, not band
/// after band. One data set serves one thread at a time, its overviews counted.
class GRIGdalDataset final : public GDALDataset {
 public:
  /// @param image  open; shared with the overviews
  /// @param error  set when the result is null: 50003 when the view doesn't fit the picture, 50001
  ///               when GDAL has no such data type
  static std::unique_ptr<GRIGdalDataset> create(std::shared_ptr<GRIHostImage> image,
                                                const GRIGdalView& view, GRIHostError& error);

  CPLErr GetGeoTransform(double* transform) override;
  const OGRSpatialReference* GetSpatialRef() const override;

  const GRIHostImageInfo& info() const { return m_image->info(); }
  /// Rows of a block: as many as keep the decoded strip below a few MiB.
  int blockRows() const { return m_blockRows; }
  /// The failure that ended the last read; none when none did.
  const GRIHostError& lastError() const { return *m_lastError; }
  /// What was lost so far where the view says to keep going; else null.
  const GRIGdalDamage* damage() const { return m_damage.get(); }

 protected:
  CPLErr IRasterIO(GDALRWFlag flag, int column, int row, int columns, int rows, void* buffer,
                   int bufferColumns, int bufferRows, GDALDataType type, int numBands,
                   int* bandNumbers, GSpacing pixelSpace, GSpacing lineSpace, GSpacing bandSpace,
                   GDALRasterIOExtraArg* extra) override;

 private:
  friend class GRIGdalBand;

  /// What a data set and its overviews have in common.
  struct Shared {
    std::shared_ptr<GRIHostImage> image;
    std::shared_ptr<GRIGdalDamage> damage;
    std::shared_ptr<GRIHostError> lastError;
  };

  GRIGdalDataset(const Shared& shared, const GRIGdalView& view, GDALDataType type);
  void addOverviews(const GRIGdalView& view, GDALDataType type);
  /// True when a read of that size is better not cut into blocks.
  bool isDirect(int columns, int rows) const;
  bool fetch(int column, int row, int columns, int rows);
  CPLErr readBlock(int band, int block, void* samples);
  void copyRow(int band, int column, int row, int columns, void* out, GDALDataType type,
               GSpacing pixelSpace) const;

  std::shared_ptr<GRIHostImage> m_image;
  std::shared_ptr<GRIGdalDamage> m_damage;
  std::shared_ptr<GRIHostError> m_lastError;
  GRIHostWindow m_window;
  double m_magnification;
  std::vector<int> m_bandNumbers;  // of the picture, from 0
  GDALDataType m_sourceType;       // of the samples as the library gives them
  int m_blockRows = 1;
  GRIGdalStrip m_strip;
  OGRSpatialReference m_spatialRef;
  std::vector<std::unique_ptr<GRIGdalDataset>> m_overviews;
};

/// The type that GDAL gives the samples of a GRIC_DATATYPE_*; GDT_Unknown where it has none. GDAL
/// of Debian 12 has no signed 8-bit type: those samples become Int16.
GDALDataType gri_gdalType(gr_int32 dataType);
