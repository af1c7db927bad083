#include "gr_lib_tg3kernel/src/tg3_plane_lib/tg3_planeRecord.h"

#include "gr_lib_tg3kernel/src/tg3_plane_lib/tg3_multiByte.h"
#include "gr_lib_utils/include/gr_status.h"

namespace {

constexpr gr_uint32 NUM_RESERVED_BITS = 2;
constexpr gr_uint8 IS_LENGTH = 0x02;
constexpr gr_uint8 USE_BYPASS = 0x01;

}  // namespace

GR_STATUS TG3PlaneRecord::read(std::span<const gr_uint8> bytes, bool is64Bit) {
  TG3MultiByte integer;
  GR_RETURN_IF_FAILED(is64Bit ? integer.read64(bytes, NUM_RESERVED_BITS)
                              : integer.read32(bytes, NUM_RESERVED_BITS));
  isLength = (integer.reservedBits & IS_LENGTH) != 0;
  useBypass = (integer.reservedBits & USE_BYPASS) != 0;
  value = integer.value;
  prefixCount = integer.count;
  return isLength || value != 0 ? GR_STATUS_OK : TG3_STATUS_READ_ERROR;
}
