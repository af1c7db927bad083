/// @file
/// TG3PlaneStoreClient, where a decoder gets the coded planes of a subblock from.
#pragma once

#include "gr_lib_tg3kernel/src/tg3_plane_lib/tg3_planeData.h"
#include "gr_lib_utils/include/gr_types.h"

/// One decoder's view of a plane store. It has buffers of its own that grow to the largest subblock
/// and are reused from then on, so it serves one decoder at a time.
class TG3PlaneStoreClient {
 public:
  virtual ~TG3PlaneStoreClient() = default;
  TG3PlaneStoreClient(const TG3PlaneStoreClient&) = delete;
  TG3PlaneStoreClient& operator=(const TG3PlaneStoreClient&) = delete;

  /// Reads all planes of a subblock, deciphered where they are locked.
  /// @param subband, subblock  of the image (TG3ImageInfo::getNumSubblocks)
  /// @param planes  receives the stored planes; they are valid until the next call
  /// @return 0; 2001 for a record or a plane that isn't all in the file, 2005 the same for what
  ///         stands in front of a plane where streams are buffered; 2010 for a bad record;
  ///         2011 for a locked plane without its key; 2012 for memory. `planes` is empty then.
  [[nodiscard]] virtual GR_STATUS readSubblock(gr_uint32 subband, gr_uint32 subblock,
                                               TG3SubblockPlanes& planes) = 0;

  /// Whether one of the subblocks `first` to `last`, both included, has a plane. It reads nothing.
  virtual bool hasData(gr_uint32 subband, gr_uint32 first, gr_uint32 last) = 0;

  /// Closes the file, unless it is to stay open, until it is read from again. For the end of a
  /// decode.
  virtual void endUse() = 0;

 protected:
  TG3PlaneStoreClient() = default;
};
