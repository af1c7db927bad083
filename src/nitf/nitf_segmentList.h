/// @file
/// NITFSegmentLists, all segments of a file by kind.
#pragma once

#include <memory>

#include "gr_lib_utils/include/gr_memory.h"
#include "gr_lib_utils/include/gr_types.h"

class NITFDataSegment;
class NITFGraphicSegment;
class NITFImageSegment;
class NITFLabelSegment;
class NITFResSegment;
class NITFTextSegment;

/// The segments of one kind in the order of the file.
template <typename Segment>
using NITFSegmentList = GRArray<std::unique_ptr<Segment>>;

struct NITFSegmentLists {
  // Where the kinds are known, so that others can hold this without.
  NITFSegmentLists();
  ~NITFSegmentLists();
  NITFSegmentLists(const NITFSegmentLists&) = delete;
  NITFSegmentLists& operator=(const NITFSegmentLists&) = delete;

  NITFSegmentList<NITFImageSegment> images;
  NITFSegmentList<NITFGraphicSegment> graphics;
  NITFSegmentList<NITFLabelSegment> labels;
  NITFSegmentList<NITFTextSegment> texts;
  NITFSegmentList<NITFDataSegment> data;
  NITFSegmentList<NITFResSegment> reserved;
};
