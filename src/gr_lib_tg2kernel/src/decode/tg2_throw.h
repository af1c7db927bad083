/// @file
/// How the inner routines of the decoder stop: by an exception, which its top operations catch.
#pragma once

#include "gr_lib_tg2kernel/src/decode/tg2_status.h"
#include "gr_lib_utils/include/gr_exception.h"
#include "gr_lib_utils/include/gr_status.h"
#include "image/gri_delegates.h"

/// Throws GRUtilException with a status that isn't success.
inline void tg2_throwIfFailed(GR_STATUS status) {
  if (!GR_SUCCESS(status)) throw GRUtilException(status);
}

/// Throws GRUtilException(8040) when the delegate, which may be null, asks to stop.
inline void tg2_poll(GRIInterruptDelegate* interrupt) {
  if (interrupt != nullptr && interrupt->getInterruptStatus() != 0) {
    throw GRUtilException(TG2_STATUS_INTERRUPT);
  }
}
