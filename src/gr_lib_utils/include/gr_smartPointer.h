/// @file
/// GRUtilSmartPointer, the owner of one reference of a counted object.
#pragma once

#include <utility>

/// Holds one reference of a T that has retain() and release(). Built from a raw pointer it adopts
/// the reference that the caller has; it doesn't call retain() by itself.
template <typename T>
class GRUtilSmartPointer {
 public:
  GRUtilSmartPointer() = default;
  explicit GRUtilSmartPointer(T* adopted) : m_object(adopted) {}
  GRUtilSmartPointer(GRUtilSmartPointer&& other) noexcept
      : m_object(std::exchange(other.m_object, nullptr)) {}
  GRUtilSmartPointer& operator=(GRUtilSmartPointer&& other) noexcept {
    if (this != &other) {
      reset();
      m_object = std::exchange(other.m_object, nullptr);
    }
    return *this;
  }
  GRUtilSmartPointer(const GRUtilSmartPointer&) = delete;
  GRUtilSmartPointer& operator=(const GRUtilSmartPointer&) = delete;
  ~GRUtilSmartPointer() { reset(); }

  T* get() const { return m_object; }
  T* operator->() const { return m_object; }
  T& operator*() const { return *m_object; }
  explicit operator bool() const { return m_object != nullptr; }

  /// Takes a second reference and returns the object: for handing it out.
  T* retained() const {
    m_object->retain();
    return m_object;
  }

  /// Gives the reference up without releasing it.
  [[nodiscard]] T* detach() { return std::exchange(m_object, nullptr); }

  /// Releases the reference, if there is one.
  void reset() {
    if (T* object = std::exchange(m_object, nullptr)) object->release();
  }

 private:
  T* m_object = nullptr;
};
