/// @file
/// TG3FilePlaneStoreClient, one decoder's view of the planes of an image in a file.
#pragma once

#include <memory>

#include "gr_lib_tg3kernel/src/tg3_plane_lib/tg3_filePlaneReader.h"
#include "gr_lib_tg3kernel/src/tg3_plane_lib/tg3_filePlaneStore.h"
#include "gr_lib_tg3kernel/src/tg3_plane_lib/tg3_planeLock.h"
#include "gr_lib_tg3kernel/src/tg3_plane_lib/tg3_planeStoreClient.h"
#include "gr_lib_utils/include/gr_growingArray.h"

class TG3FilePlaneStoreClient final : public TG3PlaneStoreClient {
 public:
  /// @param info, store  the caller's; they outlive the client
  /// @param lock  of the image; the caller's. Null where it has none: then the planes of an image
  ///              that calls itself locked can't be read.
  /// @param stream  the client's own, closed or open
  /// @param reader  the client's own, made with that stream
  /// @param leaveOpen  whether the stream stays open between two uses
  TG3FilePlaneStoreClient(const TG3ImageInfo& info, const TG3FilePlaneStore& store,
                          TG3PlaneLock* lock, std::unique_ptr<GRIOStreamInf> stream,
                          std::unique_ptr<TG3FilePlaneReader> reader, bool leaveOpen)
      : m_info(info),
        m_store(store),
        m_lock(lock),
        m_leaveOpen(leaveOpen),
        m_stream(std::move(stream)),
        m_reader(std::move(reader)) {}

  /// @return also the stream's status of opening
  [[nodiscard]] GR_STATUS readSubblock(gr_uint32 subband, gr_uint32 subblock,
                                       TG3SubblockPlanes& planes) override;
  bool hasData(gr_uint32 subband, gr_uint32 first, gr_uint32 last) override {
    return m_store.hasAny(subband, first, last);
  }
  void endUse() override;
  void setLock(TG3PlaneLock* lock) { m_lock = lock; }

 private:
  GR_STATUS decipher(gr_uint32 subband, gr_uint32 subblock, TG3SubblockPlanes planes);

  const TG3ImageInfo& m_info;
  const TG3FilePlaneStore& m_store;
  TG3PlaneLock* m_lock;
  const bool m_leaveOpen;
  std::unique_ptr<GRIOStreamInf> m_stream;
  std::unique_ptr<TG3FilePlaneReader> m_reader;  // reads m_stream, so it goes first
  GRGrowingArray<gr_uint8> m_deciphered;         // the planes of a subblock of a locked image
};
