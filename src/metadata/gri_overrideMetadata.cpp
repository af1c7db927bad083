// GRIOverrideMetadataData: the part of the mixins that needs to know what a record is.

#include "gr_lib_utils/include/gr_memory.h"
#include "gr_lib_utils/include/gr_status.h"
#include "image/gri_overridesData.h"
#include "metadata/gri_metadataAcc.h"
#include "metadata/gri_metadataDatabase.h"

GRIOverrideMetadataData::GRIOverrideMetadataData() = default;

GRIOverrideMetadataData::~GRIOverrideMetadataData() = default;

const GRIMetadataDatabase& GRIOverrideMetadataData::get() const {
  static const GRIMetadataDatabase NO_RECORDS;
  return metadata != nullptr ? *metadata : NO_RECORDS;
}

GRIMetadataDatabase* GRIOverrideMetadataData::edit() {
  if (metadata == nullptr) metadata = gr_makeUnique<GRIMetadataDatabase>();
  return metadata.get();
}

GR_STATUS GRIOverrideMetadataData::set(const GRIMetadataDatabase* records) {
  // Built apart, so that running out of memory leaves what was there; `records` may be ours.
  auto copy = gr_makeUnique<GRIMetadataDatabase>();
  if (copy == nullptr) return GR_STATUS_NO_MEMORY;
  if (records != nullptr) GR_RETURN_IF_FAILED(copy->add(*records));
  metadata = std::move(copy);
  return GR_STATUS_OK;
}

GR_STATUS GRIOverrideMetadataData::addInputName(const char* name) {
  GRIMetadataDatabase* records = edit();
  if (records == nullptr) return GR_STATUS_NO_MEMORY;
  if (name == nullptr || records->has(GRI_TAG_IMAGE_INPUT_NAME)) return GR_STATUS_OK;
  return GRIMetadataAcc(*records).setInputName(name);
}

GR_STATUS GRIOverrideMetadataData::addCompressionRatio(double ratio) {
  GRIMetadataDatabase* records = edit();
  if (records == nullptr) return GR_STATUS_NO_MEMORY;
  if (records->has(GRI_TAG_IMAGE_TARGET_COMPRESSION_RATIO)) return GR_STATUS_OK;
  return GRIMetadataAcc(*records).setTargetCompressionRatio(ratio);
}
