/// @file
/// The one exception class, for places that can't return a status.
#pragma once

#include "gr_lib_utils/include/gr_types.h"

/// Carries a status out of a constructor (or another place without a status return), nearly
/// always GR_STATUS_NO_MEMORY. Whoever calls such a place from code that returns a status catches
/// it and returns getStatus().
class GRUtilException {
 public:
  explicit GRUtilException(GR_STATUS status) : m_status(status) {}
  GRUtilException(const GRUtilException&) = default;
  GRUtilException& operator=(const GRUtilException&) = default;
  virtual ~GRUtilException() = default;

  GR_STATUS getStatus() const { return m_status; }

 private:
  GR_STATUS m_status;
};
