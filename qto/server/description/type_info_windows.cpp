#include <windows.h>

#include <oleauto.h>

#include "qto/automation/text.hpp"
#include "qto/com/errors.hpp"
#include "qto/com/holder.hpp"
#include "qto/server/description/type_info.hpp"
#include "qto/server/module/module.hpp"

namespace qto::server {
namespace {

ITypeLib* own_library = nullptr;  // of this module, read once

/// The type library that describes a class, with a reference for the caller: the module's own, or
/// the registered one of a library whose objects it can show.
Result library_of(const ClassTable& table, ITypeLib** out) {
  for (const LibraryTable* library : this_module().shown) {
    bool holds = false;
    for (const ClassTable* member : library->classes) holds |= member->class_id == table.class_id;
    if (!holds) continue;
    if (library->id != this_module().library->id)
      return LoadRegTypeLib(reinterpret_cast<const GUID&>(library->id), 1, 0, 0x409, out);
    if (!own_library) {
      const std::u16string path = text::to_utf16(module_path());
      const HRESULT read =
          LoadTypeLibEx(reinterpret_cast<LPCOLESTR>(path.c_str()), REGKIND_NONE, &own_library);
      if (FAILED(read)) return read;
    }
    own_library->AddRef();
    *out = own_library;
    return ok;
  }
  return TYPE_E_ELEMENTNOTFOUND;
}

}  // namespace

Result type_info_of(const ClassTable& table, TypePart part, TypeInfo** out) noexcept {
  if (!out) return null_pointer;
  *out = nullptr;
  return guarded([&] {
    ITypeLib* library = nullptr;
    const Result read = library_of(table, &library);
    if (read < 0) return read;
    const Guid& id = part == TypePart::whole_class ? table.class_id : table.interface_id;
    const Result found = library->GetTypeInfoOfGuid(reinterpret_cast<const GUID&>(id),
                                                    reinterpret_cast<ITypeInfo**>(out));
    library->Release();
    return found;
  });
}

void release_type_library() noexcept {
  if (own_library) own_library->Release();
  own_library = nullptr;
}

}  // namespace qto::server
