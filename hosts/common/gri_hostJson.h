/// @file
/// What a picture says about itself, for programs. Numbers that JSON hasn't (NaN, infinity) are
/// null.
#pragma once

#include <nlohmann/json.hpp>

#include "hosts/common/gri_hostImage.h"

/// The properties of an open picture. The keys, always all of them and in this order:
///     format                "NITF 2.1"
///     size                  [columns, rows]
///     tiles                 images that the file shows as one picture
///     bands                 ["red", "green", "blue"]
///     colorSpace            "RGB"
///     dataType, bits        "uint16", 11
///     magnifications        [{"magnification": 0.5, "size": [512, 384]}, ...], largest first
///     magnificationRange    [0.0625, 1.0]
///     position              null, or {"origin": [x, y] of the centre of the upper left pixel,
///                           "resolution": [x, y], "rotation": [x, y]}
///     corners               null, or the outer corners of the picture: {"upperLeft": [x, y],
///                           "upperRight": ..., "lowerRight": ..., "lowerLeft": ...}
///     crs                   null, or {"wkt": "..."}
///     noData                null, or a value for each band
///     locked                true when it needs a password
///     metadata              as gri_hostMetadataJson has it
nlohmann::ordered_json gri_hostInfoJson(const GRIHostImage& image);

/// The metadata records in the file's order:
///     [{"tag": "IMAGE::WKT", "type": "text", "dims": [1], "value": "..."}, ...]
/// A scalar's value is a number or a string; every other record's is an array, nested by its
/// dimensions.
nlohmann::ordered_json gri_hostMetadataJson(const GRIHostImage& image);
