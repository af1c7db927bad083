// The exported functions about streams; what they do is documented in the public header.
#include <bit>

#include "gr_lib_utils/include/gr_ioCallbackStream.h"
#include "gr_lib_utils/include/gr_memory.h"
#include "gri_rdk_cdll.h"
#include "gri_rdk_cdll/gri_handles.h"

// The numbers of the header are those of the streams.
static_assert(GRIC_SEEK_BEGIN == GRIO_SEEK_BEGIN);
static_assert(GRIC_SEEK_CURRENT == GRIO_SEEK_CURRENT);
static_assert(GRIC_SEEK_END == GRIO_SEEK_END);

namespace {

gr_int32 toResult(GR_STATUS status) { return std::bit_cast<gr_int32>(status); }

}  // namespace

gr_ioCStream gr_ioCallbackStreamCreate(gr_ioCOpenFunction open, gr_ioCCloseFunction close,
                                       gr_ioCReadFunction read, gr_ioCWriteFunction write,
                                       gr_ioCSeekFunction seek, gr_ioCTellFunction tell,
                                       gr_ioCIsEOFFunction isEOF, gr_ioCIsOpenFunction isOpen,
                                       gr_ioCDuplicateFunction duplicate, void* user) {
  const GRIOCallbacks callbacks = {.open = open,
                                   .close = close,
                                   .read = read,
                                   .write = write,
                                   .seek = seek,
                                   .tell = tell,
                                   .isEOF = isEOF,
                                   .isOpen = isOpen,
                                   .duplicate = duplicate};
  auto stream = gr_makeUnique<GRIOCallbackStream>();
  if (stream == nullptr || !GR_SUCCESS(stream->initialize(callbacks, user))) return nullptr;
  return gri_toHandle(stream.release());
}

gr_int32 gr_ioCStreamDestroy(gr_ioCStream stream) {
  // The destructor closes the stream.
  if (stream != nullptr) std::unique_ptr<GRIOStreamInf>(&gri_streamOf(stream)).reset();
  return 0;
}

gr_int32 gr_ioCStreamOpen(gr_ioCStream stream) { return toResult(gri_streamOf(stream).open()); }

gr_int32 gr_ioCStreamClose(gr_ioCStream stream) { return toResult(gri_streamOf(stream).close()); }

gr_uint32 gr_ioCStreamRead(gr_ioCStream stream, gr_uint8* buffer, gr_uint32 length) {
  return gri_streamOf(stream).read(buffer, length);
}

gr_uint32 gr_ioCStreamWrite(gr_ioCStream stream, const gr_uint8* buffer, gr_uint32 length) {
  return gri_streamOf(stream).write(buffer, length);
}

gr_int32 gr_ioCStreamSeek(gr_ioCStream stream, gr_int64 offset, gr_int32 origin) {
  return toResult(gri_streamOf(stream).seek(offset, static_cast<GRIOSeekDir>(origin)));
}

gr_int64 gr_ioCStreamTell(gr_ioCStream stream) { return gri_streamOf(stream).tell(); }

gr_uint8 gr_ioCStreamIsEOF(gr_ioCStream stream) { return gri_streamOf(stream).isEOF() ? 1 : 0; }

gr_uint8 gr_ioCStreamIsOpen(gr_ioCStream stream) { return gri_streamOf(stream).isOpen() ? 1 : 0; }

gr_ioCStream gr_ioCStreamDuplicate(gr_ioCStream stream) {
  GRIOStreamInf* const copy = gri_streamOf(stream).duplicate();
  return copy == nullptr ? nullptr : gri_toHandle(copy);
}
