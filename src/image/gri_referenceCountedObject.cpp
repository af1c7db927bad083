#include "image/gri_referenceCountedObject.h"

#include <cassert>
#include <memory>

GRIReferenceCountedObject::~GRIReferenceCountedObject() { assert(m_count <= 0); }

void GRIReferenceCountedObject::retain() { m_count.fetch_add(1, std::memory_order_relaxed); }

gr_int32 GRIReferenceCountedObject::release() {
  const gr_int32 count = m_count.fetch_sub(1, std::memory_order_acq_rel) - 1;
  if (count < 1) std::default_delete<GRIReferenceCountedObject>()(this);
  return count;
}
