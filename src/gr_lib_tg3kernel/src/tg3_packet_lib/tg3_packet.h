/// @file
/// TG3Packet, what all packets of a file have in common.
#pragma once

#include <memory>

#include "gr_lib_tg3kernel/src/tg3_packet_lib/tg3_packetType.h"
#include "gr_lib_utils/include/gr_ioStream.h"
#include "gr_lib_utils/include/gr_types.h"

/// Where a packet lies in its stream, in bytes from the start of the stream.
struct TG3PacketPlace {
  gr_uint64 headerOffset = 0;
  gr_uint64 bodyOffset = 0;
  gr_uint64 bodyLength = 0;  ///< may pass the end of the stream; an open end has been closed
  gr_uint64 streamEnd = 0;   ///< where the stream ends
  bool isOpenEnded = false;  ///< whether the body takes all of the stream

  /// The end of the body, or of the stream where that comes first.
  gr_uint64 getEnd() const;
};

/// A packet whose body has been read.
class TG3Packet {
 public:
  virtual ~TG3Packet() = default;
  TG3Packet(const TG3Packet&) = delete;
  TG3Packet& operator=(const TG3Packet&) = delete;

  const TG3PacketType& getType() const { return m_type; }
  const TG3PacketPlace& getPlace() const { return m_place; }

  /// Reads the body; called once.
  /// @param stream  open, at the body; the caller's
  /// @return 0; 2001 when the body or the stream ends early; 2012 for memory; else what a class
  ///         says
  [[nodiscard]] virtual GR_STATUS read(GRIOStreamInf& stream) = 0;

  /// An unread packet of the class for its type; null for a type without class, or no memory.
  static std::unique_ptr<TG3Packet> make(const TG3PacketType& type, const TG3PacketPlace& place);
  /// Whether a type has a class.
  static bool hasClass(gr_int32 type);

 protected:
  TG3Packet(const TG3PacketType& type, const TG3PacketPlace& place)
      : m_type(type), m_place(place) {}

  TG3PacketType m_type;
  TG3PacketPlace m_place;
};
