#include "hosts/common/gri_hostJson.h"

#include <cstring>

namespace {

using Json = nlohmann::ordered_json;

/// Value number `index`. 64-bit integers keep all their digits.
Json valueJson(const GRIHostRecord& record, size_t index) {
  switch (record.dataType) {
    case GRIC_METADATA_DATATYPE_ASCII:
      return record.text(index);
    case GRIC_METADATA_DATATYPE_FLOAT32:
    case GRIC_METADATA_DATATYPE_FLOAT64:
      return record.number(index);
    case GRIC_METADATA_DATATYPE_UINT64:
    case GRIC_METADATA_DATATYPE_SINT64: {
      gr_int64 value = 0;
      std::memcpy(&value, static_cast<const char*>(record.data) + 8 * index, sizeof value);
      if (record.dataType == GRIC_METADATA_DATATYPE_SINT64) return value;
      return static_cast<gr_uint64>(value);
    }
    default:
      return static_cast<gr_int64>(record.number(index));
  }
}

/// The values of the dimensions from `dimension` on; `next` is the first of them, and moves past.
Json nestedJson(const GRIHostRecord& record, size_t dimension, size_t& next) {
  if (dimension == record.dims.size()) return valueJson(record, next++);
  Json values = Json::array();
  for (gr_uint32 i = 0; i < record.dims[dimension]; ++i) {
    values.push_back(nestedJson(record, dimension + 1, next));
  }
  return values;
}

Json recordJson(const GRIHostRecord& record) {
  Json value = Json::array();
  size_t next = 0;
  if (record.isScalar()) {
    value = valueJson(record, 0);
  } else if (record.count() > 0) {
    value = nestedJson(record, 0, next);
  }
  Json dims = Json::array();
  for (const gr_uint32 extent : record.dims) dims.push_back(extent);
  return {{"tag", gri_hostUtf8(record.tag)},
          {"type", gri_hostMetadataTypeName(record.dataType)},
          {"dims", std::move(dims)},
          {"value", std::move(value)}};
}

Json cornerJson(const GRIHostPosition& position, double column, double row) {
  double x = 0;
  double y = 0;
  position.toGround(column - 0.5, row - 0.5, x, y);
  return {x, y};
}

}  // namespace

Json gri_hostInfoJson(const GRIHostImage& image) {
  const GRIHostImageInfo& info = image.info();
  Json json;
  json["format"] = info.content.name;
  json["size"] = {info.width, info.height};
  json["tiles"] = info.tiles;
  json["bands"] = Json::array();
  for (const GRIHostColor color : info.bands) json["bands"].push_back(gri_hostColorName(color));
  json["colorSpace"] = gri_hostColorSpaceName(info.colorSpace);
  json["dataType"] = gri_hostSampleName(info.dataType);
  json["bits"] = info.bits;
  json["magnifications"] = Json::array();
  for (const GRIHostLevel& level : info.levels) {
    json["magnifications"].push_back(
        {{"magnification", level.magnification}, {"size", {level.width, level.height}}});
  }
  json["magnificationRange"] = {info.minMagnification, info.maxMagnification};
  json["position"] = nullptr;
  json["corners"] = nullptr;
  if (info.position) {
    const GRIHostPosition& p = *info.position;
    json["position"] = {{"origin", {p.xOrigin, p.yOrigin}},
                        {"resolution", {p.xResolution, p.yResolution}},
                        {"rotation", {p.xRotation, p.yRotation}}};
    json["corners"] = {{"upperLeft", cornerJson(p, 0, 0)},
                       {"upperRight", cornerJson(p, info.width, 0)},
                       {"lowerRight", cornerJson(p, info.width, info.height)},
                       {"lowerLeft", cornerJson(p, 0, info.height)}};
  }
  json["crs"] = nullptr;
  if (!info.crs.empty()) json["crs"] = {{"wkt", info.crs}};
  json["noData"] = nullptr;
  if (!info.noData.empty()) json["noData"] = info.noData;
  json["locked"] = info.isLocked;
  json["metadata"] = gri_hostMetadataJson(image);
  return json;
}

Json gri_hostMetadataJson(const GRIHostImage& image) {
  Json records = Json::array();
  const size_t count = image.recordCount();
  for (size_t i = 0; i < count; ++i) {
    GRIHostRecord record;
    if (image.record(i, record)) records.push_back(recordJson(record));
  }
  return records;
}
