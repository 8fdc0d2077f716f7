// Ownership of one reference to a COM object.
#pragma once

#include <unknwn.h>

#include <utility>

namespace qvx::platform {

template <class Interface>
class ComPointer {
 public:
  ComPointer() = default;
  ComPointer(ComPointer&& other) noexcept : object_(std::exchange(other.object_, nullptr)) {}
  ComPointer& operator=(ComPointer&& other) noexcept {
    std::swap(object_, other.object_);
    return *this;
  }
  ~ComPointer() {
    if (object_ != nullptr) object_->Release();
  }

  Interface* operator->() const { return object_; }
  Interface* get() const { return object_; }
  explicit operator bool() const { return object_ != nullptr; }

  // Where a function may store a new reference; gives up the one held.
  Interface** out() {
    if (object_ != nullptr) std::exchange(object_, nullptr)->Release();
    return &object_;
  }
  void** outVoid() { return reinterpret_cast<void**>(out()); }

 private:
  Interface* object_ = nullptr;
};

}  // namespace qvx::platform
