/// @file
/// Files of tests that are in memory.
#pragma once

#include <memory>
#include <span>

#include "gr_lib_tg3kernel/src/tg3_db_lib/tg3_fileSimpleContainer.h"
#include "gr_lib_utils/include/gr_ioDynamicMemStream.h"
#include "gr_lib_utils/include/gr_ioStreamUtils.h"

/// An open stream over a copy of some bytes, at their begin.
inline std::unique_ptr<GRIOStreamInf> tg3_memoryStream(std::span<const gr_uint8> bytes) {
  std::unique_ptr<GRIODynamicMemStream> stream = GRIOStreamUtils::openMemStream();
  static_cast<void>(stream->write(bytes.data(), static_cast<gr_uint32>(bytes.size())));
  static_cast<void>(stream->seek(0, GRIO_SEEK_BEGIN));
  return stream;
}

/// A container over a copy of some bytes.
struct TG3MemoryFile {
  explicit TG3MemoryFile(std::span<const gr_uint8> bytes)
      : stream(tg3_memoryStream(bytes)), container(*stream, true), status(container.initialize()) {}

  std::unique_ptr<GRIOStreamInf> stream;
  TG3FileSimpleContainer container;
  GR_STATUS status;  ///< of opening it
};
