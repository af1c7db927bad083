#include "gr_lib_utils/include/gr_ioStreamUtils.h"

#include <algorithm>
#include <cstdarg>
#include <cstdio>
#include <cstring>
#include <limits>

#include "gr_lib_utils/include/gr_exception.h"
#include "gr_lib_utils/include/gr_ioFileStream.h"
#include "gr_lib_utils/include/gr_memory.h"
#include "gr_lib_utils/include/gr_status.h"

namespace {

constexpr gr_uint32 COPY_BYTES = 65536;
constexpr gr_uint32 MEM_STREAM_BYTES = 4096;
constexpr float MEM_STREAM_GROWTH = 1.6F;
constexpr size_t PRINTF_FIRST_BYTES = 1024;
constexpr size_t PRINTF_MAX_BYTES = 0x2000000;
// Reasons for a short write that pass: interrupted, and no room right now.
constexpr GR_STATUS WRITE_INTERRUPTED = 4;
constexpr GR_STATUS WRITE_AGAIN = 11;
constexpr int MAX_EMPTY_WRITES = 1000;

GR_STATUS errorOf(GRIOStreamInf& stream) {
  const GR_STATUS status = stream.getLastError();
  return GR_SUCCESS(status) ? GR_STATUS_FAILURE : status;
}

GR_STATUS writeAll(GRIOStreamInf& stream, const gr_uint8* bytes, gr_uint32 length) {
  int emptyWrites = 0;
  while (length > 0) {
    const gr_uint32 count = stream.write(bytes, length);
    bytes += count;
    length -= count;
    if (length == 0) break;
    const GR_STATUS status = errorOf(stream);
    if (status != WRITE_AGAIN && status != WRITE_INTERRUPTED) return status;
    emptyWrites = count == 0 ? emptyWrites + 1 : 0;
    if (emptyWrites >= MAX_EMPTY_WRITES) return status;
  }
  return GR_STATUS_OK;
}

/// Brings a stream back to where it was.
class PositionKeeper {
 public:
  explicit PositionKeeper(GRIOStreamInf& stream) : m_stream(stream), m_position(stream.tell()) {}
  PositionKeeper(const PositionKeeper&) = delete;
  PositionKeeper& operator=(const PositionKeeper&) = delete;
  ~PositionKeeper() {
    if (m_position >= 0) static_cast<void>(m_stream.seek(m_position, GRIO_SEEK_BEGIN));
  }

 private:
  GRIOStreamInf& m_stream;
  gr_int64 m_position;
};

}  // namespace

std::unique_ptr<GRIOStreamInf> GRIOStreamUtils::openFileStream(const GRFileSpec& path) {
  return openReadStream(path);
}

std::unique_ptr<GRIOStreamInf> GRIOStreamUtils::openFileStream(const char* path) {
  try {
    return openReadStream(GRFileSpec(path));
  } catch (const GRUtilException&) {
    return nullptr;
  }
}

std::unique_ptr<GRIOStreamInf> GRIOStreamUtils::openReadStream(const GRFileSpec& path) {
  return openStream(path, "rb");
}

std::unique_ptr<GRIOStreamInf> GRIOStreamUtils::openWriteStream(const GRFileSpec& path) {
  return openStream(path, "wb");
}

std::unique_ptr<GRIOStreamInf> GRIOStreamUtils::openAppendStream(const GRFileSpec& path) {
  return openStream(path, "ab");
}

std::unique_ptr<GRIOStreamInf> GRIOStreamUtils::openStream(const GRFileSpec& path,
                                                           const char* mode) {
  auto stream = gr_makeUnique<GRIOFileStream>();
  if (stream == nullptr || !GR_SUCCESS(stream->initialize(path, mode)) ||
      !GR_SUCCESS(stream->open())) {
    return nullptr;
  }
  return stream;
}

std::unique_ptr<GRIODynamicMemStream> GRIOStreamUtils::openMemStream() {
  auto stream = gr_makeUnique<GRIODynamicMemStream>();
  if (stream == nullptr || !GR_SUCCESS(stream->initialize(MEM_STREAM_BYTES, MEM_STREAM_GROWTH)) ||
      !GR_SUCCESS(stream->open())) {
    return nullptr;
  }
  return stream;
}

void GRIOStreamUtils::closeAndDelete(GRIOStreamInf*& stream) {
  std::unique_ptr<GRIOStreamInf> owned(std::exchange(stream, nullptr));
  closeAndDelete(owned);
}

void GRIOStreamUtils::closeAndDelete(std::unique_ptr<GRIOStreamInf>& stream) {
  if (stream == nullptr) return;
  static_cast<void>(stream->close());
  stream.reset();
}

GR_STATUS GRIOStreamUtils::copy(GRIOStreamInf& destination, GRIOStreamInf& source) {
  GRArray<gr_uint8> buffer;
  GR_RETURN_IF_FAILED(buffer.allocateUninitialized(COPY_BYTES));
  while (const gr_uint32 count = source.read(buffer.data(), COPY_BYTES)) {
    if (destination.write(buffer.data(), count) != count) return GR_STATUS_FAILURE;
  }
  return GR_STATUS_OK;
}

GR_STATUS GRIOStreamUtils::copy(GRIOStreamInf& destination, GRIOStreamInf& source,
                                gr_int64 numBytes) {
  GRArray<gr_uint8> buffer;
  GR_RETURN_IF_FAILED(buffer.allocateUninitialized(COPY_BYTES));
  while (numBytes > 0) {
    const auto step = static_cast<gr_uint32>(std::min<gr_int64>(numBytes, COPY_BYTES));
    const gr_uint32 count = source.read(buffer.data(), step);
    GR_RETURN_IF_FAILED(writeAll(destination, buffer.data(), count));
    if (count < step) return source.isEOF() ? GR_STATUS_OK : errorOf(source);
    numBytes -= count;
  }
  return GR_STATUS_OK;
}

bool GRIOStreamUtils::compare(GRIOStreamInf& a, GRIOStreamInf& b) {
  const PositionKeeper keepA(a);
  const PositionKeeper keepB(b);
  GRArray<gr_uint8> bufferA;
  GRArray<gr_uint8> bufferB;
  if (!GR_SUCCESS(bufferA.allocateUninitialized(COPY_BYTES)) ||
      !GR_SUCCESS(bufferB.allocateUninitialized(COPY_BYTES)) ||
      !GR_SUCCESS(a.seek(0, GRIO_SEEK_BEGIN)) || !GR_SUCCESS(b.seek(0, GRIO_SEEK_BEGIN))) {
    return false;
  }
  while (true) {
    const gr_uint32 count = a.read(bufferA.data(), COPY_BYTES);
    if (b.read(bufferB.data(), COPY_BYTES) != count) return false;
    if (std::memcmp(bufferA.data(), bufferB.data(), count) != 0) return false;
    // What can't be read may differ.
    if (count < COPY_BYTES) return a.isEOF() && b.isEOF();
  }
}

GR_STATUS GRIOStreamUtils::copyToFile(GRIOStreamInf& stream, const GRFileSpec& path) {
  const PositionKeeper keep(stream);
  GR_RETURN_IF_FAILED(stream.seek(0, GRIO_SEEK_BEGIN));
  const auto file = openWriteStream(path);
  if (file == nullptr) return GRI_STATUS_OPEN_ERROR;
  GR_RETURN_IF_FAILED(copy(*file, stream));
  if (!stream.isEOF()) return errorOf(stream);
  return file->close();
}

gr_int64 GRIOStreamUtils::getStreamLength(GRIOStreamInf& stream) {
  const gr_int64 position = stream.tell();
  if (position < 0 || !GR_SUCCESS(stream.seek(0, GRIO_SEEK_END))) return -1;
  const gr_int64 length = stream.tell();
  return GR_SUCCESS(stream.seek(position, GRIO_SEEK_BEGIN)) ? length : -1;
}

std::unique_ptr<GRIOStreamInf> GRIOStreamUtils::duplicateAt(GRIOStreamInf& stream) {
  std::unique_ptr<GRIOStreamInf> copy(stream.duplicate());
  if (copy == nullptr || !stream.isOpen()) return copy;
  const gr_int64 position = stream.tell();
  if (position < 0 || !GR_SUCCESS(copy->open()) ||
      !GR_SUCCESS(copy->seek(position, GRIO_SEEK_BEGIN))) {
    closeAndDelete(copy);
  }
  return copy;
}

GR_STATUS GRIOStreamUtils::printf(GRIOStreamInf& stream, const char* format, ...) {
  for (size_t bytes = PRINTF_FIRST_BYTES; bytes <= PRINTF_MAX_BYTES; bytes *= 2) {
    GRArray<char> text;
    GR_RETURN_IF_FAILED(text.allocateUninitialized(bytes));
    va_list arguments;
    va_start(arguments, format);
    // NOLINTNEXTLINE(clang-analyzer-valist.Uninitialized): va_start is right above.
    const int length = std::vsnprintf(text.data(), bytes, format, arguments);
    va_end(arguments);
    if (length < 0) return GR_STATUS_FAILURE;
    const auto count = static_cast<gr_uint32>(length);
    if (count >= bytes) continue;
    const auto* const written = reinterpret_cast<const gr_uint8*>(text.data());
    return stream.write(written, count) == count ? GR_STATUS_OK : errorOf(stream);
  }
  return GR_STATUS_FAILURE;
}
