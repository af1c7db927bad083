/// @file
/// GRIReferenceCountedObject, the base of everything that several owners share.
#pragma once

#include <atomic>

#include "gr_lib_utils/include/gr_types.h"

/// Starts with a count of one, which belongs to its maker. The count is atomic; nothing else is.
class GRIReferenceCountedObject {
 public:
  GRIReferenceCountedObject() = default;
  GRIReferenceCountedObject(const GRIReferenceCountedObject&) = delete;
  GRIReferenceCountedObject& operator=(const GRIReferenceCountedObject&) = delete;
  virtual ~GRIReferenceCountedObject();

  virtual void retain();
  /// Gives a reference back; with the last one the object deletes itself.
  /// @return the new count
  virtual gr_int32 release();

 private:
  std::atomic<gr_int32> m_count{1};
};
