#pragma once

#include <cstdint>
#include <type_traits>
#include <utility>

namespace qto {

/// Base of everything that is shared by counting. The count is not atomic: an engine, its parts and
/// its host live on one thread, as automation objects of an apartment do.
class RefCounted {
 public:
  RefCounted() = default;
  RefCounted(const RefCounted&) = delete;
  RefCounted& operator=(const RefCounted&) = delete;
  virtual ~RefCounted() = default;

  void add_ref() const noexcept { ++count_; }
  void release() const noexcept {
    if (--count_ == 0) delete this;
  }
  std::uint32_t ref_count() const noexcept { return count_; }

 private:
  mutable std::uint32_t count_ = 0;
};

/// A counted reference to a T, or nothing. T needs add_ref() and release().
template <class T>
class Ref {
 public:
  Ref() noexcept = default;
  Ref(std::nullptr_t) noexcept {}
  Ref(T* object) noexcept : object_(object) { acquire(); }
  Ref(const Ref& other) noexcept : object_(other.object_) { acquire(); }
  Ref(Ref&& other) noexcept : object_(std::exchange(other.object_, nullptr)) {}
  template <class U>
  requires std::is_convertible_v<U*, T*> Ref(const Ref<U>& other)
  noexcept : object_(other.get()) { acquire(); }
  template <class U>
  requires std::is_convertible_v<U*, T*> Ref(Ref<U>&& other)
  noexcept : object_(other.detach()) {}
  ~Ref() {
    if (object_) object_->release();
  }
  Ref& operator=(Ref other) noexcept {
    std::swap(object_, other.object_);
    return *this;
  }

  T* get() const noexcept { return object_; }
  T* operator->() const noexcept { return object_; }
  T& operator*() const noexcept { return *object_; }
  explicit operator bool() const noexcept { return object_ != nullptr; }
  /// Gives up the reference without releasing it.
  T* detach() noexcept { return std::exchange(object_, nullptr); }

  template <class U>
  bool operator==(const Ref<U>& other) const noexcept {
    return object_ == other.get();
  }
  bool operator==(std::nullptr_t) const noexcept { return object_ == nullptr; }

 private:
  void acquire() const noexcept {
    if (object_) object_->add_ref();
  }
  T* object_ = nullptr;
};

template <class T, class... Args>
Ref<T> make_ref(Args&&... args) {
  return Ref<T>(new T(std::forward<Args>(args)...));
}

/// The object as a U, or nothing when it is of another class.
template <class U, class T>
Ref<U> ref_cast(const Ref<T>& object) noexcept {
  return Ref<U>(dynamic_cast<U*>(object.get()));
}

}  // namespace qto
