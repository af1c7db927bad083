/// @file
/// The two rotations of three components: reversible, each a chain of shears whose steps are
/// rounded to integers, and each the other's inverse.
///
/// `n` values of each component are replaced. Functions named ...Scalar are the definition; the
/// others are the fast ones, equal bit for bit for all values.
#pragma once

#include "gr_lib_utils/include/gr_types.h"

// The coefficients of the shears, in 1/16384.
constexpr gr_int32 TG3_COLOR_C1 = 19637;
constexpr gr_int32 TG3_COLOR_C2 = 19309;
constexpr gr_int32 TG3_COLOR_C3 = -22640;
constexpr gr_int32 TG3_COLOR_C4 = -11469;
constexpr gr_int32 TG3_COLOR_C5 = 24279;

/// The rotation that kind 10 applies. With products rounded as in tg3_rationalArithmetic.h:
///
///     u = a - b, v = c - b
///     t = u c4 + v c5,  w = v c3 + u
///     b' = w c2 + v,  a' = w + t + b,  c' = b' c1 - a' + t + b
void tg3_rotateInverse(gr_int32* a, gr_int32* b, gr_int32* c, size_t n);
void tg3_rotateInverseScalar(gr_int32* a, gr_int32* b, gr_int32* c, size_t n);

/// The rotation that kind 4 applies:
///
///     c -= b c1 - a,  a -= c,  b -= a c2,  a -= b c3,  c -= a c4 + b c5
///     a' = a + c,  b' = c,  c' = b + c
void tg3_rotateForward(gr_int32* a, gr_int32* b, gr_int32* c, size_t n);
void tg3_rotateForwardScalar(gr_int32* a, gr_int32* b, gr_int32* c, size_t n);
