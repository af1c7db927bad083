#include "image/gri_maskRowBuilder.h"

#include <algorithm>
#include <cassert>
#include <limits>
#include <utility>

#include "gr_lib_utils/include/gr_exception.h"

namespace {

constexpr gr_uint64 GROWTH_RUNS = 256;

}  // namespace

void GRIMaskRowBuilder::ensureRoom(gr_uint64 count) {
  if (count <= m_row.m_runs.size()) return;
  // A row whose runs can't be counted in 32 bits counts as one that memory can't hold.
  constexpr gr_uint64 LIMIT = std::numeric_limits<gr_uint32>::max() - GROWTH_RUNS;
  GRArray<GRIMaskRun> runs;
  const GR_STATUS status =
      count > LIMIT
          ? GR_STATUS_NO_MEMORY
          : runs.allocateUninitialized((count + GROWTH_RUNS - 1) / GROWTH_RUNS * GROWTH_RUNS);
  if (!GR_SUCCESS(status)) {
    m_row = GRIMaskRow();
    throw GRUtilException(status);
  }
  std::copy(m_row.begin(), m_row.end(), runs.begin());
  m_row.m_runs = std::move(runs);
}

void GRIMaskRowBuilder::add(gr_int32 first, gr_int32 last) {
  assert(first <= last);
  ensureRoom(gr_uint64{m_row.m_count} + 1);
  m_row.m_runs[m_row.m_count++] = {first, last};
}

void GRIMaskRowBuilder::addGaps(const GRIMaskRow* row, gr_int32 first, gr_int32 last) {
  gr_int64 next = first;  // 64 bits: a run may end at the largest column
  if (row != nullptr) {
    for (const GRIMaskRun& run : *row) {
      if (next > last) return;
      if (run.first > next) {
        add(static_cast<gr_int32>(next),
            static_cast<gr_int32>(std::min<gr_int64>(last, gr_int64{run.first} - 1)));
      }
      // Runs that end before `first` must not move the start back to them.
      next = std::max(next, gr_int64{run.last} + 1);
    }
  }
  if (next <= last) add(static_cast<gr_int32>(next), last);
}

void GRIMaskRowBuilder::addRow(const GRIMaskRow* row) {
  if (row == nullptr) return;
  ensureRoom(gr_uint64{m_row.m_count} + row->count());
  for (const GRIMaskRun& run : *row) addRun(run);
}

void GRIMaskRowBuilder::unite(const GRIMaskRow& a, const GRIMaskRow& b) {
  const GRIMaskRun* nextA = a.begin();
  const GRIMaskRun* nextB = b.begin();
  const auto takeNext = [&] {
    const bool fromA = nextB == b.end() || (nextA != a.end() && nextA->first <= nextB->first);
    return fromA ? *nextA++ : *nextB++;
  };
  if (a.empty() && b.empty()) return;
  GRIMaskRun current = takeNext();
  while (nextA != a.end() || nextB != b.end()) {
    const GRIMaskRun taken = takeNext();
    if (taken.first > current.last) {
      addRun(current);
      current = taken;
    } else {
      current.last = std::max(current.last, taken.last);
    }
  }
  addRun(current);
}

void GRIMaskRowBuilder::intersect(const GRIMaskRow& a, const GRIMaskRow& b) {
  const GRIMaskRun* nextA = a.begin();
  const GRIMaskRun* nextB = b.begin();
  while (nextA != a.end() && nextB != b.end()) {
    const gr_int32 start = std::max(nextA->first, nextB->first);
    const gr_int32 end = std::min(nextA->last, nextB->last);
    if (start <= end) add(start, end);
    const bool doneA = nextA->last == end;
    const bool doneB = nextB->last == end;
    if (doneA) ++nextA;
    if (doneB) ++nextB;
  }
}

void GRIMaskRowBuilder::normalize() {
  if (m_row.empty()) return;
  gr_uint32 kept = 0;
  for (gr_uint32 i = 1; i < m_row.m_count; ++i) {
    const GRIMaskRun run = m_row.m_runs[i];
    GRIMaskRun& last = m_row.m_runs[kept];
    assert(run.first >= last.first);
    if (run.first > last.last) {
      m_row.m_runs[++kept] = run;
    } else {
      last.last = std::max(last.last, run.last);
    }
  }
  m_row.m_count = kept + 1;
}

GRIMaskRow GRIMaskRowBuilder::take() { return std::exchange(m_row, GRIMaskRow()); }
