/// @file
/// TG2SynthesisFilter, which joins four subbands to one.
#pragma once

#include <array>
#include <utility>

#include "gr_lib_tg2kernel/src/decode/tg2_lift97.h"
#include "gr_lib_tg2kernel/src/decode/tg2_rect.h"
#include "gr_lib_utils/include/gr_memory.h"
#include "gr_lib_utils/include/gr_types.h"

/// How many of the positions of a line of `size` samples are a channel's: the even ones the low
/// channel's, the odd ones the high channel's.
constexpr gr_int64 tg2_channelSize(gr_int64 size, bool isHigh) {
  return isHigh ? size / 2 : (size + 1) / 2;
}

/// Which samples of a channel are needed for samples `first` to `last` of a line of `size`. That's
/// what the filter reads, and at least five samples as far as there are as many.
/// @param channelFirst, channelLast  receives the range; last is below first in an empty channel
void tg2_channelSupport(gr_int64 first, gr_int64 last, gr_int64 size, bool isHigh,
                        gr_int64& channelFirst, gr_int64& channelLast);

/// The samples of one of the four subbands, as far as they are there.
struct TG2Channel {
  const float* samples = nullptr;  ///< at the window's upper left corner; null: all are 0
  size_t stride = 0;               ///< from one row to the next, in samples
  TG2Rect window;                  ///< in the subband's coordinates; empty when there are none
};

/// The four of them.
struct TG2Channels {
  TG2Channel lowLow;
  TG2Channel highLow;  ///< high columns, low rows
  TG2Channel lowHigh;
  TG2Channel highHigh;
};

/// One level of the 9/7 synthesis: columns first, then rows, as tg2_lift97.h has the steps. It
/// gives a window's rows one after the other, and keeps a few of them to do so.
///
/// Outside of a line of N samples, the channels are mirrored about its first and last sample: a
/// read of position m is one of -m for m below 0, and then one of 2 (N - 1) - m for m above N - 1.
/// What is still below 0, as it may be on lines shorter than five samples, reads as 0. The steps
/// run over this endless signal.
class TG2SynthesisFilter {
 public:
  /// Starts with the first row of a window.
  /// @param window  isn't empty, and lies in the subband
  /// @param width, height  the size of the whole subband, of which its channels' sizes follow
  /// @param channels  the samples stay the caller's, until the last row is done
  /// @return 0; 8024 when the two channels of low columns cover different columns, 8026 for those
  ///         of high columns; 8025 and 8027 when they don't hold the rows that are needed; 8028
  ///         when they don't hold the columns; 8 when memory runs out
  [[nodiscard]] GR_STATUS begin(const TG2Rect& window, gr_int64 width, gr_int64 height,
                                const TG2Channels& channels);

  /// Writes the next row, of as many samples as the window is wide.
  void nextRow(float* out);

 private:
  // The reads of a channel along a line: first to last in all, and the samples behind them, of
  // which the mirror makes the others.
  struct Reads {
    gr_int64 size = 0;  // of the channel
    gr_int64 first = 0;
    gr_int64 last = 0;
    gr_int64 firstSample = 0;
    gr_int64 lastSample = -1;

    Reads() = default;
    Reads(gr_int64 windowFirst, gr_int64 windowLast, gr_int64 lineSize, bool isHigh);
    bool isEmpty() const { return lastSample < firstSample; }
    bool areWithin(gr_int64 from, gr_int64 to) const {
      return isEmpty() || (firstSample >= from && lastSample <= to);
    }
  };

  // The columns of one kind, low or high, with what moves down along them. A row here holds the
  // reads along the line, those of the mirror too.
  struct Columns {
    TG2Channel low;
    TG2Channel high;
    Reads reads;
    bool isZero = true;
    gr_int64 begin = 0;  // the column of a row's first value
    size_t length = 0;   // of a row
    float* firstEven = nullptr;
    float* firstOdd = nullptr;
    float* even = nullptr;
    float* evenAbove = nullptr;
    float* odd = nullptr;

    float* samples(float* row) const { return row + (reads.firstSample - begin); }
    size_t numSamples() const {
      return static_cast<size_t>(reads.lastSample - reads.firstSample + 1);
    }
  };

  static GR_STATUS checkColumns(const Columns& columns, const Reads& lowRows, const Reads& highRows,
                                GR_STATUS differentColumns, GR_STATUS missingRows);
  GR_STATUS allocate();
  void prime(Columns& columns);
  void step(Columns& columns, gr_int64 n);
  void mirrorColumns(const Columns& columns, float* row, bool isHigh) const;
  const float* lowRow(const Columns& columns, gr_int64 n) const;
  const float* highRow(const Columns& columns, gr_int64 n) const;
  const float* rowOf(const Columns& columns, const TG2Channel& channel, gr_int64 row) const;

  TG2Rect m_window;
  gr_int64 m_width = 0;
  gr_int64 m_height = 0;
  gr_int64 m_row = 0;  // the next one
  Columns m_low;
  Columns m_high;
  const float* m_zeros = nullptr;
  float* m_work = nullptr;
  GRArray<float> m_memory;
};
