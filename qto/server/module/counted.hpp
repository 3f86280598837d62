#pragma once

#include "qto/com/com.hpp"
#include "qto/server/module/module.hpp"

namespace qto::server {

/// An object of one interface that clients count; the last release ends it. It keeps the module
/// loaded meanwhile. A new one has one reference, its maker's.
template <class Interface>
class Counted : public Interface {
 public:
  explicit Counted(const Guid& interface_id) noexcept : interface_id_(interface_id) {
    module_add_use();
  }
  Counted(const Counted&) = delete;
  Counted& operator=(const Counted&) = delete;

  Result QTO_CALL QueryInterface(const Guid& id, void** out) final {
    if (!out) return null_pointer;
    *out = id == iid_unknown || id == interface_id_ ? this : nullptr;
    if (!*out) return no_interface;
    AddRef();
    return ok;
  }
  std::uint32_t QTO_CALL AddRef() final { return ++count_; }
  std::uint32_t QTO_CALL Release() final {
    const std::uint32_t left = --count_;
    if (left == 0) delete this;
    return left;
  }

 protected:
  // Behind the interface's own places in the function table.
  virtual ~Counted() { module_release_use(); }
  const Guid& interface_id() const noexcept { return interface_id_; }

 private:
  const Guid& interface_id_;
  std::uint32_t count_ = 1;
};

}  // namespace qto::server
