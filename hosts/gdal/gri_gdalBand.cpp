#include "hosts/gdal/gri_gdalBand.h"

GRIGdalBand::GRIGdalBand(GRIGdalDataset& dataset, int number, GDALDataType type)
    : m_picture(dataset) {
  poDS = &dataset;
  nBand = number;
  eDataType = type;
  eAccess = GA_ReadOnly;
  nRasterXSize = dataset.GetRasterXSize();
  nRasterYSize = dataset.GetRasterYSize();
  nBlockXSize = nRasterXSize;
  nBlockYSize = dataset.blockRows();
}

size_t GRIGdalBand::pictureBand() const {
  return static_cast<size_t>(m_picture.m_bandNumbers[static_cast<size_t>(nBand - 1)]);
}

GDALColorInterp GRIGdalBand::GetColorInterpretation() {
  switch (m_picture.info().bands[pictureBand()]) {
    case GRIHostColor::GRAY:
      return GCI_GrayIndex;
    case GRIHostColor::RED:
      return GCI_RedBand;
    case GRIHostColor::GREEN:
      return GCI_GreenBand;
    case GRIHostColor::BLUE:
      return GCI_BlueBand;
    case GRIHostColor::CYAN:
      return GCI_CyanBand;
    case GRIHostColor::MAGENTA:
      return GCI_MagentaBand;
    case GRIHostColor::YELLOW:
      return GCI_YellowBand;
    case GRIHostColor::BLACK:
      return GCI_BlackBand;
    case GRIHostColor::LUMA:
      return GCI_YCbCr_YBand;
    case GRIHostColor::CHROMA_BLUE:
      return GCI_YCbCr_CbBand;
    case GRIHostColor::CHROMA_RED:
      return GCI_YCbCr_CrBand;
    case GRIHostColor::ALPHA:
      return GCI_AlphaBand;
    case GRIHostColor::OTHER:
      break;
  }
  return GCI_Undefined;
}

template <typename T>
T GRIGdalBand::noData(int* isSet) const {
  const std::vector<double>& values = m_picture.info().noData;
  if (isSet != nullptr) *isSet = values.empty() ? FALSE : TRUE;
  return values.empty() ? T{} : static_cast<T>(values[pictureBand()]);
}

double GRIGdalBand::GetNoDataValue(int* isSet) { return noData<double>(isSet); }
int64_t GRIGdalBand::GetNoDataValueAsInt64(int* isSet) { return noData<int64_t>(isSet); }
uint64_t GRIGdalBand::GetNoDataValueAsUInt64(int* isSet) { return noData<uint64_t>(isSet); }

int GRIGdalBand::GetOverviewCount() { return static_cast<int>(m_picture.m_overviews.size()); }

GDALRasterBand* GRIGdalBand::GetOverview(int index) {
  if (index < 0 || index >= GetOverviewCount()) return nullptr;
  return m_picture.m_overviews[static_cast<size_t>(index)]->GetRasterBand(nBand);
}

CPLErr GRIGdalBand::IReadBlock(int, int blockRow, void* samples) {
  return m_picture.readBlock(nBand, blockRow, samples);
}

CPLErr GRIGdalBand::IRasterIO(GDALRWFlag flag, int column, int row, int columns, int rows,
                              void* buffer, int bufferColumns, int bufferRows, GDALDataType type,
                              GSpacing pixelSpace, GSpacing lineSpace,
                              GDALRasterIOExtraArg* extra) {
  if (flag == GF_Read && columns == bufferColumns && rows == bufferRows &&
      m_picture.isDirect(columns, rows)) {
    int number = nBand;
    return m_picture.IRasterIO(flag, column, row, columns, rows, buffer, bufferColumns, bufferRows,
                               type, 1, &number, pixelSpace, lineSpace, 0, extra);
  }
  return GDALRasterBand::IRasterIO(flag, column, row, columns, rows, buffer, bufferColumns,
                                   bufferRows, type, pixelSpace, lineSpace, extra);
}
