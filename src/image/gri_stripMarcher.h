/// @file
/// GRIStripMarcher, how a scene is cut into strips.
#pragma once

#include "gr_lib_utils/include/gr_types.h"
#include "image/gri_scene.h"

/// The strips of one decode: rows of the full scene, all of the same height but the last.
class GRIStripMarcher {
 public:
  /// @param stripHeight  rows; above 0
  GRIStripMarcher(const GRIScene& fullScene, gr_int32 stripHeight)
      : m_fullScene(fullScene), m_stripHeight(stripHeight) {
    const gr_int64 rows = fullScene.getNumRows();
    m_numStrips = static_cast<gr_int32>((rows + stripHeight - 1) / stripHeight);
  }

  const GRIScene& getFullScene() const { return m_fullScene; }
  gr_int32 getStripHeight() const { return m_stripHeight; }
  gr_int32 getNumStrips() const { return m_numStrips; }

  /// Strip `number`: the full scene's columns and magnification, and its rows from
  /// `number` * strip height on.
  GRIScene getStripScene(gr_int32 number) const {
    const double offset = static_cast<double>(number) * m_stripHeight;
    const double left = m_fullScene.getHeight() - offset;
    const bool isLast = number == m_numStrips - 1;
    return {m_fullScene.getUpperLeftCol(), m_fullScene.getUpperLeftRow() + offset,
            m_fullScene.getWidth(), isLast ? left : m_stripHeight, m_fullScene.getMag()};
  }

 private:
  GRIScene m_fullScene;
  gr_int32 m_stripHeight;
  gr_int32 m_numStrips = 0;
};
