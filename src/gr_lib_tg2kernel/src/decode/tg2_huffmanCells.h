/// @file
/// The hot loop of generation 2: symbols of a record to a run of bin numbers.
#pragma once

#include <span>

#include "gr_lib_tg2kernel/src/decode/tg2_huffmanTable.h"
#include "gr_lib_tg2kernel/src/decode/tg2_restart.h"

/// Cells behind the last one into which a call may write zeros.
constexpr size_t TG2_CELLS_SLACK = TG2HuffmanTable::CELLS;

/// Reads symbols until `count` coefficients or more are passed, and none after that. The last run
/// may reach beyond.
///
/// @param record  the record's bytes from its marker on, and those behind it that may be read
/// @param state  in: where to begin; out: the place behind the last symbol. Its position counts on
///               from the given one.
/// @param cells  `count` zeros, which become bin numbers, and room for TG2_CELLS_SLACK more
///
/// Throws GRUtilException(8022) at an unused branch of the code and at the end of `record`; the
/// cells and the place are then of no use. The one named ...Scalar is the definition; the other is
/// the fast one, and equal to it.
void tg2_huffmanCellsScalar(const TG2HuffmanTable& table, std::span<const gr_uint8> record,
                            TG2RestartState& state, gr_int32* cells, size_t count);
void tg2_huffmanCells(const TG2HuffmanTable& table, std::span<const gr_uint8> record,
                      TG2RestartState& state, gr_int32* cells, size_t count);
