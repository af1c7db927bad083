/// @file
/// GRIODynamicMemStream, a stream over a growing array in memory.
#pragma once

#include <memory>

#include "gr_lib_utils/include/gr_ioStream.h"
#include "gr_lib_utils/include/gr_memory.h"

/// The functions that a memory stream gets its memory from; like those of the C library.
using GRIOAllocFunction = void* (*)(size_t bytes);
using GRIOReallocFunction = void* (*)(void* block, size_t bytes);
using GRIOFreeFunction = void (*)(void* block);

/// An array of up to 0x7FFFFFFF bytes that grows as it is written. Its data outlives close(), and
/// can be read again after the next open().
class GRIODynamicMemStream : public GRIOStreamInf {
 public:
  GRIODynamicMemStream() = default;
  ~GRIODynamicMemStream() override = default;

  /// Allocates the first block; may be called once.
  /// @param initialSize  bytes to allocate at first; the stream has no data yet
  /// @param growth  by how much the array grows at least, from 1.0 to 2.0
  /// @return 0; 145012 on an open stream; 145011 for a bad growth; 145013 for memory
  [[nodiscard]] GR_STATUS initialize(gr_uint32 initialSize, float growth);
  [[nodiscard]] GR_STATUS initialize(gr_uint32 initialSize, GRIOAllocFunction allocFunc,
                                     GRIOReallocFunction reallocFunc, GRIOFreeFunction freeFunc,
                                     float growth);

  bool isEOF() override { return m_isEOF; }
  bool isOpen() override { return m_isOpen; }
  GR_STATUS open() override;  ///< 145003 when the stream isn't initialized
  GR_STATUS close() override;
  gr_uint32 read(gr_uint8* buffer, gr_uint32 length) override;
  /// A position past the end is allowed: zeros fill the gap.
  gr_uint32 write(const gr_uint8* buffer, gr_uint32 length) override;
  /// Positions past the end are accepted.
  /// @return 0; 145012 on a closed stream; 145011 for an offset of more than 32 bits; 1 for a bad
  ///         origin or a target of -1
  GR_STATUS seek(gr_int64 offset, GRIOSeekDir origin) override;
  gr_int64 tell() override;  ///< -1 on a closed stream
  /// A closed stream with a copy of the data.
  GRIOStreamInf* duplicate() override;
  GR_STATUS getLastError() override { return m_lastError; }
  const char* getID() override { return "gr_dynamicmemstream:"; }

  /// The data, which stays the stream's, until the next write.
  const gr_uint8* getData() const { return m_data.get(); }
  gr_uint32 getSize() const { return m_size; }  ///< bytes of data

 private:
  struct Deleter {
    Deleter() : giveBack(nullptr) {}
    explicit Deleter(GRIOFreeFunction freeFunc) : giveBack(freeFunc) {}
    void operator()(gr_uint8* data) const { giveBack(data); }
    GRIOFreeFunction giveBack;
  };

  // Makes room for data up to `end`.
  bool grow(gr_uint64 end);

  static constexpr gr_uint64 NO_POSITION = ~gr_uint64{0};

  std::unique_ptr<gr_uint8, Deleter> m_data;
  gr_uint64 m_allocated = 0;  // bytes
  gr_uint32 m_size = 0;       // bytes
  gr_uint64 m_position = NO_POSITION;
  bool m_isOpen = false;
  GRIOAllocFunction m_alloc = nullptr;
  GRIOReallocFunction m_realloc = nullptr;
  GR_STATUS m_lastError = GR_STATUS_OK;
  float m_growth = 1.0F;
  bool m_isEOF = false;
};
