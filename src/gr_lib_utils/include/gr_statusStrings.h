/// @file
/// From a status to its message.
#pragma once

#include <span>

#include "gr_lib_utils/include/gr_types.h"

/// One row of the status table.
struct GRStatusRow {
  gr_uint32 status;
  const char* message;  ///< with the placeholders %d %u %f %s %F and %% for a percent sign
};

/// All rows, in no order of their numbers. Where a number stands in two rows, the first counts.
std::span<const GRStatusRow> gr_statusTable();

/// The message of a status as the table has it, "unknown status" for a number without a row.
/// Overwrites what gr_lastStatusString gave.
const char* gr_rawStatusString(GR_STATUS status);

/// The message of a status with the details that were pushed for it (see GRUtilStatusData), which
/// are used up, and its number behind: "can't open file: x.tsr [50613]". Where they should be there
/// and aren't: "error retrieving status string (3070) [50613]".
/// @return text of at most 4095 characters, in one buffer that the next call of either overwrites
const char* gr_lastStatusString(GR_STATUS status);

/// Fills the placeholders of `message` from the frame that was pushed for `status`.
/// @param output  receives the text and its zero, cut to `capacity` bytes; capacity is at least 1
/// @return 0; 3070 when there is no frame; 1 when the frame is that of another status
GR_STATUS gr_expandStatusMessage(GR_STATUS status, const char* message, char* output,
                                 size_t capacity);
