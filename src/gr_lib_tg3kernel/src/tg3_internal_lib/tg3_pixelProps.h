/// @file
/// Pixels of an image, made of the codes in its packets.
#pragma once

#include <memory>

#include "gr_lib_tg3kernel/src/tg3_packet_lib/tg3_georefData.h"
#include "gr_lib_tg3kernel/src/tg3_packet_lib/tg3_imageInfo.h"
#include "image/gri_dataTypes.h"
#include "image/gri_pixel.h"

/// The colour space of a header's code; GRI_COLORSPACE_INVALID for an unknown one.
GRIColorSpace tg3_toColorSpace(gr_int32 code);
/// The data type of a file's; GRI_DATATYPE_INVALID for one that images don't have.
GRIDataType tg3_toDataType(TG3Datatype datatype);

/// Makes the pixel of an image.
/// @param pixel        receives it; left alone on failure
/// @param badColor     what to return for an unknown colour space, or one of another band count
/// @param badDatatype  what to return for a data type that images don't have
/// @return 0; 8 for memory; one of the two
[[nodiscard]] GR_STATUS tg3_makePixel(const TG3ImageInfo& info, GR_STATUS badColor,
                                      GR_STATUS badDatatype, std::unique_ptr<GRIPixel>& pixel);

/// Makes a pixel of the georeference.
/// @param props   the image's pixel, with as many bands as the record has values
/// @param pixel   receives it; left alone on failure
/// @return 0; 8 for memory
[[nodiscard]] GR_STATUS tg3_makePixel(const GRIPixel& props, const TG3PixelRecord& record,
                                      std::unique_ptr<GRIPixel>& pixel);
