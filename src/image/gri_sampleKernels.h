/// @file
/// The loops that move samples: between pixel-interleaved and band-sequential order, and between
/// byte orders. They know only how wide a sample is, not what it means.
///
/// Each comes as the definition (`...Scalar`) and as the fast one, which is chosen for the machine
/// at run time and gives the same bytes. No pointer needs any alignment.
#pragma once

#include "gr_lib_utils/include/gr_types.h"

/// Splits pixel-interleaved samples into bands: plane b gets sample b of each pixel, one after the
/// other.
///
///     r g b r g b r g b ...   ->   r r r ... | g g g ... | b b b ...
///
/// @param interleaved  numPixels * numBands samples
/// @param sampleBytes  1, 2, 4 or 8
/// @param planes       numBands pointers, each to room for numPixels samples; none of them overlaps
///                     `interleaved` or another plane
///
/// Samples of up to 4 bytes are vectorised, up to four bands at once; more bands go four by four.
void gri_splitBands(const void* interleaved, size_t numPixels, size_t numBands, size_t sampleBytes,
                    void* const* planes);
void gri_splitBandsScalar(const void* interleaved, size_t numPixels, size_t numBands,
                          size_t sampleBytes, void* const* planes);

/// The reverse of gri_splitBands: joins bands into pixel-interleaved samples.
void gri_joinBands(const void* const* planes, size_t numPixels, size_t numBands, size_t sampleBytes,
                   void* interleaved);
void gri_joinBandsScalar(const void* const* planes, size_t numPixels, size_t numBands,
                         size_t sampleBytes, void* interleaved);

/// Copies samples and reverses the bytes of each.
/// @param from, to     numSamples samples; the same place (to swap there), or apart
/// @param sampleBytes  1 (a plain copy), 2, 4 or 8
void gri_copySwapped(const void* from, size_t numSamples, size_t sampleBytes, void* to);
void gri_copySwappedScalar(const void* from, size_t numSamples, size_t sampleBytes, void* to);

/// Copies big-endian samples into the byte order of this machine: gri_copySwapped, or a plain copy
/// on a big-endian machine.
void gri_copyFromBigEndian(const void* from, size_t numSamples, size_t sampleBytes, void* to);
