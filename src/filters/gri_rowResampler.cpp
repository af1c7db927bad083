#include "filters/gri_rowResampler.h"

#include <cmath>
#include <cstring>
#include <limits>
#include <type_traits>

#include "filters/gri_nearestRow.h"
#include "filters/gri_resamplePosition.h"
#include "gr_lib_utils/include/gr_memory.h"

namespace {

// In this order, so that the result is the same on every machine.
template <typename Arithmetic>
Arithmetic cubic(Arithmetic p0, Arithmetic p1, Arithmetic p2, Arithmetic p3, Arithmetic t) {
  return (((-p0 + p1 - p2 + p3) * t + ((p0 - p1) * 2 + p2 - p3)) * t + (-p0 + p2)) * t + p1;
}

/// @tparam Sample      the type of the samples
/// @tparam Arithmetic  float or double
template <typename Sample, typename Arithmetic>
class GRIRowResamplerImp final : public GRIRowResampler {
 public:
  void resampleNearest(float yFraction, size_t count, void* dest, float x, float step,
                       gr_uint32 width, const void* row) const override {
    static_cast<void>(yFraction);
    gri_nearestRow(row, width, sizeof(Sample), x, step, count, dest);
  }

  void resampleLinear(float yFraction, size_t count, void* dest, float x, float step,
                      gr_uint32 width, const void* row0, const void* row1) const override {
    const Row rows[] = {{row0, width}, {row1, width}};
    gr_uint8* const to = static_cast<gr_uint8*>(dest);
    const Arithmetic t = yFraction;
    forEachPosition(count, x, step, width, [&](size_t k, gr_int64 i, Arithmetic f) {
      const Arithmetic a = linear(rows[0], i, f);
      const Arithmetic b = linear(rows[1], i, f);
      store((b - a) * t + a, k, to);
    });
  }

  void resampleCubic(float yFraction, size_t count, void* dest, float x, float step,
                     gr_uint32 width, const void* row0, const void* row1, const void* row2,
                     const void* row3) const override {
    const Row rows[] = {{row0, width}, {row1, width}, {row2, width}, {row3, width}};
    gr_uint8* const to = static_cast<gr_uint8*>(dest);
    const Arithmetic t = yFraction;
    forEachPosition(count, x, step, width, [&](size_t k, gr_int64 i, Arithmetic f) {
      Arithmetic across[4];
      for (size_t r = 0; r < 4; ++r) {
        const Row& row = rows[r];
        across[r] = cubic(row.at(i - 1), row.at(i), row.at(i + 1), row.at(i + 2), f);
      }
      store(held(cubic(across[0], across[1], across[2], across[3], t)), k, to);
    });
  }

 private:
  static constexpr Arithmetic SMALLEST =
      static_cast<Arithmetic>(std::numeric_limits<Sample>::lowest());
  static constexpr Arithmetic LARGEST = static_cast<Arithmetic>(std::numeric_limits<Sample>::max());

  struct Row {
    Row(const void* row, gr_uint32 numSamples)
        : samples(static_cast<const gr_uint8*>(row)), last(size_t{numSamples} - 1) {}

    Arithmetic at(gr_int64 index) const {
      Sample sample;
      std::memcpy(&sample, samples + gri_heldIndex(index, 0, last) * sizeof(Sample),
                  sizeof(Sample));
      return static_cast<Arithmetic>(sample);
    }

    const gr_uint8* samples;
    size_t last;
  };

  template <typename Body>
  static void forEachPosition(size_t count, float x, float step, gr_uint32 width, Body&& body) {
    Arithmetic p = x;
    for (size_t k = 0; k < count; ++k) {
      const GRIResamplePosition<Arithmetic> position(p, width);
      body(k, position.index, position.fraction);
      p += step;
    }
  }

  static Arithmetic linear(const Row& row, gr_int64 i, Arithmetic f) {
    const Arithmetic left = row.at(i);
    return left + (row.at(i + 1) - left) * f;
  }

  static Arithmetic held(Arithmetic value) {
    if (value > LARGEST) value = LARGEST;
    return value < SMALLEST ? SMALLEST : value;
  }

  // Truncates. Between samples nothing leaves the range of the type; in front of the first one it
  // can, and then the nearest value stands in.
  static void store(Arithmetic value, size_t index, gr_uint8* dest) {
    Sample sample;
    if constexpr (std::is_same_v<Sample, Arithmetic>) {
      sample = value;
    } else {
      sample = std::isnan(value) ? Sample{0} : static_cast<Sample>(held(value));
    }
    std::memcpy(dest + index * sizeof(Sample), &sample, sizeof(Sample));
  }
};

template <typename Sample, typename Arithmetic>
std::unique_ptr<GRIRowResampler> make() {
  return gr_makeUnique<GRIRowResamplerImp<Sample, Arithmetic>>();
}

}  // namespace

std::unique_ptr<GRIRowResampler> GRIRowResampler::create(GRIDataType dataType) {
  switch (dataType) {
    case GRI_DATATYPE_UINT8:
      return make<gr_uint8, float>();
    case GRI_DATATYPE_SINT8:
      return make<gr_int8, float>();
    case GRI_DATATYPE_UINT16:
      return make<gr_uint16, float>();
    case GRI_DATATYPE_SINT16:
      return make<gr_int16, float>();
    case GRI_DATATYPE_UINT32:
      return make<gr_uint32, double>();
    case GRI_DATATYPE_SINT32:
      return make<gr_int32, double>();
    case GRI_DATATYPE_FLOAT32:
      return make<float, float>();
    case GRI_DATATYPE_FLOAT64:
      return make<double, double>();
    default:
      return nullptr;
  }
}
