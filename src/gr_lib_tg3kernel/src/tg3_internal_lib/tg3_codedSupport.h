/// @file
/// Which part of a subband is coded in an image of which only a part is visible.
#pragma once

#include "gr_lib_tg3kernel/src/tg3_packet_lib/tg3_imageInfo.h"
#include "gr_lib_tg3kernel/src/tg3_subblock_lib/tg3_subblockDecode.h"

/// The coefficients of a subband that the visible part of an image can reach; the others aren't in
/// the file, and are zero. All of the subband when the whole image is visible; empty for a subband
/// that belongs to a removed level.
///
/// @param subband  below info.getNumSubbands()
/// @return in the coordinates of the subband
TG3Rect tg3_codedSupport(const TG3ImageInfo& info, gr_uint32 subband);

/// The part of a subblock that is coded, relative to the subblock.
/// @param subblock  where the subblock lies in its subband
/// @param coded     what tg3_codedSupport says
void tg3_codedRanges(const TG3Rect& subblock, const TG3Rect& coded, TG3CodedRange& columns,
                     TG3CodedRange& rows);
