/// @file
/// GRIStripMarcher, how a scene is cut into strips.
#pragma once

#include "gr_lib_utils/include/gr_types.h"
#include "image/gri_scene.h"

/// The strips of one decode: rows of the full scene, all of the same height but the last. Their
/// whole rows tile those of the full scene without gaps or overlaps, whatever fraction its upper
/// row has.
class GRIStripMarcher {
 public:
  /// @param stripHeight  rows; above 0
  GRIStripMarcher(const GRIScene& fullScene, gr_int32 stripHeight);

  const GRIScene& getFullScene() const { return m_fullScene; }
  gr_int32 getStripHeight() const { return m_stripHeight; }
  gr_int32 getNumStrips() const { return m_numStrips; }

  /// Strip `number`, from 0: the full scene's columns and magnification, and its rows from
  /// `number` * strip height on.
  GRIScene getStripScene(gr_int32 number) const;

 private:
  GRIScene m_fullScene;
  gr_int32 m_stripHeight;
  gr_int32 m_numStrips;
};
