#include "gr_lib_tg2kernel/src/decode/tg2_restart.h"

#include <algorithm>

#include "gr_lib_utils/include/gr_exception.h"

namespace {

constexpr size_t FIRST_SLOTS = 64;

}  // namespace

gr_uint64 TG2RestartList::hash(const HDRestartInfo::Key& key) {
  // Odd multipliers without short patterns; the upper half of each product depends on all bits.
  gr_uint64 h = (gr_uint64{key.block} << 32 | key.record) * 0x9E3779B97F4A7C15u;
  h = (h ^ (h >> 32) ^ (gr_uint64{key.subband} << 32 | key.band)) * 0xC2B2AE3D27D4EB4Fu;
  return h ^ (h >> 32);
}

size_t TG2RestartList::slotOf(const HDRestartInfo::Key& key) const {
  const size_t mask = m_slots.size() - 1;
  size_t slot = hash(key) & mask;
  while (m_slots[slot] != NONE && !(m_entries[m_slots[slot]].key == key)) slot = (slot + 1) & mask;
  return slot;
}

const TG2RestartState* TG2RestartList::find(const HDRestartInfo::Key& key) const {
  if (m_entries.empty()) return nullptr;
  const gr_uint32 entry = m_slots[slotOf(key)];
  return entry == NONE ? nullptr : &m_entries[entry].state;
}

void TG2RestartList::makeSlots(size_t count) {
  GRArray<gr_uint32> slots;
  const GR_STATUS status = slots.allocateUninitialized(count);
  if (!GR_SUCCESS(status)) throw GRUtilException(status);
  m_slots = std::move(slots);
  std::ranges::fill(m_slots.span(), NONE);
  for (size_t i = 0; i < m_entries.size(); ++i) {
    m_slots[slotOf(m_entries[i].key)] = static_cast<gr_uint32>(i);
  }
}

void TG2RestartList::freeSlot(size_t slot) {
  const size_t mask = m_slots.size() - 1;
  for (size_t next = (slot + 1) & mask; m_slots[next] != NONE; next = (next + 1) & mask) {
    const size_t home = hash(m_entries[m_slots[next]].key) & mask;
    // Its search must not meet the free slot first.
    if (((next - home) & mask) < ((next - slot) & mask)) continue;
    m_slots[slot] = m_slots[next];
    slot = next;
  }
  m_slots[slot] = NONE;
}

void TG2RestartList::update(const HDRestartInfo::Key& key,
                            const std::optional<TG2RestartState>& state) {
  if (!state) {
    if (m_entries.empty()) return;
    const size_t slot = slotOf(key);
    const gr_uint32 gone = m_slots[slot];
    if (gone == NONE) return;
    freeSlot(slot);
    // The last entry takes the place of the one that goes.
    const size_t last = m_entries.size() - 1;
    if (gone != last) {
      m_slots[slotOf(m_entries[last].key)] = gone;
      m_entries[gone] = m_entries[last];
    }
    m_entries.truncate(last);
    return;
  }
  if (m_entries.size() * 2 >= m_slots.size()) {
    makeSlots(std::max(FIRST_SLOTS, m_slots.size() * 2));
  }
  const size_t slot = slotOf(key);
  if (m_slots[slot] != NONE) {
    m_entries[m_slots[slot]].state = *state;
    return;
  }
  if (m_entries.size() == NONE) throw GRUtilException(GR_STATUS_NO_MEMORY);
  const GR_STATUS status = m_entries.append({key, *state});
  if (!GR_SUCCESS(status)) throw GRUtilException(status);
  m_slots[slot] = static_cast<gr_uint32>(m_entries.size() - 1);
}

void TG2RestartList::clear() {
  m_entries.clear();
  m_slots.clear();
}
