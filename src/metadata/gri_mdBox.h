/// @file
/// MDBox, the chunks of georeferencing in a box of a JP2 file.
#pragma once

#include <array>
#include <optional>
#include <span>

#include "gr_lib_utils/include/gr_types.h"

/// Six numbers in the order of the lines of a world file.
struct GeoMDChunk {
  double xRes = 0.0;
  double ySkew = 0.0;
  double xSkew = 0.0;
  double yRes = 0.0;  ///< downwards, whatever its sign
  double xUpperLeft = 0.0;
  double yUpperLeft = 0.0;
};

/// What parsing a box comes to. Only a box with MDBOX_OK is to be used.
enum MDBoxResult : gr_int32 {
  MDBOX_OK = 0,
  MDBOX_UNKNOWN_CHUNK = 1,  ///< a chunk of a type that nobody knows was stepped over
  MDBOX_BAD_LENGTH = 2,     ///< a chunk, or the box, has not the length that it should have
  MDBOX_BAD_MAGIC = -1,
};

/// A "ZEBG" block: a small header, then chunks with a type and a length, little-endian. Of the
/// known chunks (a position, free bytes, a command line, an operating system) only the position
/// means anything to a reader.
class MDBox {
 public:
  MDBox() = default;

  /// Parses a block. What was parsed before is forgotten.
  [[nodiscard]] MDBoxResult parse(std::span<const gr_uint8> bytes);

  bool hasGeo() const { return m_geo.has_value(); }
  /// The position; of several, the first. Nothing where there is none.
  const std::optional<GeoMDChunk>& getGeo() const { return m_geo; }

 private:
  bool parseGeo(std::span<const gr_uint8> payload);

  std::optional<GeoMDChunk> m_geo;
};
