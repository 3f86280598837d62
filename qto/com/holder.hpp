#pragma once

#include <utility>

#include "qto/com/com.hpp"

namespace qto::com {

/// A reference that its holder releases.
template <class Interface>
class Holder {
 public:
  Holder() noexcept = default;
  /// Takes a reference over.
  explicit Holder(Interface* taken) noexcept : held_(taken) {}
  Holder(Holder&& other) noexcept : held_(other.detach()) {}
  Holder& operator=(Holder&& other) noexcept {
    std::swap(held_, other.held_);
    return *this;
  }
  ~Holder() {
    if (held_) held_->Release();
  }
  Interface* get() const noexcept { return held_; }
  Interface* operator->() const noexcept { return held_; }
  explicit operator bool() const noexcept { return held_; }
  Interface* detach() noexcept { return std::exchange(held_, nullptr); }
  /// Where a call puts a reference; only while nothing is held.
  template <class T = Interface>
  T** put() noexcept {
    return reinterpret_cast<T**>(&held_);
  }

 private:
  Interface* held_ = nullptr;
};

}  // namespace qto::com
