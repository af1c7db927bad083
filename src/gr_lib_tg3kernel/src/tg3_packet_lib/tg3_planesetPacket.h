/// @file
/// TG3PlanesetPacket, the head of the coded data of one image.
#pragma once

#include "gr_lib_tg3kernel/src/tg3_packet_lib/tg3_packet.h"

/// In which order the subblocks of an image lie in its file.
enum TG3Ordering : gr_uint8 {
  TG3_ORDERING_PIPE = 1,  ///< that in which the synthesis needs them (OrderingPipe)
  TG3_ORDERING_SBCP = 5,  ///< subband by subband, each row by row
};

/// How the planes of an image are laid out.
enum TG3Storage : gr_uint8 {
  TG3_STORAGE_INTERLEAVED = 0,   ///< each plane behind its record
  TG3_STORAGE_DATA_FIRST = 2,    ///< all planes, then all records
  TG3_STORAGE_RASTER_BLOCK = 3,  ///< several data-first regions
};

/// Says how the planes lie that follow its first bytes. They themselves aren't read with it.
class TG3PlanesetPacket final : public TG3Packet {
 public:
  static constexpr gr_uint64 HEAD_BYTES = 10;  ///< of the body, in front of the planes

  TG3PlanesetPacket(const TG3PacketType& type, const TG3PacketPlace& place)
      : TG3Packet(type, place) {}

  TG3Ordering getOrdering() const { return m_ordering; }
  TG3Storage getStorage() const { return m_storage; }
  /// The number of planes in the file as its writer says; good for an estimate and nothing else.
  gr_uint64 getNumPlanes() const { return m_numPlanes; }
  gr_uint64 getPayloadOffset() const { return m_place.bodyOffset + HEAD_BYTES; }
  /// Whether offsets and lengths in the planes take the forms for 64 bits.
  bool is64Bit() const { return m_type.versionMinor == 1; }

  /// @return 0; 2001 for a short body; 2006 for a version other than 0.0 and 0.1; 2009 for an
  ///         ordering that isn't listed; 2005 for a storage that isn't listed
  [[nodiscard]] GR_STATUS read(GRIOStreamInf& stream) override;

 private:
  TG3Ordering m_ordering = TG3_ORDERING_PIPE;
  TG3Storage m_storage = TG3_STORAGE_INTERLEAVED;
  gr_uint64 m_numPlanes = 0;
};
