/// @file
/// Decoded samples on their way from the library to GDAL.
#pragma once

#include <cstddef>
#include <memory>
#include <vector>

#include "hosts/common/gri_hostImage.h"

/// What was lost of a damaged picture. Shared by all that read it.
struct GRIGdalDamage {
  GRIHostError first;        // the first failure; none when nothing was lost
  gr_uint64 lostPixels = 0;  // filled in
  gr_uint64 decodedPixels = 0;
};

/// Decodes windows of a picture at one magnification, all bands at once, and keeps the last one.
class GRIGdalStrip {
 public:
  /// @param damage  null: a window that fails is an error. Else what can't be decoded is filled
  ///                with no-data (zero where there is none) and noted here
  GRIGdalStrip(std::shared_ptr<GRIHostImage> image, double magnification,
               std::shared_ptr<GRIGdalDamage> damage);

  /// Makes the samples of a window be there: decodes it unless it lies in the one that is kept.
  /// After an error nothing is kept.
  GRIHostError fetch(const GRIHostWindow& window);

  /// The window that is kept: it contains the last one that was fetched.
  const GRIHostWindow& window() const { return m_window; }
  /// The samples of a band from a place inside window() to the end of its row.
  /// @param column, row  in pixels of the picture at its magnification
  const std::byte* samples(size_t band, gr_uint32 column, gr_uint32 row) const;

 private:
  GRIHostError decode(const GRIHostWindow& window);
  GRIHostError decodeRows(const GRIHostWindow& rows);
  GRIHostError decodeSalvaging(const GRIHostWindow& window);
  GRIHostError decodePiece(const GRIHostWindow& piece);
  void fillLost(const GRIHostWindow& piece, const GRIHostError& error);
  std::byte* place(size_t band, gr_uint32 column, gr_uint32 row);

  std::shared_ptr<GRIHostImage> m_image;
  double m_magnification;
  std::shared_ptr<GRIGdalDamage> m_damage;
  GRIHostWindow m_window;                  // of size 0 when nothing is kept
  std::unique_ptr<std::byte[]> m_samples;  // band after band, each height x width
  size_t m_capacity = 0;                   // bytes
};
