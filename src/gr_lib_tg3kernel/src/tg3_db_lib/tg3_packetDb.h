/// @file
/// TG3PacketDB, the chain of packets of a file.
#pragma once

#include <array>

#include "gr_lib_tg3kernel/src/tg3_db_lib/tg3_dbObjectProxy.h"
#include "gr_lib_tg3kernel/src/tg3_db_lib/tg3_list.h"
#include "gr_lib_utils/include/gr_ioStream.h"
#include "gr_lib_utils/include/gr_memory.h"

/// The version bytes of a file.
struct TG3Version {
  gr_uint8 major = 0;
  gr_uint8 minor = 0;
  gr_uint8 revision = 0;
  gr_int8 letter = 0;

  /// "3.0.26.t"
  std::array<char, 24> toText() const;
  /// Whether this library reads files of the version: revision 26 with a letter up to 't', which
  /// compares as a number.
  bool isReadable() const;
  /// Writes the preamble of a file of this version. @return 0; 2002 for a short write
  [[nodiscard]] GR_STATUS write(GRIOStreamInf& stream) const;
  bool operator==(const TG3Version&) const = default;
};

/// Knows of every packet where it lies. Bodies are read when they are asked for.
class TG3PacketDB {
 public:
  TG3PacketDB() = default;

  /// Reads the preamble at the position of the stream and the headers of all packets behind it.
  /// @param stream  open, at the preamble; the caller's
  /// @return 0; 2001 for a stream that ends inside of the preamble or of a header; 2006 for
  ///         another magic, a version that isn't readable, or a header with reserved bits; 2012 for
  ///         memory, or for more packets than a stream of its length can mean; else the stream's
  ///         status
  [[nodiscard]] GR_STATUS read(GRIOStreamInf& stream);

  const TG3Version& getVersion() const { return m_version; }
  size_t count() const { return m_proxies.size(); }
  gr_uint64 getEnd() const { return m_end; }  ///< of the stream, bytes

  /// All packets in the order of the file.
  TG3List<DBObjectProxy>& getProxies() { return m_proxies; }
  const TG3List<DBObjectProxy>& getProxies() const { return m_proxies; }
  /// Whether there is a packet with just this type, subtypes and image.
  bool has(const TG3PacketType& type) const;
  /// The one packet that matches a query, which names a type; null where there is none, or more
  /// than one.
  DBObjectProxy* findOne(const TG3PacketType& query) const;

 private:
  struct IndexEntry {
    DBObjectProxy* proxy;
  };

  GR_STATUS readPreamble(GRIOStreamInf& stream);
  GR_STATUS readPacket(GRIOStreamInf& stream, gr_uint64& position);
  GR_STATUS makeIndex();
  /// The first packet in the index that doesn't stand before a type.
  const IndexEntry* firstFrom(const TG3PacketType& type) const;

  TG3Version m_version;
  gr_uint64 m_end = 0;
  TG3List<DBObjectProxy> m_proxies;
  GRArray<IndexEntry> m_index;  // sorted, so that a search among many is short
};
