/// @file
/// Decoding of a record, whole or in part: to bin numbers, or straight to coefficients.
#pragma once

#include <optional>
#include <span>

#include "gr_lib_tg2kernel/src/decode/tg2_dequantizer.h"
#include "gr_lib_tg2kernel/src/decode/tg2_huffmanTable.h"
#include "gr_lib_tg2kernel/src/decode/tg2_rect.h"
#include "gr_lib_tg2kernel/src/decode/tg2_restart.h"

/// Decodes what a window wants of a record.
///
/// @param table  the code of the record's band
/// @param record  the record's bytes from its marker on, and the two behind it
/// @param out  the bin numbers of `wantedRect`, row after row without padding. They are zeros
///             before; those that the record has nothing for stay so.
/// @param recordRect  what the record covers
/// @param wantedRect  a part of it that isn't empty
/// @param restart  the place that an earlier call for this record gave back for rows above those
///                 of `wantedRect`, or null to begin at its start
/// @return where to go on for lower rows; nothing when the lower right corners of both rectangles
///         are the same, or when the record holds no data, only the next marker
///
/// Throws GRUtilException: 8021 when the record doesn't begin with its marker; 8022 for bits that
/// aren't a code and when the record ends before the last wanted coefficient. Memory past the
/// record is never read, whatever it holds.
std::optional<TG2RestartState> tg2_huffmanDecode(const TG2HuffmanTable& table,
                                                 std::span<const gr_uint8> record, gr_int32* out,
                                                 const TG2Rect& recordRect,
                                                 const TG2Rect& wantedRect,
                                                 const TG2RestartState* restart);

/// The same, dequantised: equal to tg2_huffmanDecode to a buffer of zeros and then
/// TG2Dequantizer::dequantize, without the buffer.
///
/// @param dequantizer  any; its rectangle isn't looked at
/// @param step  see TG2Dequantizer
/// @param out  the coefficient at the upper left corner of `wantedRect`. All of the rectangle is
///             written, whatever it held.
/// @param stride  from one row of `out` to the next, in samples
std::optional<TG2RestartState> tg2_huffmanDecode(
    const TG2HuffmanTable& table, std::span<const gr_uint8> record,
    const TG2Dequantizer& dequantizer, float step, float* out, size_t stride,
    const TG2Rect& recordRect, const TG2Rect& wantedRect, const TG2RestartState* restart);
