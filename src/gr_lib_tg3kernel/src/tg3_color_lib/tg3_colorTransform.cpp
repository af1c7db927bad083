#include "gr_lib_tg3kernel/src/tg3_color_lib/tg3_colorTransform.h"

#include "gr_lib_tg3kernel/src/tg3_color_lib/tg3_colorRotation.h"
#include "gr_lib_tg3kernel/src/tg3_packet_lib/tg3_imageInfo.h"

GR_STATUS TG3ColorTransform::initialize(const TG3ImageInfo& info) {
  switch (info.colorTransform) {
    case KIND_NONE:
      m_kind = KIND_NONE;
      return GR_STATUS_OK;
    case KIND_FORWARD_3:
      m_kind = KIND_INVERSE_3;
      break;
    case KIND_INVERSE_3:
      m_kind = KIND_FORWARD_3;
      break;
    case KIND_FORWARD_4:
      m_kind = KIND_INVERSE_4;
      break;
    case KIND_INVERSE_4:
      m_kind = KIND_FORWARD_4;
      break;
    default:
      return TG3_STATUS_FORMAT_ERROR;
  }
  const bool ofFour = m_kind == KIND_INVERSE_4 || m_kind == KIND_FORWARD_4;
  return info.numComponents == (ofFour ? 4 : 3) ? GR_STATUS_OK : TG3_STATUS_FORMAT_ERROR;
}

void TG3ColorTransform::apply(gr_int32* const* components, size_t count) const {
  if (!needsTransform()) return;
  if (m_kind == KIND_INVERSE_3 || m_kind == KIND_INVERSE_4) {
    tg3_rotateInverse(components[0], components[1], components[2], count);
  } else {
    tg3_rotateForward(components[0], components[1], components[2], count);
  }
}
