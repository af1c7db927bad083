/// @file
/// GRIMetadataDatabase, the list of records that every image carries.
#pragma once

#include <memory>

#include "gr_lib_utils/include/gr_memory.h"
#include "gr_lib_utils/include/gr_types.h"
#include "metadata/gri_metadataRecord.h"

/// Records in the order in which they were added, which is the order a host sees. A tag occurs at
/// most once; a search for it doesn't depend on how many there are.
///
/// Not guarded: a reader fills it while it opens, and from then on it is only read, which several
/// threads may do.
class GRIMetadataDatabase {
 public:
  GRIMetadataDatabase() = default;
  /// Copies all records. Throws GRUtilException(8).
  GRIMetadataDatabase(const GRIMetadataDatabase& other);
  GRIMetadataDatabase& operator=(const GRIMetadataDatabase&) = delete;
  virtual ~GRIMetadataDatabase() = default;

  /// Adds a copy at the end.
  /// @return 0; 50504 when the tag is there already; 8 for memory
  [[nodiscard]] GR_STATUS add(const GRIMetadataRecord& record);
  /// Takes the record over, also on failure, and adds it at the end.
  /// @return as above; 50501 for null
  [[nodiscard]] GR_STATUS add(std::unique_ptr<GRIMetadataRecord> record);
  /// Adds copies of all records of `other` in their order, or on failure none.
  /// @return 0; 50504 when one of the tags is there already; 8 for memory
  [[nodiscard]] GR_STATUS add(const GRIMetadataDatabase& other);

  /// Whether the tag is there; a null name is not.
  bool has(const char* tag) const;
  bool has(gr_int32 tagNumber) const;
  /// @param record  the record, which stays the database's, or null
  /// @return 0; 50503 when the tag isn't there
  [[nodiscard]] GR_STATUS get(const char* tag, const GRIMetadataRecord*& record) const;
  [[nodiscard]] GR_STATUS get(gr_int32 tagNumber, const GRIMetadataRecord*& record) const;

  /// Removes a record; those behind it move up. Many removals in a row leave gaps among the
  /// records, which make getDataByIndex slow until closeGaps() is called.
  /// @return 0; 50503 when the tag isn't there
  [[nodiscard]] GR_STATUS remove(const char* tag);
  [[nodiscard]] GR_STATUS remove(gr_int32 tagNumber);
  void removeAll();
  void closeGaps();

  /// The number of records.
  gr_uint32 getIndexCount() const { return m_count - m_numGaps; }
  /// @param record  record number `index`, which stays the database's, or null
  /// @return 0; 50503 when `index` is at or past getIndexCount()
  [[nodiscard]] GR_STATUS getDataByIndex(gr_uint32 index, const GRIMetadataRecord*& record) const;

  /// Bytes of all records as files store them (GRIMetadataRecord::getSerializedSize).
  gr_uint64 getSerializedSize() const;
  /// Puts the records in the order of their tags.
  void sort();

 private:
  static constexpr size_t NOT_FOUND = ~size_t{0};

  size_t findSlot(const char* tag) const;
  GR_STATUS reserve(gr_uint64 count);
  void append(std::unique_ptr<GRIMetadataRecord> record);
  void enterSlot(gr_uint32 index);
  void leaveSlot(size_t slot);
  void rebuildSlots();

  gr_uint64 hashOf(const char* tag) const;

  // Room; the first m_count are in use, of which m_numGaps were removed and are null.
  GRArray<std::unique_ptr<GRIMetadataRecord>> m_records;
  gr_uint32 m_count = 0;
  gr_uint32 m_numGaps = 0;
  // Hash table with open addressing: the place of a record, from 1, or 0.
  GRArray<gr_uint32> m_slots;
};
