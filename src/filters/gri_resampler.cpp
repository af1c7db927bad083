#include "filters/gri_resampler.h"

#include <algorithm>
#include <array>
#include <cassert>
#include <cmath>
#include <cstring>

#include "filters/gri_resamplePosition.h"
#include "gr_lib_utils/include/gr_memory.h"
#include "image/gri_image.h"
#include "image/gri_pixel.h"
#include "image/gri_scene.h"
#include "image/gri_sceneBuffer.h"

namespace {

/// One or two buffers as one, row after row.
struct Source {
  const GRISceneBuffer* first;
  const GRISceneBuffer* second;  // null where there is only one

  gr_uint32 getNumRows() const {
    return first->getWindowNumRows() + (second == nullptr ? 0 : second->getWindowNumRows());
  }
  const void* at(size_t row, gr_uint32 column, gr_uint16 band) const {
    const size_t firstRows = first->getWindowNumRows();
    if (second == nullptr || row < firstRows) {
      return first->getSampleInWindow(column, static_cast<gr_uint32>(row), band);
    }
    return second->getSampleInWindow(column, static_cast<gr_uint32>(row - firstRows), band);
  }
};

/// @tparam Rows    of the source for one row of the destination: 1, 2 or 4
/// @tparam Before, After  the reach of the kernel
template <size_t Rows, gr_int32 Before, gr_int32 After>
class GRIResamplerImp final : public GRIResampler {
 public:
  explicit GRIResamplerImp(std::unique_ptr<GRIRowResampler> rowResampler)
      : GRIResampler(Before, After, std::move(rowResampler)) {}

  using GRIResampler::resample;

  void resample(GRISceneBuffer& dest, const GRIResampleRect& destRect, const GRISceneBuffer& src0,
                const GRISceneBuffer& src1, const GRIResampleRect& srcRect, float x0, float y0,
                float xStep, float yStep) const override {
    assert(dest.getPixelProps() == src1.getPixelProps());
    assert(src0.getTotalNumCols() == src1.getTotalNumCols());
    assert(srcRect.right < src1.getWindowNumCols());
    resampleBands(dest, destRect, {&src0, &src1}, srcRect, x0, y0, xStep, yStep);
  }

  void resample(GRISceneBuffer& dest, const GRIResampleRect& destRect, const GRISceneBuffer& src,
                const GRIResampleRect& srcRect, float x0, float y0, float xStep,
                float yStep) const override {
    resampleBands(dest, destRect, {&src, nullptr}, srcRect, x0, y0, xStep, yStep);
  }

 private:
  using RowPointers = std::array<const void*, Rows>;

  void resampleBands(GRISceneBuffer& dest, const GRIResampleRect& destRect, const Source& source,
                     const GRIResampleRect& srcRect, float x0, float y0, float xStep,
                     float yStep) const {
    static_assert(Rows == After - Before + 1);
    assert(dest.getPixelProps() == source.first->getPixelProps());
    assert(srcRect.left <= srcRect.right && srcRect.top <= srcRect.bottom);
    assert(srcRect.right < source.first->getWindowNumCols());
    assert(srcRect.bottom < source.getNumRows());
    assert(destRect.left <= destRect.right && destRect.top <= destRect.bottom);
    assert(destRect.right < dest.getWindowNumCols());
    assert(destRect.bottom < dest.getWindowNumRows());
    for (gr_uint16 band = 0; band < dest.getNumBands(); ++band) {
      const void* rowBefore = nullptr;  // of the destination
      RowPointers rowsBefore{};         // that it was made of
      float y = y0;
      for (gr_uint32 row = destRect.top; row <= destRect.bottom; ++row) {
        const GRIResamplePosition<float> position(y, source.getNumRows());
        RowPointers rows;
        for (size_t r = 0; r < Rows; ++r) {
          const size_t sourceRow = gri_heldIndex(position.index + Before + static_cast<gr_int32>(r),
                                                 srcRect.top, srcRect.bottom);
          rows[r] = source.at(sourceRow, srcRect.left, band);
        }
        void* const to = dest.getSampleInWindow(destRect.left, row, band);
        if (Rows == 1 && rowBefore != nullptr && rows == rowsBefore) {
          std::memcpy(to, rowBefore, size_t{destRect.getWidth()} * dest.getBytesPerSample(band));
        } else {
          resampleRow(position.fraction, destRect.getWidth(), to, x0, xStep, srcRect.getWidth(),
                      rows);
        }
        rowBefore = to;
        rowsBefore = rows;
        y += yStep;
      }
    }
  }

  void resampleRow(float yFraction, size_t count, void* dest, float x, float step, gr_uint32 width,
                   const RowPointers& rows) const {
    const GRIRowResampler& resampler = getRowResampler();
    if constexpr (Rows == 1) {
      resampler.resampleNearest(yFraction, count, dest, x, step, width, rows[0]);
    } else if constexpr (Rows == 2) {
      resampler.resampleLinear(yFraction, count, dest, x, step, width, rows[0], rows[1]);
    } else {
      resampler.resampleCubic(yFraction, count, dest, x, step, width, rows[0], rows[1], rows[2],
                              rows[3]);
    }
  }
};

}  // namespace

GRIResampleRect GRIResampleRect::ofWindow(const GRISceneBuffer& buffer) {
  assert(buffer.getWindowNumCols() > 0 && buffer.getWindowNumRows() > 0);
  return {0, 0, buffer.getWindowNumCols() - 1, buffer.getWindowNumRows() - 1};
}

std::unique_ptr<GRIResampler> GRIResampler::create(GRIDataType dataType, gr_uint32 kind) {
  std::unique_ptr<GRIRowResampler> rowResampler = GRIRowResampler::create(dataType);
  if (rowResampler == nullptr) return nullptr;
  switch (kind) {
    case NEAREST:
      return gr_makeUnique<GRIResamplerImp<1, 0, 0>>(std::move(rowResampler));
    case LINEAR:
      return gr_makeUnique<GRIResamplerImp<2, 0, 1>>(std::move(rowResampler));
    case CUBIC:
      return gr_makeUnique<GRIResamplerImp<4, -1, 2>>(std::move(rowResampler));
    default:
      return nullptr;
  }
}

void GRIResampler::resample(GRISceneBuffer& dest, const GRISceneBuffer& src,
                            const GRIScene& srcScene, float x0, float y0) const {
  const GRIResampleRect destRect = GRIResampleRect::ofWindow(dest);
  resample(dest, destRect, src, GRIResampleRect::ofWindow(src), x0, y0,
           static_cast<float>(srcScene.getWidth() / dest.getWindowNumCols()),
           static_cast<float>(srcScene.getHeight() / dest.getWindowNumRows()));
}

GRIScene GRIResampler::getRequiredScene(const GRIImage& stage, const GRIScene& scene) const {
  gr_uint32 width = 0;
  gr_uint32 height = 0;
  static_cast<void>(stage.getDimsAtMag(scene.getMag(), width, height));  // none at a failure
  const double left = std::max(std::floor(scene.getUpperLeftCol() + m_before), 0.0);
  const double top = std::max(std::floor(scene.getUpperLeftRow() + m_before), 0.0);
  const double right = std::min<double>(std::ceil(scene.getLowerRightCol() + m_after), width);
  const double bottom = std::min<double>(std::ceil(scene.getLowerRightRow() + m_after), height);
  return {left, top, std::max(right - left, 0.0), std::max(bottom - top, 0.0), scene.getMag()};
}
