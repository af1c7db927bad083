/// @file
/// The fixed-width types and the status type that every other file builds on.
#pragma once

#include <cstddef>
#include <cstdint>

using gr_uint8 = std::uint8_t;
using gr_int8 = std::int8_t;
using gr_uint16 = std::uint16_t;
using gr_int16 = std::int16_t;
using gr_uint32 = std::uint32_t;
using gr_int32 = std::int32_t;
using gr_uint64 = std::uint64_t;
using gr_int64 = std::int64_t;

/// The result of an operation: 0 is success, every other value a failure (see gr_status.h).
using GR_STATUS = gr_uint32;

constexpr bool GR_SUCCESS(GR_STATUS status) { return status == 0; }

/// Hands a failing status up unchanged.
#define GR_RETURN_IF_FAILED(expression)                                   \
  do {                                                                    \
    const GR_STATUS gr_statusOfExpression = (expression);                 \
    if (!GR_SUCCESS(gr_statusOfExpression)) return gr_statusOfExpression; \
  } while (false)
