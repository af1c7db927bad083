/// @file
/// TG3PacketType, the header of a packet, which is also the query for packets.
#pragma once

#include "gr_lib_utils/include/gr_ioStream.h"
#include "gr_lib_utils/include/gr_types.h"

/// The types of packets. Files may hold others, which have no class and are stepped over.
enum TG3PacketTypeCode : gr_int32 {
  TG3_PACKET_TYPE_INVALID = 0,
  TG3_PACKET_TYPE_HEADER = 1,
  TG3_PACKET_TYPE_METADATA = 2,
  TG3_PACKET_TYPE_INDEX = 3,
  TG3_PACKET_TYPE_PLANESET = 4,
  TG3_PACKET_TYPE_SECURITY = 5,
  TG3_PACKET_TYPE_CONTENTS = 6,
  TG3_PACKET_TYPE_TG2_IMAGE = 7,
};

/// What stands in front of a packet's body. On disk every number takes the fewest bytes that hold
/// it, so the header has no fixed size.
struct TG3PacketType {
  static constexpr gr_uint32 ANY = 0xFFFFFFFF;  ///< in a query, and in a file as well
  static constexpr gr_int32 ANY_TYPE = -1;
  static constexpr gr_uint64 OPEN_LENGTH = ~gr_uint64{0};  ///< the body takes all of the stream

  gr_int32 type = TG3_PACKET_TYPE_INVALID;
  gr_uint32 subType = 0;
  gr_uint32 subSubType = 0;
  gr_uint32 image = 0;
  gr_uint32 sequence = 0;
  gr_uint8 versionMajor = 0;
  gr_uint8 versionMinor = 0;

  /// A query; ANY stands for any value.
  static TG3PacketType query(gr_int32 type, gr_uint32 subType, gr_uint32 subSubType,
                             gr_uint32 image);

  /// Whether type, both subtypes and image are equal in both, or any in one of them. The version
  /// and the sequence don't count.
  bool matches(const TG3PacketType& other) const;

  /// Reads the header at the position of an open stream, and leaves the position behind it.
  /// @param length  receives the length of the body, in bytes, as the file has it
  /// @return 0; 2001 when the stream ends inside; 2006 when a reserved bit is set
  [[nodiscard]] GR_STATUS read(GRIOStreamInf& stream, gr_uint64& length);

  /// Writes the header at the position of an open stream: each number in the fewest bytes that
  /// hold it, but the length always in 8.
  /// @param length  of the body, bytes
  /// @return 0; 2002 for a short write
  [[nodiscard]] GR_STATUS write(GRIOStreamInf& stream, gr_uint64 length) const;

  /// Bytes that a writer of this header takes, which always stores a length of 8 bytes.
  gr_uint32 getWrittenSize() const;

  bool operator==(const TG3PacketType&) const = default;
};
