/// The four standard exports of a shared library that serves classes.
#include <cstdlib>
#include <string_view>

#include "qto/automation/com/com_values.hpp"
#include "qto/automation/com/errors.hpp"
#include "qto/automation/server/face.hpp"
#include "qto/automation/server/module.hpp"
#include "qto/automation/server/registry.hpp"

namespace qto::server {
namespace {

using namespace com;

class Factory final : public ClassFactory {
 public:
  explicit Factory(const ClassTable& table) : table_(table) { module_add_use(); }
  Result QueryInterface(const Guid& id, void** out) override {
    if (!out) return null_pointer;
    *out = id == iid_unknown || id == iid_class_factory ? this : nullptr;
    if (!*out) return no_interface;
    AddRef();
    return ok;
  }
  std::uint32_t AddRef() override { return ++count_; }
  std::uint32_t Release() override {
    const std::uint32_t left = --count_;
    if (left == 0) {
      delete this;
      module_release_use();
    }
    return left;
  }
  Result CreateInstance(Unknown* outer, const Guid& id, void** out) override {
    if (!out) return null_pointer;
    *out = nullptr;
    if (outer) return no_aggregation;
    try {
      Unknown* face = face_of(table_.create());
      const Result asked = face->QueryInterface(id, out);
      face->Release();
      return asked;
    } catch (...) {
      return current_error_number();
    }
  }
  Result LockServer(std::int32_t lock) override {
    lock ? module_add_use() : module_release_use();
    return ok;
  }

 private:
  const ClassTable& table_;
  std::uint32_t count_ = 0;
};

/// Registration goes to the user's file; QTO_REGISTER=system asks for the system's.
Result change_registry(const std::string& path) {
  const char* scope = std::getenv("QTO_REGISTER");
  const auto file =
      scope && std::string_view(scope) == "system" ? system_registry() : user_registry();
  const bool done = file && update_registry(*file, *this_module().library, path);
  return done ? ok : registration_failed;
}

}  // namespace
}  // namespace qto::server

#define QTO_EXPORT extern "C" __attribute__((visibility("default")))

/// Enters the library's classes into the registry file.
QTO_EXPORT std::int32_t DllRegisterServer() {
  const std::string path = qto::server::module_path();
  if (path.empty()) return qto::server::com::registration_failed;
  return qto::server::change_registry(path);
}

/// Takes them out again.
QTO_EXPORT std::int32_t DllUnregisterServer() { return qto::server::change_registry(""); }

/// The class object for a class identifier.
QTO_EXPORT std::int32_t DllGetClassObject(const qto::server::Guid* class_id,
                                          const qto::server::Guid* id, void** out) {
  using namespace qto::server;
  if (!class_id || !id || !out) return com::null_pointer;
  *out = nullptr;
  for (const ClassTable* table : this_module().library->classes) {
    if (table->class_id != *class_id || !table->create) continue;
    auto* factory = new Factory(*table);
    factory->AddRef();
    const com::Result asked = factory->QueryInterface(*id, out);
    factory->Release();
    return asked;
  }
  return com::class_not_available;
}

/// 0 when neither an object nor a lock is left, 1 otherwise.
QTO_EXPORT std::int32_t DllCanUnloadNow() {
  using namespace qto::server;
  if (module_in_use()) return com::no_more;
  if (this_module().let_go) this_module().let_go();
  return com::ok;
}
