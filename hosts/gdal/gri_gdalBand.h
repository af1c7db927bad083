/// @file
/// One band of a picture as a band of GDAL's.
#pragma once

#include "hosts/gdal/gri_gdalDataset.h"

/// A band of a GRIGdalDataset, which owns it.
class GRIGdalBand final : public GDALRasterBand {
 public:
  /// @param number  in the data set, from 1
  GRIGdalBand(GRIGdalDataset& dataset, int number, GDALDataType type);

  GDALColorInterp GetColorInterpretation() override;
  double GetNoDataValue(int* isSet) override;
  int64_t GetNoDataValueAsInt64(int* isSet) override;
  uint64_t GetNoDataValueAsUInt64(int* isSet) override;
  int GetOverviewCount() override;
  GDALRasterBand* GetOverview(int index) override;

 protected:
  CPLErr IReadBlock(int blockColumn, int blockRow, void* samples) override;
  CPLErr IRasterIO(GDALRWFlag flag, int column, int row, int columns, int rows, void* buffer,
                   int bufferColumns, int bufferRows, GDALDataType type, GSpacing pixelSpace,
                   GSpacing lineSpace, GDALRasterIOExtraArg* extra) override;

 private:
  /// The no-data value of the band in T; 0 with `isSet` false when there is none.
  template <typename T>
  T noData(int* isSet) const;
  size_t pictureBand() const;

  GRIGdalDataset& m_picture;
};
