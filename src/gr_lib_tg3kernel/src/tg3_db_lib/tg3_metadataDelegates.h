/// @file
/// The users of TG3MetadataTool who make blocks of metadata when a container is written.
#pragma once

#include <optional>
#include <span>

#include "gr_lib_utils/include/gr_ioStream.h"
#include "gr_lib_utils/include/gr_types.h"

/// Makes a block that is added.
class TG3MetadataAdderDelegate {
 public:
  virtual ~TG3MetadataAdderDelegate() = default;
  /// Writes the block at the position of a stream.
  /// @return 0; anything else ends what is being written
  virtual GR_STATUS write(GRIOStreamInf& stream) = 0;
  /// The bytes that write() will write, where that is known before. A block of unknown length goes
  /// through memory first.
  virtual std::optional<gr_uint32> getLength() { return std::nullopt; }

 protected:
  TG3MetadataAdderDelegate() = default;
  TG3MetadataAdderDelegate(const TG3MetadataAdderDelegate&) = default;
  TG3MetadataAdderDelegate& operator=(const TG3MetadataAdderDelegate&) = default;
};

/// Makes a block that takes the place of another one.
class TG3MetadataModifierDelegate {
 public:
  virtual ~TG3MetadataModifierDelegate() = default;
  /// Writes the new block at the position of a stream.
  /// @param old  the bytes of the block as it was
  /// @return 0; anything else ends what is being written
  virtual GR_STATUS write(std::span<const gr_uint8> old, GRIOStreamInf& stream) = 0;
  /// As TG3MetadataAdderDelegate::getLength.
  virtual std::optional<gr_uint32> getLength(std::span<const gr_uint8> /*old*/) {
    return std::nullopt;
  }

 protected:
  TG3MetadataModifierDelegate() = default;
  TG3MetadataModifierDelegate(const TG3MetadataModifierDelegate&) = default;
  TG3MetadataModifierDelegate& operator=(const TG3MetadataModifierDelegate&) = default;
};
