/// @file
/// GRIOFileStream, a stream over a file.
#pragma once

#include <cstdio>
#include <memory>

#include "gr_lib_utils/include/gr_fileSpec.h"
#include "gr_lib_utils/include/gr_ioStream.h"
#include "gr_lib_utils/include/gr_memory.h"

/// A file, with positions of 64 bits. It is closed when the stream is destroyed.
class GRIOFileStream : public GRIOStreamInf {
 public:
  GRIOFileStream() = default;
  ~GRIOFileStream() override = default;

  /// Stores path and mode; the file isn't touched before open().
  /// @param mode  as for fopen, at most 7 characters
  /// @return 0; 8 for memory; 145011 for a bad mode; 145012 when the stream is open
  [[nodiscard]] GR_STATUS initialize(const GRFileSpec& path, const char* mode);

  bool isEOF() override;
  bool isOpen() override { return m_file != nullptr; }
  /// @return 0; 50004 when the file can't be opened, or is a directory; 145003 when the stream
  ///         isn't initialized
  GR_STATUS open() override;
  /// @return 0; 1 when what was written couldn't all be stored. The stream is closed either way.
  GR_STATUS close() override;
  gr_uint32 read(gr_uint8* buffer, gr_uint32 length) override;
  gr_uint32 write(const gr_uint8* buffer, gr_uint32 length) override;
  /// @return 0; 145012 on a closed stream; 1 when the file can't seek there or for a bad origin,
  ///         and then nothing has moved
  GR_STATUS seek(gr_int64 offset, GRIOSeekDir origin) override;
  gr_int64 tell() override;
  GRIOStreamInf* duplicate() override;
  GR_STATUS getLastError() override;  ///< 1 after a failed read or write, else 0
  const char* getID() override;       ///< "file://" and the path, or a path that is a URL
  const GRFileSpec& getPath() const { return m_path; }

 private:
  enum class Operation { SEEK, READ, WRITE };
  struct Closer {
    void operator()(FILE* file) const { static_cast<void>(std::fclose(file)); }
  };

  // The C library wants a seek between a read and a write.
  bool turnTo(Operation operation);

  GRFileSpec m_path;
  char m_mode[8] = {};
  GRArray<char> m_id;
  std::unique_ptr<FILE, Closer> m_file;
  Operation m_lastOperation = Operation::SEEK;
};
