// What the operations of GRISceneBuffer do in windows at any place, of any size, with samples of
// any alignment: held against loops over single samples.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <memory>
#include <random>
#include <vector>

#include "gr_lib_utils/include/gr_ioStreamUtils.h"
#include "image/gri_pixel.h"
#include "image/gri_sceneBuffer.h"

namespace {

using Bytes = std::vector<gr_uint8>;

Bytes randomBytes(size_t count, std::mt19937& random) {
  Bytes bytes(count);
  for (gr_uint8& byte : bytes) byte = static_cast<gr_uint8>(random());
  return bytes;
}

/// A buffer over planes of random bytes that begin at odd addresses, and a window somewhere inside,
/// sometimes an empty one.
class Fixture {
 public:
  Fixture(const GRIPixel& pixel, std::mt19937& random)
      : m_width(pixel.getSample(0).getNumBytes()),
        m_totalCols(1 + random() % 200),
        m_col(random() % m_totalCols),
        m_row(random() % 3),
        numBands(pixel.getNumBands()),
        numCols(random() % (m_totalCols - m_col + 1)),
        numRows(random() % 4) {
    const gr_uint32 totalRows = m_row + numRows + random() % 2;
    for (gr_uint16 band = 0; band < numBands; ++band) {
      m_planes.push_back(randomBytes(1 + size_t{m_totalCols} * totalRows * m_width + 8, random));
    }
    for (Bytes& plane : m_planes) m_pointers.push_back(plane.data() + 1);
    buffer = std::make_unique<GRISceneBuffer>(pixel, m_totalCols, totalRows, m_col, m_row, numCols,
                                              numRows, m_pointers.data());
  }

  const std::vector<Bytes>& planes() const { return m_planes; }
  /// Where a sample of the window lies in its plane.
  size_t place(size_t col, size_t row) const {
    return 1 + ((m_row + row) * m_totalCols + m_col + col) * m_width;
  }
  /// Calls `body(col, row, band)` for each sample of the window, in the order of a picture by
  /// pixels.
  template <typename Body>
  void forEachSample(Body&& body) const {
    for (size_t row = 0; row < numRows; ++row) {
      for (size_t col = 0; col < numCols; ++col) {
        for (size_t band = 0; band < numBands; ++band) body(col, row, band);
      }
    }
  }
  size_t width() const { return m_width; }  ///< bytes of a sample
  size_t windowBytes() const { return size_t{numCols} * numRows * numBands * m_width; }
  /// Where a sample lies in a block by bands.
  size_t placeByBands(size_t col, size_t row, size_t band) const {
    return ((band * numRows + row) * numCols + col) * m_width;
  }

 private:
  size_t m_width;
  gr_uint32 m_totalCols;
  gr_uint32 m_col;
  gr_uint32 m_row;
  std::vector<Bytes> m_planes;
  std::vector<void*> m_pointers;

 public:
  gr_uint16 numBands;
  gr_uint32 numCols;  // of the window
  gr_uint32 numRows;
  std::unique_ptr<GRISceneBuffer> buffer;
};

GRIPixel randomPixel(std::mt19937& random) {
  const auto type = static_cast<GRIDataType>(1 + random() % 10);
  const auto numBands = static_cast<gr_uint16>(1 + random() % 9);
  return GRIPixel(GRI_COLORSPACE_MULTISPECTRAL, numBands, type);
}

TEST(GRISceneBufferWindowsTest, ImportsWriteEachSampleToItsPlaceAndNothingElse) {
  std::mt19937 random(12);
  for (int round = 0; round < 300; ++round) {
    SCOPED_TRACE(round);
    Fixture f(randomPixel(random), random);
    const Bytes block = randomBytes(1 + f.windowBytes(), random);
    const gr_uint8* const from = block.data() + 1;
    std::vector<Bytes> byPixel = f.planes(), byBand = f.planes();
    size_t at = 0;
    f.forEachSample([&](size_t col, size_t row, size_t band) {
      std::memcpy(&byPixel[band][f.place(col, row)], from + at, f.width());
      std::memcpy(&byBand[band][f.place(col, row)], from + f.placeByBands(col, row, band),
                  f.width());
      at += f.width();
    });

    ASSERT_EQ(f.buffer->importDataBIP(from), GR_STATUS_OK);
    EXPECT_TRUE(f.planes() == byPixel);
    ASSERT_EQ(f.buffer->importDataBSQ(static_cast<const void*>(from)), GR_STATUS_OK);
    EXPECT_TRUE(f.planes() == byBand);
  }
}

TEST(GRISceneBufferWindowsTest, ExportsTakeEachSampleFromItsPlace) {
  std::mt19937 random(13);
  for (int round = 0; round < 300; ++round) {
    SCOPED_TRACE(round);
    const Fixture f(randomPixel(random), random);
    Bytes byPixel(f.windowBytes()), byBand(f.windowBytes());
    size_t at = 0;
    f.forEachSample([&](size_t col, size_t row, size_t band) {
      const gr_uint8* const sample = &f.planes()[band][f.place(col, row)];
      std::copy_n(sample, f.width(), byPixel.begin() + static_cast<std::ptrdiff_t>(at));
      std::copy_n(sample, f.width(),
                  byBand.begin() + static_cast<std::ptrdiff_t>(f.placeByBands(col, row, band)));
      at += f.width();
    });

    Bytes block(1 + f.windowBytes() + 8, 0xA5);
    void* data = block.data() + 1;
    ASSERT_EQ(f.buffer->exportDataBSQ(data), GR_STATUS_OK);
    EXPECT_TRUE(std::equal(byBand.begin(), byBand.end(), block.begin() + 1));
    const auto pixelBytes = static_cast<gr_uint32>(f.numBands * f.width());
    ASSERT_EQ(f.buffer->exportData(data, pixelBytes, f.numCols * pixelBytes,
                                   static_cast<gr_uint32>(f.width())),
              GR_STATUS_OK);
    EXPECT_TRUE(std::equal(byPixel.begin(), byPixel.end(), block.begin() + 1));
    EXPECT_TRUE(std::all_of(block.end() - 8, block.end(), [](gr_uint8 b) { return b == 0xA5; }));
    const auto stream = GRIOStreamUtils::openMemStream();
    ASSERT_EQ(f.buffer->exportDataBIP(*stream), GR_STATUS_OK);
    EXPECT_TRUE(std::equal(byPixel.begin(), byPixel.end(), stream->getData(),
                           stream->getData() + stream->getSize()));
  }
}

// --- Merging ------------------------------------------------------------------------------------

using Values = std::vector<double>;  // one per band

/// Whether `b` replaces `a`, in the bands that decide together.
bool isTaken(GRIMergeMode mode, double magnification, const Values& a, const Values& b,
             const Values& noData) {
  if (mode == GRI_MERGE_LESSER) return a[0] > b[0];
  if (mode == GRI_MERGE_GREATER) return a[0] < b[0];
  if (b == noData) return false;
  if (mode == GRI_MERGE_EXACT || mode == GRI_MERGE_EXACT_PER_BAND) return true;
  if (a == noData) return true;
  double da = 0.0, db = 0.0;
  for (size_t i = 0; i < a.size(); ++i) {
    da += (noData[i] - a[i]) * (noData[i] - a[i]);
    db += (noData[i] - b[i]) * (noData[i] - b[i]);
  }
  const double threshold = 16.0 / std::min(magnification, 1.0) * static_cast<double>(noData.size());
  return db > threshold || da < threshold || 2 * da < db;
}

class Samples {
 public:
  Samples(Bytes& plane, GRIDataType type) : m_plane(&plane), m_type(type) {}

  double at(size_t place) const {
    return GRISample(GRI_COLOR_OTHER, m_type, &(*m_plane)[place]).getValueAsDouble();
  }
  void set(size_t place, double value) {
    GRISample sample(GRI_COLOR_OTHER, m_type, nullptr);
    sample.setValueFromDouble(value);
    std::memcpy(&(*m_plane)[place], sample.getValuePtr(), sample.getNumBytes());
  }

 private:
  Bytes* m_plane;
  GRIDataType m_type;
};

/// A buffer of `NUM_COLS` columns and one row, whose samples lie near `noData` and often on it.
class Line {
 public:
  static constexpr gr_uint32 NUM_COLS = 150;

  Line(const GRIPixel& noData, std::mt19937& random) : m_type(noData.getDataType()) {
    const size_t width = noData.getSample(0).getNumBytes();
    for (gr_uint16 band = 0; band < noData.getNumBands(); ++band) {
      m_planes.emplace_back(NUM_COLS * width);
      const double none = noData.getSample(band).getValueAsDouble();
      for (gr_uint32 col = 0; col < NUM_COLS; ++col) {
        const double away = random() % 3 == 0 ? 0.0 : static_cast<double>(random() % 25) - 12.0;
        Samples(m_planes[band], m_type).set(col * width, none + away);
      }
    }
    for (Bytes& plane : m_planes) m_pointers.push_back(plane.data());
    buffer = std::make_unique<GRISceneBuffer>(noData, NUM_COLS, 1, m_pointers.data());
  }
  double at(size_t col, size_t band) {
    return Samples(m_planes[band], m_type).at(col * GRIUtils::getNumBytes(m_type));
  }
  Values at(size_t col, size_t firstBand, size_t numBands) {
    Values values;
    for (size_t i = 0; i < numBands; ++i) values.push_back(at(col, firstBand + i));
    return values;
  }

 private:
  GRIDataType m_type;
  std::vector<Bytes> m_planes;
  std::vector<void*> m_pointers;

 public:
  std::unique_ptr<GRISceneBuffer> buffer;
};

TEST(GRISceneBufferWindowsTest, MergesFollowTheRulesPixelByPixel) {
  std::mt19937 random(14);
  for (int round = 0; round < 400; ++round) {
    constexpr GRIDataType TYPES[] = {GRI_DATATYPE_UINT8, GRI_DATATYPE_UINT16, GRI_DATATYPE_SINT16,
                                     GRI_DATATYPE_FLOAT32};
    constexpr double MAGNIFICATIONS[] = {0.25, 0.5, 1.0, 4.0};
    const GRIDataType type = TYPES[random() % 4];
    const auto mode = static_cast<GRIMergeMode>(random() % 6);
    const double magnification = MAGNIFICATIONS[random() % 4];
    const size_t numBands = 1 + random() % 5;
    GRIPixel noData(GRI_COLORSPACE_MULTISPECTRAL, static_cast<gr_uint16>(numBands), type);
    for (gr_uint16 band = 0; band < numBands; ++band) {
      const double sign = type == GRI_DATATYPE_SINT16 ? -1.0 : 1.0;
      const double fraction = type == GRI_DATATYPE_FLOAT32 ? 0.25 : 0.0;
      noData.getSample(band).setValueFromDouble(sign * (100.0 + band) + fraction);
    }
    Line into(noData, random), from(noData, random);
    const bool isTogether = mode == GRI_MERGE_EXACT || mode == GRI_MERGE_FUZZY;
    const size_t step = isTogether ? numBands : 1;
    std::vector<Values> expected;
    for (size_t col = 0; col < Line::NUM_COLS; ++col) {
      expected.push_back(into.at(col, 0, numBands));
      for (size_t band = 0; band < numBands; band += step) {
        Values none;
        for (size_t i = band; i < band + step; ++i) {
          none.push_back(noData.getSample(static_cast<gr_uint16>(i)).getValueAsDouble());
        }
        const Values b = from.at(col, band, step);
        if (!isTaken(mode, magnification, into.at(col, band, step), b, none)) continue;
        std::copy(b.begin(), b.end(), expected[col].begin() + static_cast<std::ptrdiff_t>(band));
      }
    }

    ASSERT_EQ(into.buffer->merge(mode, magnification, *from.buffer, &noData), GR_STATUS_OK);

    for (size_t col = 0; col < Line::NUM_COLS; ++col) {
      ASSERT_EQ(into.at(col, 0, numBands), expected[col])
          << "mode " << mode << ", type " << type << ", column " << col;
    }
  }
}

}  // namespace
