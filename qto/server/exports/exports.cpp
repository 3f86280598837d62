/// The four standard exports of a shared library that serves classes.
#include "qto/automation/apartment.hpp"
#include "qto/com/errors.hpp"
#include "qto/com/holder.hpp"
#include "qto/server/description/type_info.hpp"
#include "qto/server/module/counted.hpp"
#include "qto/server/module/module.hpp"
#include "qto/server/registration/registration.hpp"
#include "qto/server/wrappers/callable_wrapper.hpp"
#include "qto/server/wrappers/marshaling.hpp"

namespace qto::server {
namespace {

using namespace com;

class Factory final : public Counted<ClassFactory> {
 public:
  explicit Factory(const ClassTable& table) : Counted(iid_class_factory), table_(table) {}
  Result QTO_CALL CreateInstance(Unknown* outer, const Guid& id, void** out) override {
    if (!out) return null_pointer;
    *out = nullptr;
    if (outer) return no_aggregation;
    return guarded([&] {
      const Holder<Unknown> wrapper(wrapper_of(table_.create()));
      return wrapper->QueryInterface(id, out);
    });
  }
  Result QTO_CALL LockServer(std::int32_t lock) override {
    module_lock(lock);
    return ok;
  }

 private:
  const ClassTable& table_;
};

}  // namespace
}  // namespace qto::server

#ifdef _WIN32
#define QTO_EXPORT extern "C"  // named in exports.def
#else
#define QTO_EXPORT extern "C" __attribute__((visibility("default")))
#endif

/// Enters the library's classes where clients look for them.
QTO_EXPORT std::int32_t QTO_CALL DllRegisterServer() {
  return qto::com::guarded([] {
    const std::string path = qto::server::module_path();
    return path.empty() ? qto::com::registration_failed
                        : qto::server::register_library(*qto::server::this_module().library, path);
  });
}

/// Takes them out again.
QTO_EXPORT std::int32_t QTO_CALL DllUnregisterServer() {
  return qto::com::guarded(
      [] { return qto::server::unregister_library(*qto::server::this_module().library); });
}

/// The class object for a class identifier.
QTO_EXPORT std::int32_t QTO_CALL DllGetClassObject(const qto::com::Guid* class_id,
                                                   const qto::com::Guid* id, void** out) {
  using namespace qto::server;
  if (!class_id || !id || !out) return null_pointer;
  *out = nullptr;
  return guarded([&] {
    for (const ClassTable* table : this_module().library->classes) {
      if (table->class_id != *class_id || !table->create) continue;
      const Holder<Factory> factory(new Factory(*table));
      return factory->QueryInterface(*id, out);
    }
    return class_not_available;
  });
}

/// 0 when neither an object nor a lock is left, 1 otherwise.
QTO_EXPORT std::int32_t QTO_CALL DllCanUnloadNow() {
  using namespace qto::server;
  if (module_in_use()) return no_more;
  release_type_library();
  if (this_module().let_go) this_module().let_go();
  qto::end_apartment();
  forget_wrappers();
  return ok;
}
