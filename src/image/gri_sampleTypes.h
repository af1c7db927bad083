/// @file
/// From a data type's number to the C++ type.
#pragma once

#include <cassert>
#include <utility>

#include "image/gri_dataTypes.h"

template <typename T>
struct GRITypeTag {
  using Type = T;
};

/// Calls `function` with the GRITypeTag of the C++ type of `dataType`, one of the first ten.
/// @param otherwise  the result for any other number
template <typename Function, typename Result>
Result gri_visitType(GRIDataType dataType, Function&& function, Result otherwise) {
  switch (dataType) {
    case GRI_DATATYPE_UINT8:
      return function(GRITypeTag<gr_uint8>{});
    case GRI_DATATYPE_SINT8:
      return function(GRITypeTag<gr_int8>{});
    case GRI_DATATYPE_UINT16:
      return function(GRITypeTag<gr_uint16>{});
    case GRI_DATATYPE_SINT16:
      return function(GRITypeTag<gr_int16>{});
    case GRI_DATATYPE_UINT32:
      return function(GRITypeTag<gr_uint32>{});
    case GRI_DATATYPE_SINT32:
      return function(GRITypeTag<gr_int32>{});
    case GRI_DATATYPE_FLOAT32:
      return function(GRITypeTag<float>{});
    case GRI_DATATYPE_FLOAT64:
      return function(GRITypeTag<double>{});
    case GRI_DATATYPE_UINT64:
      return function(GRITypeTag<gr_uint64>{});
    case GRI_DATATYPE_SINT64:
      return function(GRITypeTag<gr_int64>{});
    default:
      return otherwise;
  }
}
