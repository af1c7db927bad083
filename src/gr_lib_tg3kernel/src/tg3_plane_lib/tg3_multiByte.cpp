#include "gr_lib_tg3kernel/src/tg3_plane_lib/tg3_multiByte.h"

#include <cassert>

#include "gr_lib_utils/include/gr_status.h"

namespace {

constexpr gr_uint8 CONTINUES = 0x80;

// The bytes up to the `last`th, of which all but that one end with a clear flag.
GR_STATUS readGroups(std::span<const gr_uint8> bytes, gr_uint32 numReservedBits, size_t last,
                     TG3MultiByte& integer, bool& continues) {
  assert(numReservedBits <= TG3MultiByte::MOST_RESERVED_BITS);
  if (bytes.empty()) return TG3_STATUS_READ_ERROR;
  gr_uint32 shift = 7 - numReservedBits;
  integer.reservedBits = static_cast<gr_uint8>(bytes[0] >> (8 - numReservedBits));
  integer.value = bytes[0] & ((1U << shift) - 1);
  integer.count = 1;
  continues = (bytes[0] >> shift & 1) != 0;
  while (continues && integer.count < last) {
    if (integer.count >= bytes.size()) return TG3_STATUS_READ_ERROR;
    const gr_uint8 byte = bytes[integer.count++];
    integer.value |= gr_uint64{byte & 0x7FU} << shift;
    shift += 7;
    continues = (byte & CONTINUES) != 0;
  }
  return GR_STATUS_OK;
}

}  // namespace

GR_STATUS TG3MultiByte::read32(std::span<const gr_uint8> bytes, gr_uint32 numReservedBits) {
  bool continues = false;
  GR_RETURN_IF_FAILED(readGroups(bytes, numReservedBits, 3, *this, continues));
  if (!continues) return GR_STATUS_OK;
  if (count >= bytes.size()) return TG3_STATUS_READ_ERROR;
  value |= gr_uint64{bytes[count]} << (7 - numReservedBits + 2 * 7);
  ++count;
  return GR_STATUS_OK;
}

GR_STATUS TG3MultiByte::read64(std::span<const gr_uint8> bytes, gr_uint32 numReservedBits) {
  bool continues = false;
  GR_RETURN_IF_FAILED(readGroups(bytes, numReservedBits, 8, *this, continues));
  return continues ? TG3_STATUS_BAD_CONTEXT : GR_STATUS_OK;
}
