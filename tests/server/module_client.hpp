#pragma once

#include <dlfcn.h>

#include <initializer_list>
#include <string>
#include <utility>

#include "qto/com/com.hpp"
#include "qto/server/tables/table.hpp"

/// A client of the shared libraries that knows nothing but their binary interface.
namespace qto::server {

/// One loaded library; unloaded at the end.
class Library {
 public:
  explicit Library(const char* path) : handle_(dlopen(path, RTLD_NOW | RTLD_LOCAL)) {}
  Library(const Library&) = delete;
  Library& operator=(const Library&) = delete;
  ~Library() { unload(); }
  explicit operator bool() const { return handle_; }
  /// As clients do: a library that may go lets go of what it keeps.
  void unload() {
    if (!handle_) return;
    call("DllCanUnloadNow");
    dlclose(std::exchange(handle_, nullptr));
  }
  template <class Function>
  Function* find(const char* name) const {
    return reinterpret_cast<Function*>(dlsym(handle_, name));
  }
  std::int32_t call(const char* name) const { return find<std::int32_t()>(name)(); }
  com::ClassFactory* factory(const Guid& class_id) const {
    void* out = nullptr;
    find<std::int32_t(const Guid*, const Guid*, void**)>("DllGetClassObject")(
        &class_id, &com::iid_class_factory, &out);
    return static_cast<com::ClassFactory*>(out);
  }
  com::Dispatch* create(const Guid& class_id) const {
    com::ClassFactory* made = factory(class_id);
    if (!made) return nullptr;
    void* out = nullptr;
    made->CreateInstance(nullptr, com::iid_dispatch, &out);
    made->Release();
    return static_cast<com::Dispatch*>(out);
  }

 private:
  void* handle_;
};

/// A text argument that lives for one call.
class Bstr {
 public:
  explicit Bstr(std::u16string_view text);
  ~Bstr();
  Bstr(const Bstr&) = delete;
  Bstr& operator=(const Bstr&) = delete;
  com::ComVariant variant() const;

 private:
  com::Text text_;
};
com::ComVariant of(std::int32_t value);
com::ComVariant of(com::Dispatch* object);

/// Calls by name; the error number, 0 when all went well.
std::int32_t call(com::Dispatch* object, const char16_t* name, std::uint16_t flags,
                  std::initializer_list<com::ComVariant> arguments,
                  com::ComVariant* result = nullptr, std::uint32_t* bad_argument = nullptr);
/// The object that a property or method answers.
com::Dispatch* object_of(com::Dispatch* object, const char16_t* name,
                         std::initializer_list<com::ComVariant> arguments = {});

}  // namespace qto::server
