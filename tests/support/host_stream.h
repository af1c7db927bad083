/// @file
/// A host's stream over bytes in memory that can be told to fail.
#pragma once

#include <memory>
#include <span>
#include <vector>

#include "gri_rdk_cdll.h"

/// What is wrong with an answer.
enum class HostFault {
  NONE,
  REFUSAL,   ///< statuses of HostStream::REFUSED, no bytes, a position of -1, no duplicate
  CUT_READ,  ///< only reads fail: they give half of what was asked for
  NONSENSE,  ///< counts above the length, positions past the end, truths of 2, seeks elsewhere
};

/// Which answers are wrong beside the one that is named.
enum class HostExtent { ALONE, ALL_BEHIND };

/// One stream and its duplicates, which have positions of their own.
class HostStream {
 public:
  static constexpr gr_int32 REFUSED = 5;  ///< a status of nobody else's

  explicit HostStream(std::span<const gr_uint8> bytes);
  ~HostStream();  ///< destroys the stream
  HostStream(const HostStream&) = delete;
  HostStream& operator=(const HostStream&) = delete;

  gr_ioCStream handle() const { return m_handle; }

  /// From here on answer number `number` (from 1) is wrong. Counts those of all callbacks.
  void failAt(size_t number, HostFault fault, HostExtent extent = HostExtent::ALONE);
  void neverFail() { failAt(0, HostFault::NONE); }
  /// How many answers were given since then.
  size_t numAnswers() const { return m_numAnswers; }

  /// Frees what belongs to the duplicates. A sanitizer sees who still uses them.
  void freeDuplicates() { m_cursors.resize(1); }

  bool isOpen() const { return m_cursors.front()->isOpen; }              ///< without the duplicates
  size_t numOpenings() const { return m_cursors.front()->numOpenings; }  ///< nor here
  size_t numOpen() const;  ///< streams that are open now, duplicates included
  bool wasUsedClosed() const { return m_wasUsedClosed; }  ///< by a read or a seek
  bool wasWritten() const { return m_wasWritten; }

 private:
  struct Cursor {
    HostStream* host = nullptr;
    gr_uint64 position = 0;
    bool isOpen = false;
    bool isEOF = false;
    size_t numOpenings = 0;
  };
  struct Callbacks;

  HostFault nextAnswer();
  Cursor* addCursor();

  std::span<const gr_uint8> m_bytes;
  std::vector<std::unique_ptr<Cursor>> m_cursors;
  size_t m_numAnswers = 0;
  size_t m_wrongNumber = 0;
  HostFault m_fault = HostFault::NONE;
  HostExtent m_extent = HostExtent::ALONE;
  bool m_wasUsedClosed = false;
  bool m_wasWritten = false;
  gr_ioCStream m_handle = nullptr;
};
