/// @file
/// TG3Container, a chain of packets as a list of images.
#pragma once

#include <mutex>

#include "gr_lib_tg3kernel/src/tg3_db_lib/tg3_packetDb.h"
#include "gr_lib_tg3kernel/src/tg3_packet_lib/tg3_headerPacket.h"
#include "gr_lib_tg3kernel/src/tg3_packet_lib/tg3_metadataPacket.h"
#include "gr_lib_tg3kernel/src/tg3_packet_lib/tg3_planesetPacket.h"
#include "gr_lib_tg3kernel/src/tg3_packet_lib/tg3_securityPacket.h"
#include "gr_lib_tg3kernel/src/tg3_packet_lib/tg3_tg2Packet.h"

/// The generation of an image.
enum TG3ImageKind : gr_int32 {
  TG3_IMAGE_TG3 = 2,
  TG3_IMAGE_TG2 = 3,  ///< a whole file of the older generation in a packet
};

/// An image of a container.
struct TG3ImageDesc {
  gr_uint32 image = 0;  ///< its number
  TG3ImageKind kind = TG3_IMAGE_TG3;
  bool operator==(const TG3ImageDesc&) const = default;
};

/// The images of a chain of packets, and the packets that make them up.
///
/// Several readers share a container: whatever reads packets takes its lock. Packets that it hands
/// out stay its own and never change.
class TG3Container {
 public:
  virtual ~TG3Container() = default;
  TG3Container(const TG3Container&) = delete;
  TG3Container& operator=(const TG3Container&) = delete;

  /// Finds all packets and images; called once.
  /// @return 0; 2010 when called again; 2012 for memory; else the status of reading the chain
  ///         (TG3PacketDB::read), and then the container is of no use
  [[nodiscard]] GR_STATUS initialize();

  const TG3Version& getVersion() const { return m_packets.getVersion(); }
  /// In the order of the file; each number occurs once.
  const TG3List<TG3ImageDesc>& getImages() const { return m_images; }
  size_t getNumImages() const { return m_images.size(); }
  bool hasTG2Image() const { return m_hasTG2Image; }
  /// @return 0; 2009 for a number that no image has
  [[nodiscard]] GR_STATUS getDesc(gr_uint32 image, TG3ImageDesc& desc) const;

  /// Gives the one packet of a query, which names a type.
  /// @param packet  the packet; null where none or more than one matches
  /// @return 0, also then; else the status of opening the stream or of DBObjectProxy::fetch
  [[nodiscard]] GR_STATUS getPacket(const TG3PacketType& query, const TG3Packet*& packet);

  // Packets of an image. Each is 0 or the status of getPacket.
  /// @return also 2010 when the image has no header, or more than one
  [[nodiscard]] GR_STATUS getHeader(gr_uint32 image, const TG3HeaderPacket*& packet);
  /// @return also 2010 when the image has no coded data, or twice
  [[nodiscard]] GR_STATUS getPlaneset(gr_uint32 image, const TG3PlanesetPacket*& packet);
  /// Null where the image has no lock.
  [[nodiscard]] GR_STATUS getSecurity(gr_uint32 image, const TG3SecurityPacket*& packet);
  /// @return also 2010 when the image has no such packet, or more than one
  [[nodiscard]] GR_STATUS getTG2Image(gr_uint32 image, const TG3TG2Packet*& packet);

  /// All packets, in the order of the file.
  const TG3List<DBObjectProxy>& getPackets() const { return m_packets.getProxies(); }
  /// Copies bytes of the file as they are.
  /// @param target  open, not the container's own stream; from its position on
  /// @return 0; 2001 where the file ends early; 2002 for a short write; 2012 for memory; else the
  ///         stream's status
  [[nodiscard]] virtual GR_STATUS copyBytes(gr_uint64 offset, gr_uint64 length,
                                            GRIOStreamInf& target) = 0;

  /// Whether there is a block of metadata with just these keys.
  bool hasMetadata(gr_uint32 subType, gr_uint32 subSubType, gr_uint32 image) const;
  /// Null where none or more than one matches.
  [[nodiscard]] GR_STATUS getMetadata(gr_uint32 subType, gr_uint32 subSubType, gr_uint32 image,
                                      const TG3MetadataPacket*& packet);

 protected:
  TG3Container() = default;

  /// Reads the chain of packets.
  virtual GR_STATUS readPackets(TG3PacketDB& packets) = 0;
  /// Fetches a packet.
  virtual GR_STATUS fetch(DBObjectProxy& proxy, const TG3Packet*& packet) = 0;

  std::recursive_mutex& getLock() { return m_lock; }

 private:
  GR_STATUS makeImages();
  template <typename PacketClass>
  GR_STATUS getPacketOf(const TG3PacketType& query, const PacketClass*& packet);

  std::recursive_mutex m_lock;
  bool m_isInitialized = false;
  bool m_hasTG2Image = false;
  TG3PacketDB m_packets;
  TG3List<TG3ImageDesc> m_images;
  GRArray<TG3ImageDesc> m_imagesByNumber;
};
