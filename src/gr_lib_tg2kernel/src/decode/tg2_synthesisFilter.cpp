#include "gr_lib_tg2kernel/src/decode/tg2_synthesisFilter.h"

#include <algorithm>
#include <cassert>

#include "gr_lib_tg2kernel/src/decode/tg2_status.h"

namespace {

// Which sample of a channel a read of its place n gives on a line of `size` samples; -1 where that
// is 0.
gr_int64 mirrored(gr_int64 n, gr_int64 size, bool isHigh) {
  gr_int64 position = 2 * n + (isHigh ? 1 : 0);
  if (position < 0) position = -position;
  if (position > size - 1) position = 2 * (size - 1) - position;
  return position < 0 ? -1 : position / 2;
}

// Half of a number, up for positive ones and towards 0 for negative ones.
gr_int64 halfUp(gr_int64 value) { return value > 0 ? (value + 1) / 2 : value / 2; }

bool haveSameColumns(const TG2Rect& a, const TG2Rect& b) {
  return a.isEmpty() || b.isEmpty() || (a.x0 == b.x0 && a.x1 == b.x1);
}

}  // namespace

void tg2_channelSupport(gr_int64 first, gr_int64 last, gr_int64 size, bool isHigh,
                        gr_int64& channelFirst, gr_int64& channelLast) {
  const gr_int64 start = halfUp(first - (isHigh ? 5 : 3));
  const gr_int64 end = std::max((last + 3) / 2, start + 4);
  channelFirst = std::max<gr_int64>(start, 0);
  channelLast = std::min(end, tg2_channelSize(size, isHigh) - 1);
}

TG2SynthesisFilter::Reads::Reads(gr_int64 windowFirst, gr_int64 windowLast, gr_int64 lineSize,
                                 bool isHigh)
    : size(tg2_channelSize(lineSize, isHigh)) {
  // The first sample's pair, and the last even value that a step needs.
  const gr_int64 pair = windowFirst / 2;
  first = pair - (isHigh ? 2 : 1);
  last = (windowLast + 1) / 2 + 1;
  firstSample = std::max<gr_int64>(first, 0);
  lastSample = std::min(last, size - 1);
  const auto include = [&](gr_int64 n) {
    const gr_int64 sample = mirrored(n, lineSize, isHigh);
    if (sample < 0) return;
    firstSample = std::min(firstSample, sample);
    lastSample = std::max(lastSample, sample);
  };
  for (gr_int64 n = first; n < 0; ++n) include(n);
  for (gr_int64 n = std::max(first, size); n <= last; ++n) include(n);
}

GR_STATUS TG2SynthesisFilter::begin(const TG2Rect& window, gr_int64 width, gr_int64 height,
                                    const TG2Channels& channels) {
  assert(!window.isEmpty() && window.x0 >= 0 && window.y0 >= 0);
  assert(window.x1 < width && window.y1 < height);
  m_window = window;
  m_width = width;
  m_height = height;
  m_row = window.y0;
  m_low.low = channels.lowLow;
  m_low.high = channels.lowHigh;
  m_high.low = channels.highLow;
  m_high.high = channels.highHigh;
  m_low.reads = Reads(window.x0, window.x1, width, false);
  m_high.reads = Reads(window.x0, window.x1, width, true);
  const Reads lowRows(window.y0, window.y1, height, false);
  const Reads highRows(window.y0, window.y1, height, true);
  GR_RETURN_IF_FAILED(
      checkColumns(m_low, lowRows, highRows, TG2_STATUS_LOW_COLUMNS, TG2_STATUS_LOW_LINES));
  GR_RETURN_IF_FAILED(
      checkColumns(m_high, lowRows, highRows, TG2_STATUS_HIGH_COLUMNS, TG2_STATUS_HIGH_LINES));
  GR_RETURN_IF_FAILED(allocate());
  prime(m_low);
  prime(m_high);
  return GR_STATUS_OK;
}

// Whether the two channels of a kind of columns hold what is read of them.
GR_STATUS TG2SynthesisFilter::checkColumns(const Columns& columns, const Reads& lowRows,
                                           const Reads& highRows, GR_STATUS differentColumns,
                                           GR_STATUS missingRows) {
  if (!haveSameColumns(columns.low.window, columns.high.window)) return differentColumns;
  if (columns.reads.isEmpty()) return GR_STATUS_OK;
  const struct {
    const TG2Rect& window;
    const Reads& rows;
  } channels[] = {{columns.low.window, lowRows}, {columns.high.window, highRows}};
  for (const auto& [window, rows] : channels) {
    if (!rows.areWithin(window.y0, window.y1)) return missingRows;
    if (!rows.isEmpty() && !columns.reads.areWithin(window.x0, window.x1)) {
      return TG2_STATUS_ROW_LINES;
    }
  }
  return GR_STATUS_OK;
}

// Hands out the rows, all zeros.
GR_STATUS TG2SynthesisFilter::allocate() {
  constexpr size_t ALIGNMENT = 16;  // samples; rows begin where a cache line does, or like others
  const auto aligned = [](size_t n) { return (n + ALIGNMENT - 1) / ALIGNMENT * ALIGNMENT; };
  for (Columns* columns : {&m_low, &m_high}) {
    const Reads& reads = columns->reads;
    columns->begin = std::min(reads.first, reads.firstSample);
    columns->length =
        static_cast<size_t>(std::max(reads.last, reads.lastSample) - columns->begin + 1);
    columns->isZero = columns->low.samples == nullptr && columns->high.samples == nullptr;
  }
  const size_t lowLength = aligned(m_low.length);
  const size_t highLength = aligned(m_high.length);
  const size_t zeros = std::max(lowLength, highLength);
  const size_t evens =
      tg2_lift97Evens(m_window.x0 % 2 != 0, static_cast<size_t>(m_window.getWidth()));
  const size_t total = 5 * (lowLength + highLength) + zeros + 2 * evens + 3;
  if (m_memory.size() < total) GR_RETURN_IF_FAILED(m_memory.allocateUninitialized(total));
  std::fill_n(m_memory.data(), total, 0.0F);

  float* next = m_memory.data();
  for (Columns* columns : {&m_low, &m_high}) {
    for (float** row : {&columns->firstEven, &columns->firstOdd, &columns->even,
                        &columns->evenAbove, &columns->odd}) {
      *row = next;
      next += aligned(columns->length);
    }
  }
  m_zeros = next;
  m_work = next + zeros;
  return GR_STATUS_OK;
}

const float* TG2SynthesisFilter::rowOf(const Columns& columns, const TG2Channel& channel,
                                       gr_int64 row) const {
  if (row < 0 || channel.samples == nullptr) return m_zeros;
  return channel.samples + static_cast<size_t>(row - channel.window.y0) * channel.stride +
         (columns.reads.firstSample - channel.window.x0);
}

const float* TG2SynthesisFilter::lowRow(const Columns& columns, gr_int64 n) const {
  return rowOf(columns, columns.low, mirrored(n, m_height, false));
}

const float* TG2SynthesisFilter::highRow(const Columns& columns, gr_int64 n) const {
  return rowOf(columns, columns.high, mirrored(n, m_height, true));
}

// Runs the steps as far as the first even row, each by itself.
void TG2SynthesisFilter::prime(Columns& columns) {
  if (columns.isZero) return;
  const size_t n = columns.numSamples();
  const gr_int64 pair = m_window.y0 / 2;
  const auto firstStep = [&](gr_int64 row, float* out) {
    tg2_lift97Step(lowRow(columns, row), highRow(columns, row - 1), highRow(columns, row),
                   TG2_LIFT97[0], columns.samples(out), n);
  };
  const auto secondStep = [&](gr_int64 row, float* even, float* evenBelow, float* out) {
    tg2_lift97Step(highRow(columns, row), columns.samples(even), columns.samples(evenBelow),
                   TG2_LIFT97[1], columns.samples(out), n);
  };
  firstStep(pair - 1, columns.odd);
  firstStep(pair, columns.evenAbove);
  secondStep(pair - 1, columns.odd, columns.evenAbove, columns.firstOdd);
  firstStep(pair + 1, columns.firstEven);
  secondStep(pair, columns.evenAbove, columns.firstEven, columns.odd);
  tg2_lift97Step(columns.samples(columns.evenAbove), columns.samples(columns.firstOdd),
                 columns.samples(columns.odd), TG2_LIFT97[2], columns.samples(columns.even), n);
  std::swap(columns.firstOdd, columns.odd);
}

// Takes in row n of the low and of the high channel: makes odd row n - 2 and even row n - 1.
void TG2SynthesisFilter::step(Columns& columns, gr_int64 n) {
  if (columns.isZero) return;
  std::swap(columns.even, columns.evenAbove);
  tg2_lift97Vertical({lowRow(columns, n), highRow(columns, n - 1), highRow(columns, n),
                      columns.samples(columns.firstEven), columns.samples(columns.firstOdd),
                      columns.samples(columns.evenAbove), columns.samples(columns.even),
                      columns.samples(columns.odd)},
                     columns.numSamples());
}

// Writes the values of a row that aren't samples.
void TG2SynthesisFilter::mirrorColumns(const Columns& columns, float* row, bool isHigh) const {
  if (columns.isZero) return;
  const Reads& reads = columns.reads;
  const auto mirror = [&](gr_int64 n) {
    const gr_int64 sample = mirrored(n, m_width, isHigh);
    row[n - columns.begin] = sample < 0 ? 0.0F : row[sample - columns.begin];
  };
  for (gr_int64 n = reads.first; n < 0; ++n) mirror(n);
  for (gr_int64 n = std::max(reads.first, reads.size); n <= reads.last; ++n) mirror(n);
}

void TG2SynthesisFilter::nextRow(float* out) {
  assert(m_row <= m_window.y1);
  const bool isOdd = m_row % 2 != 0;
  if (isOdd) {
    step(m_low, m_row / 2 + 2);
    step(m_high, m_row / 2 + 2);
  }
  ++m_row;
  float* const low = isOdd ? m_low.odd : m_low.even;
  float* const high = isOdd ? m_high.odd : m_high.even;
  mirrorColumns(m_low, low, false);
  mirrorColumns(m_high, high, true);
  const gr_int64 pair = m_window.x0 / 2;
  tg2_lift97Horizontal(low + (pair - m_low.begin), high + (pair - m_high.begin), m_work, out,
                       m_window.x0 % 2 != 0, static_cast<size_t>(m_window.getWidth()));
}
