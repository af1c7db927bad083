/// @file
/// GRIResampler, which scales a rectangle of a scene buffer into another one.
#pragma once

#include <memory>

#include "filters/gri_rowResampler.h"
#include "gr_lib_utils/include/gr_types.h"
#include "image/gri_dataTypes.h"

class GRIImage;
class GRIScene;
class GRISceneBuffer;

/// Columns and rows of a buffer's window, the last ones included.
struct GRIResampleRect {
  gr_uint32 left = 0;
  gr_uint32 top = 0;
  gr_uint32 right = 0;
  gr_uint32 bottom = 0;

  gr_uint32 getWidth() const { return right - left + 1; }
  gr_uint32 getHeight() const { return bottom - top + 1; }
  /// The whole window of a buffer, which isn't empty.
  static GRIResampleRect ofWindow(const GRISceneBuffer& buffer);
};

/// Walks over the rows of the destination and has a GRIRowResampler compute each from the rows of
/// the source around it. It keeps no state between calls.
///
/// Positions are in pixels of the source: columns count from the left side of its rectangle, rows
/// from the top of its window. A position is truncated, not rounded, to find its pixel, so that a
/// scale of 1 from the upper left on copies; where a kernel reaches past the rectangle, the pixels
/// at its sides stand in.
class GRIResampler {
 public:
  enum Kind : gr_uint32 { NEAREST = 1, LINEAR = 2, CUBIC = 3 };

  virtual ~GRIResampler() = default;

  /// @return null for a kind that isn't one of those three, a data type that GRIRowResampler
  ///         doesn't serve, or when memory runs out
  static std::unique_ptr<GRIResampler> create(GRIDataType dataType, gr_uint32 kind);

  /// Fills `destRect` of `dest`.
  /// @param src0, src1  the source, the second one directly below the first; both of the total
  ///                    width of each other
  /// @param srcRect     in rows of the two together
  /// @param x0, y0      the position of the first pixel of `destRect`
  /// @param xStep, yStep  from one pixel of the destination to the next
  /// All three buffers have one pixel; the rectangles lie in their windows.
  virtual void resample(GRISceneBuffer& dest, const GRIResampleRect& destRect,
                        const GRISceneBuffer& src0, const GRISceneBuffer& src1,
                        const GRIResampleRect& srcRect, float x0, float y0, float xStep,
                        float yStep) const = 0;
  /// The same from one buffer.
  virtual void resample(GRISceneBuffer& dest, const GRIResampleRect& destRect,
                        const GRISceneBuffer& src, const GRIResampleRect& srcRect, float x0,
                        float y0, float xStep, float yStep) const = 0;
  /// Scales `srcScene`, which the window of `src` holds, to the whole window of `dest`.
  void resample(GRISceneBuffer& dest, const GRISceneBuffer& src, const GRIScene& srcScene, float x0,
                float y0) const;

  /// The scene of `stage` that is needed to produce `scene`, which is in pixels of the stage too:
  /// its sides moved outward by the kernel's reach, to whole numbers, and limited to the stage.
  /// @return the scene; without columns or rows when `scene` lies beside the stage
  GRIScene getRequiredScene(const GRIImage& stage, const GRIScene& scene) const;

 protected:
  /// @param before, after  the reach of the kernel, in pixels of the source
  GRIResampler(gr_int32 before, gr_int32 after, std::unique_ptr<GRIRowResampler> rowResampler)
      : m_before(before), m_after(after), m_rowResampler(std::move(rowResampler)) {}
  GRIResampler(const GRIResampler&) = delete;
  GRIResampler& operator=(const GRIResampler&) = delete;

  const GRIRowResampler& getRowResampler() const { return *m_rowResampler; }

 private:
  gr_int32 m_before;
  gr_int32 m_after;
  std::unique_ptr<GRIRowResampler> m_rowResampler;
};
