/// @file
/// TG3FilePlaneReader, which reads the records and the planes of an image from its file.
#pragma once

#include <memory>
#include <optional>

#include "gr_lib_tg3kernel/src/tg3_packet_lib/tg3_imageInfo.h"
#include "gr_lib_tg3kernel/src/tg3_packet_lib/tg3_planesetPacket.h"
#include "gr_lib_tg3kernel/src/tg3_plane_lib/tg3_mspTable.h"
#include "gr_lib_tg3kernel/src/tg3_plane_lib/tg3_planeData.h"
#include "gr_lib_tg3kernel/src/tg3_plane_lib/tg3_planeRecord.h"
#include "gr_lib_tg3kernel/src/tg3_plane_lib/tg3_streamWindow.h"
#include "gr_lib_utils/include/gr_growingArray.h"
#include "gr_lib_utils/include/gr_ioStream.h"
#include "gr_lib_utils/include/gr_memory.h"

class TG3FilePlaneStore;

/// Reads one image by the storage of its planes. It keeps pieces of the file, and what it found
/// last, from one call to the next, so it serves one user.
class TG3FilePlaneReader {
 public:
  virtual ~TG3FilePlaneReader() = default;
  TG3FilePlaneReader(const TG3FilePlaneReader&) = delete;
  TG3FilePlaneReader& operator=(const TG3FilePlaneReader&) = delete;

  /// Makes the reader for a storage.
  /// @param info, planeset, stream  the caller's; they outlive the reader. The stream is open
  ///        whenever the reader is used.
  /// @param useBuffers  whether pieces of the file are kept for each subband by itself
  /// @return 0; 2012 for memory
  [[nodiscard]] static GR_STATUS make(const TG3ImageInfo& info, const TG3PlanesetPacket& planeset,
                                      GRIOStreamInf& stream, bool useBuffers,
                                      std::unique_ptr<TG3FilePlaneReader>& reader);

  /// Adds the first stored plane of every subblock to a store.
  /// @return 0; 2001 for a record, a table or a number of slots that can't be; 2009 where the image
  ///         can't have the planeset's order; 2010 for a record that is too long; 2012 for memory;
  ///         else the stream's status
  [[nodiscard]] virtual GR_STATUS populate(TG3FilePlaneStore& store) = 0;

  /// Reads all planes of a subblock from its first one on.
  /// @param first   the first stored plane (TG3FilePlaneStore::lookup)
  /// @param planes  receives the stored planes, valid until the next call
  /// @return see TG3PlaneStoreClient::readSubblock
  [[nodiscard]] virtual GR_STATUS readSubblock(const TG3PlaneLocation& first,
                                               TG3SubblockPlanes& planes) = 0;

  /// Walks over the records of a row of subblocks.
  /// @param location  where to start, at a stored plane in a subblock before the target; receives
  ///                  the target's first stored plane, or an empty slot before it
  /// @param target  subblock in the same row
  /// @param found  receives whether the records lead there; else `location` means nothing
  /// @return 0; 2015 for a storage without walks; else the status of reading the records
  [[nodiscard]] virtual GR_STATUS walk(TG3PlaneLocation& location, gr_uint32 target, bool& found);
  /// Where the last walk of a table's lookup ended, or null.
  const TG3PlaneLocation* getLastWalk() const { return m_lastWalk ? &*m_lastWalk : nullptr; }
  void setLastWalk(const TG3PlaneLocation& location) { m_lastWalk = location; }

 protected:
  TG3FilePlaneReader(const TG3ImageInfo& info, const TG3PlanesetPacket& planeset,
                     GRIOStreamInf& stream, bool useBuffers);

  /// Makes the pieces of the file: one, or one for each subband, and one for the records.
  GR_STATUS makeWindows();
  TG3StreamWindow& getDataWindow(gr_uint32 subband) {
    return m_dataWindows[m_useBuffers ? subband : 0];
  }

  /// Reads the record at `offset`.
  GR_STATUS readRecord(TG3StreamWindow& window, gr_uint64 offset, TG3PlaneRecord& record);
  /// Starts a list of planes with the given slot.
  void beginPlanes(const TG3PlaneDesc& desc);
  /// Adds a plane at the current slot, whose body is at `offset` of the stream.
  GR_STATUS addPlane(const TG3PlaneRecord& record, gr_uint64 offset);
  /// Goes on by `count` slots.
  void skipSlots(gr_uint64 count) { m_slot += count; }
  gr_uint64 slotsLeft() const { return m_numSlots - m_slot; }
  bool hasPlanes() const { return !m_planes.empty(); }
  /// Points all planes into `bytes`, which are those at `offset` of the stream.
  void endPlanes(gr_uint8* bytes, gr_uint64 offset, TG3SubblockPlanes& planes);

  const TG3ImageInfo& m_info;
  const TG3PlanesetPacket& m_planeset;
  GRIOStreamInf& m_stream;
  const bool m_useBuffers;
  const gr_uint64 m_fixedBytes;  // in front of the coded bytes of a plane
  const gr_uint64 m_end;         // of the planeset's body, from the start of the stream
  TG3StreamWindow m_table;       // records

 private:
  const gr_uint64 m_numSlots;
  gr_uint64 m_slot = 0;
  GRGrowingArray<TG3PlaneData> m_planes;
  GRGrowingArray<gr_uint64> m_planeOffsets;  // of the coded bytes, from the start of the stream
  GRArray<TG3StreamWindow> m_dataWindows;
  std::optional<TG3PlaneLocation> m_lastWalk;
};

/// Each plane stands behind its record.
class TG3InterleavedPlaneReader final : public TG3FilePlaneReader {
 public:
  TG3InterleavedPlaneReader(const TG3ImageInfo& info, const TG3PlanesetPacket& planeset,
                            GRIOStreamInf& stream, bool useBuffers)
      : TG3FilePlaneReader(info, planeset, stream, useBuffers) {}

  [[nodiscard]] GR_STATUS populate(TG3FilePlaneStore& store) override;
  [[nodiscard]] GR_STATUS readSubblock(const TG3PlaneLocation& first,
                                       TG3SubblockPlanes& planes) override;
};

/// A region of planes, then their records.
class TG3DataFirstPlaneReader : public TG3FilePlaneReader {
 public:
  TG3DataFirstPlaneReader(const TG3ImageInfo& info, const TG3PlanesetPacket& planeset,
                          GRIOStreamInf& stream, bool useBuffers)
      : TG3FilePlaneReader(info, planeset, stream, useBuffers) {}

  [[nodiscard]] GR_STATUS populate(TG3FilePlaneStore& store) override;
  [[nodiscard]] GR_STATUS readSubblock(const TG3PlaneLocation& first,
                                       TG3SubblockPlanes& planes) override;
  [[nodiscard]] GR_STATUS walk(TG3PlaneLocation& location, gr_uint32 target, bool& found) override;

 protected:
  /// Reads the records of a region.
  /// @param position  of the region; receives the end of its records
  GR_STATUS populateRegion(TG3FilePlaneStore& store, gr_uint64& position);
  gr_uint64 getOffsetBytes() const { return m_planeset.is64Bit() ? 8 : 4; }
  /// Reads a big-endian number of the file.
  GR_STATUS readNumber(gr_uint64 offset, gr_uint64 numBytes, gr_uint64& number);

 private:
  GR_STATUS findTable(gr_uint64 region, gr_uint64& table);
};

/// Several regions, each of which has records for all slots.
class TG3RasterBlockPlaneReader final : public TG3DataFirstPlaneReader {
 public:
  TG3RasterBlockPlaneReader(const TG3ImageInfo& info, const TG3PlanesetPacket& planeset,
                            GRIOStreamInf& stream, bool useBuffers)
      : TG3DataFirstPlaneReader(info, planeset, stream, useBuffers) {}

  [[nodiscard]] GR_STATUS populate(TG3FilePlaneStore& store) override;
  [[nodiscard]] GR_STATUS walk(TG3PlaneLocation& location, gr_uint32 target, bool& found) override;
};
