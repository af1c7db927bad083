/// @file
/// TG3FileSimplePlaneSource, the coded planes of an image of a container.
#pragma once

#include <memory>

#include "gr_lib_tg3kernel/src/tg3_db_lib/tg3_fileSimpleContainer.h"
#include "gr_lib_tg3kernel/src/tg3_plane_lib/gr_lock.h"
#include "gr_lib_tg3kernel/src/tg3_plane_lib/tg3_filePlaneStore.h"
#include "gr_lib_tg3kernel/src/tg3_plane_lib/tg3_filePlaneStoreClient.h"
#include "image/tesra_imageReaderInterface.h"

/// Makes the index of an image and the client that a decoder reads its planes through.
class TG3FileSimplePlaneSource {
 public:
  TG3FileSimplePlaneSource() = default;
  TG3FileSimplePlaneSource(const TG3FileSimplePlaneSource&) = delete;
  TG3FileSimplePlaneSource& operator=(const TG3FileSimplePlaneSource&) = delete;

  /// Reads all records of the image, by a duplicate of the container's stream. With the
  /// environment variable TG3_USE_STREAM_BUFFERS, whatever its value, each subband has buffers of
  /// its own; GR_TG3_MEMORY_MODEL may change the model (tg3_chooseMemoryModel).
  /// The lock of an image that calls itself locked has nobody to ask at first (getLock).
  /// @param container  initialized; the caller's, and it outlives this
  /// @return 0; 2005 for a lock that can't be one; 2009 for a memory usage that isn't one, or where
  ///         the image can't have the order of its planes; 2010 for an image without header or
  ///         planes, or with several; 2012 for memory; else the status of a packet, of
  ///         TG3FilePlaneReader::populate or the stream
  [[nodiscard]] GR_STATUS initialize(TG3FileSimpleContainer& container, gr_uint32 image,
                                     TesraMemoryUsage usage);

  const TG3ImageInfo& getImageInfo() const { return m_info; }
  const TG3PlanesetPacket& getPlaneset() const { return *m_planeset; }
  TG3MemoryModel getMemoryModel() const { return m_model; }
  TG3FilePlaneStoreClient& getClient() { return *m_client; }
  /// Null where the image isn't locked, or has no packet that says how.
  GRLock* getLock() { return m_lock.get(); }

 private:
  GR_STATUS makeLock(TG3FileSimpleContainer& container, gr_uint32 image);

  TG3ImageInfo m_info;
  const TG3PlanesetPacket* m_planeset = nullptr;  // the container's
  TG3MemoryModel m_model = TG3_MEMORY_NONE;
  TG3FilePlaneStore m_store;
  std::unique_ptr<GRLock> m_lock;
  std::unique_ptr<TG3FilePlaneStoreClient> m_client;
};
