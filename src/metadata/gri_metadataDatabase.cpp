#include "metadata/gri_metadataDatabase.h"

#include <algorithm>
#include <bit>
#include <cassert>
#include <cstdint>
#include <cstring>

#include "gr_lib_utils/include/gr_exception.h"
#include "metadata/gri_metadataTags.h"
#include "metadata/gri_tagHash.h"

namespace {

constexpr gr_uint64 MAX_RECORDS = 0x40000000;  // slots are twice as many, and count in 32 bits
constexpr gr_uint64 MIN_ROOM = 16;             // records

/// A copy of a record, or null when memory runs out.
std::unique_ptr<GRIMetadataRecord> copyOf(const GRIMetadataRecord& record) {
  try {
    return gr_makeUnique<GRIMetadataRecord>(record);
  } catch (const GRUtilException&) {
    return nullptr;
  }
}

}  // namespace

GRIMetadataDatabase::GRIMetadataDatabase(const GRIMetadataDatabase& other) {
  const GR_STATUS status = add(other);
  if (!GR_SUCCESS(status)) throw GRUtilException(status);
}

GR_STATUS GRIMetadataDatabase::add(const GRIMetadataRecord& record) {
  if (has(record.getTagName())) return GRI_STATUS_TAG_DUPLICATE;
  GR_RETURN_IF_FAILED(reserve(gr_uint64{m_count} + 1));
  std::unique_ptr<GRIMetadataRecord> copy = copyOf(record);
  if (copy == nullptr) return GR_STATUS_NO_MEMORY;
  append(std::move(copy));
  return GR_STATUS_OK;
}

GR_STATUS GRIMetadataDatabase::add(std::unique_ptr<GRIMetadataRecord> record) {
  if (record == nullptr) return GRI_STATUS_METADATA_INTERNAL;
  if (has(record->getTagName())) return GRI_STATUS_TAG_DUPLICATE;
  GR_RETURN_IF_FAILED(reserve(gr_uint64{m_count} + 1));
  append(std::move(record));
  return GR_STATUS_OK;
}

GR_STATUS GRIMetadataDatabase::add(const GRIMetadataDatabase& other) {
  GRArray<std::unique_ptr<GRIMetadataRecord>> copies;
  GR_RETURN_IF_FAILED(copies.allocate(other.getIndexCount()));
  auto* copy = copies.begin();
  for (gr_uint32 i = 0; i < other.m_count; ++i) {
    if (other.m_records[i] == nullptr) continue;
    if (has(other.m_records[i]->getTagName())) return GRI_STATUS_TAG_DUPLICATE;
    *copy = copyOf(*other.m_records[i]);
    if (*copy++ == nullptr) return GR_STATUS_NO_MEMORY;
  }
  GR_RETURN_IF_FAILED(reserve(gr_uint64{m_count} + copies.size()));
  for (std::unique_ptr<GRIMetadataRecord>& made : copies) append(std::move(made));
  return GR_STATUS_OK;
}

bool GRIMetadataDatabase::has(const char* tag) const { return findSlot(tag) != NOT_FOUND; }

bool GRIMetadataDatabase::has(gr_int32 tagNumber) const {
  return has(GRIMetadataUtilities::convertTagToString(tagNumber));
}

GR_STATUS GRIMetadataDatabase::get(const char* tag, const GRIMetadataRecord*& record) const {
  const size_t slot = findSlot(tag);
  record = slot == NOT_FOUND ? nullptr : m_records[m_slots[slot] - 1].get();
  return record != nullptr ? GR_STATUS_OK : GRI_STATUS_TAG_NOT_FOUND;
}

GR_STATUS GRIMetadataDatabase::get(gr_int32 tagNumber, const GRIMetadataRecord*& record) const {
  return get(GRIMetadataUtilities::convertTagToString(tagNumber), record);
}

GR_STATUS GRIMetadataDatabase::remove(const char* tag) {
  const size_t slot = findSlot(tag);
  if (slot == NOT_FOUND) return GRI_STATUS_TAG_NOT_FOUND;
  m_records[m_slots[slot] - 1] = nullptr;
  leaveSlot(slot);
  // Closing the gaps at once would take time in proportion to all records, for each of them.
  if (++m_numGaps > m_count / 2) closeGaps();
  return GR_STATUS_OK;
}

void GRIMetadataDatabase::closeGaps() {
  if (m_numGaps == 0) return;
  auto* const end = std::remove(m_records.begin(), m_records.begin() + m_count, nullptr);
  m_count = static_cast<gr_uint32>(end - m_records.begin());
  m_numGaps = 0;
  rebuildSlots();
}

GR_STATUS GRIMetadataDatabase::remove(gr_int32 tagNumber) {
  return remove(GRIMetadataUtilities::convertTagToString(tagNumber));
}

void GRIMetadataDatabase::removeAll() {
  m_records.clear();
  m_slots.clear();
  m_count = 0;
  m_numGaps = 0;
  assert(getIndexCount() == 0);
}

GR_STATUS GRIMetadataDatabase::getDataByIndex(gr_uint32 index,
                                              const GRIMetadataRecord*& record) const {
  record = nullptr;
  if (m_numGaps == 0) {
    record = index < m_count ? m_records[index].get() : nullptr;
  } else {
    gr_uint32 left = index;
    for (gr_uint32 i = 0; i < m_count && record == nullptr; ++i) {
      if (m_records[i] != nullptr && left-- == 0) record = m_records[i].get();
    }
  }
  return record != nullptr ? GR_STATUS_OK : GRI_STATUS_TAG_NOT_FOUND;
}

gr_uint64 GRIMetadataDatabase::getSerializedSize() const {
  gr_uint64 size = 0;
  for (gr_uint32 i = 0; i < m_count; ++i) {
    if (m_records[i] != nullptr) size += m_records[i]->getSerializedSize();
  }
  return size;
}

void GRIMetadataDatabase::sort() {
  closeGaps();
  std::sort(m_records.begin(), m_records.begin() + m_count, [](const auto& a, const auto& b) {
    return std::strcmp(a->getTagName(), b->getTagName()) < 0;
  });
  rebuildSlots();
}

/// The slots lie at another address in each process, which nobody who made a file can know.
gr_uint64 GRIMetadataDatabase::hashOf(const char* tag) const {
  constexpr gr_uint64 SECOND_KEY = 0x9E3779B97F4A7C15;
  return gri_tagHash(reinterpret_cast<uintptr_t>(m_slots.data()), SECOND_KEY, tag);
}

size_t GRIMetadataDatabase::findSlot(const char* tag) const {
  if (tag == nullptr || m_count == 0) return NOT_FOUND;
  const size_t mask = m_slots.size() - 1;
  // At most half of the slots are taken, so an empty one ends the search.
  for (size_t slot = hashOf(tag) & mask; m_slots[slot] != 0; slot = (slot + 1) & mask) {
    if (std::strcmp(m_records[m_slots[slot] - 1]->getTagName(), tag) == 0) return slot;
  }
  return NOT_FOUND;
}

/// Empties a slot, whose record is gone already. The slots behind it move up as far as a search for
/// them allows: one that stayed marked would make each search for its tag longer.
void GRIMetadataDatabase::leaveSlot(size_t slot) {
  const size_t mask = m_slots.size() - 1;
  for (size_t next = (slot + 1) & mask; m_slots[next] != 0; next = (next + 1) & mask) {
    const size_t home = hashOf(m_records[m_slots[next] - 1]->getTagName()) & mask;
    const bool isFoundFromSlot = ((next - home) & mask) >= ((next - slot) & mask);
    if (!isFoundFromSlot) continue;
    m_slots[slot] = m_slots[next];
    slot = next;
  }
  m_slots[slot] = 0;
}

/// Makes room for `count` records, so that append can't fail.
GR_STATUS GRIMetadataDatabase::reserve(gr_uint64 count) {
  if (count <= m_records.size()) return GR_STATUS_OK;
  if (count > MAX_RECORDS) return GR_STATUS_NO_MEMORY;
  const gr_uint64 room = std::bit_ceil(std::max(count, MIN_ROOM));
  GRArray<std::unique_ptr<GRIMetadataRecord>> records;
  GRArray<gr_uint32> slots;
  GR_RETURN_IF_FAILED(records.allocate(room));
  GR_RETURN_IF_FAILED(slots.allocate(2 * room));
  std::move(m_records.begin(), m_records.begin() + m_count, records.begin());
  m_records = std::move(records);
  m_slots = std::move(slots);
  rebuildSlots();
  return GR_STATUS_OK;
}

void GRIMetadataDatabase::append(std::unique_ptr<GRIMetadataRecord> record) {
  assert(m_count < m_records.size());
  m_records[m_count] = std::move(record);
  enterSlot(m_count++);
}

void GRIMetadataDatabase::enterSlot(gr_uint32 index) {
  const size_t mask = m_slots.size() - 1;
  size_t slot = hashOf(m_records[index]->getTagName()) & mask;
  while (m_slots[slot] != 0) slot = (slot + 1) & mask;
  m_slots[slot] = index + 1;
}

void GRIMetadataDatabase::rebuildSlots() {
  std::fill(m_slots.begin(), m_slots.end(), 0u);
  for (gr_uint32 i = 0; i < m_count; ++i) {
    if (m_records[i] != nullptr) enterSlot(i);
  }
}
