#include <windows.h>

#include <oleauto.h>

#include <initializer_list>
#include <string>

#include "qto/automation/text.hpp"
#include "qto/server/registration/registration.hpp"

// The import library of the compiler has these; its headers do not.
extern "C" {
HRESULT STDAPICALLTYPE RegisterTypeLibForUser(ITypeLib* types, OLECHAR* path, OLECHAR* help_folder);
HRESULT STDAPICALLTYPE UnRegisterTypeLibForUser(const GUID& id, unsigned short major,
                                                unsigned short minor, LCID locale, SYSKIND system);
}

/// Where programs look for classes and type libraries: Software\Classes of the machine or of the
/// user.
namespace qto::server {
namespace {

using com::Result;

std::wstring wide(std::string_view utf8) {
  const std::u16string text = text::to_utf16(utf8);
  return {text.begin(), text.end()};
}

/// The part of the registry that is written: all users', or the user's own.
class Classes {
 public:
  explicit Classes(HKEY root) : root_(root) {}

  bool put(const std::wstring& key, const std::wstring& value,
           const wchar_t* name = nullptr) const {
    const auto bytes = static_cast<DWORD>((value.size() + 1) * sizeof(wchar_t));
    return RegSetKeyValueW(root_, full(key).c_str(), name, REG_SZ, value.c_str(), bytes) ==
           ERROR_SUCCESS;
  }
  bool remove(const std::wstring& key) const {
    const LSTATUS gone = RegDeleteTreeW(root_, full(key).c_str());
    if (gone == ERROR_SUCCESS) RegDeleteKeyW(root_, full(key).c_str());
    return gone == ERROR_SUCCESS || gone == ERROR_FILE_NOT_FOUND;
  }

 private:
  static std::wstring full(const std::wstring& key) { return L"Software\\Classes\\" + key; }
  HKEY root_;
};

struct ClassNames {
  ClassNames(const LibraryTable& library, const ClassTable& table)
      : plain(wide(library.name) + L"." + wide(table.name)),
        versioned(plain + L".1"),
        id(wide(guid_text(table.class_id))),
        key(L"CLSID\\" + id) {}
  std::wstring plain, versioned, id, key;
};

bool enter_class(const Classes& classes, const LibraryTable& library, const ClassTable& table,
                 const std::wstring& path) {
  const ClassNames names(library, table);
  const std::wstring role = wide(table.role);
  const std::wstring& key = names.key;
  return classes.put(key, role) && classes.put(key + L"\\InprocServer32", path) &&
         classes.put(key + L"\\InprocServer32", L"Apartment", L"ThreadingModel") &&
         classes.put(key + L"\\ProgID", names.versioned) &&
         classes.put(key + L"\\VersionIndependentProgID", names.plain) &&
         classes.put(key + L"\\TypeLib", wide(guid_text(library.id))) &&
         classes.put(key + L"\\Version", L"1.0") && classes.put(key + L"\\Programmable", L"") &&
         classes.put(names.versioned, role) &&
         classes.put(names.versioned + L"\\CLSID", names.id) && classes.put(names.plain, role) &&
         classes.put(names.plain + L"\\CLSID", names.id) &&
         classes.put(names.plain + L"\\CurVer", names.versioned);
}

bool remove_class(const Classes& classes, const LibraryTable& library, const ClassTable& table) {
  const ClassNames names(library, table);
  bool gone = true;
  for (const std::wstring& key : {names.key, names.versioned, names.plain})
    gone = classes.remove(key) && gone;
  return gone;
}

bool enter_classes(const Classes& classes, const LibraryTable& library, const std::wstring& path) {
  for (const ClassTable* table : library.classes)
    if (table->create && !enter_class(classes, library, *table, path)) return false;
  return true;
}

bool remove_classes(const Classes& classes, const LibraryTable& library) {
  bool gone = true;
  for (const ClassTable* table : library.classes)
    if (table->create) gone = remove_class(classes, library, *table) && gone;
  return gone;
}

Result enter_types(const std::wstring& path, bool for_user) {
  ITypeLib* types = nullptr;
  Result done = LoadTypeLibEx(path.c_str(), REGKIND_NONE, &types);
  if (done < 0) return done;
  std::wstring file = path;  // the system wants to be able to write
  done = for_user ? RegisterTypeLibForUser(types, file.data(), nullptr)
                  : RegisterTypeLib(types, file.data(), nullptr);
  types->Release();
  return done;
}

void remove_types(const LibraryTable& library) {
  constexpr SYSKIND system = sizeof(void*) == 8 ? SYS_WIN64 : SYS_WIN32;
  const auto& id = reinterpret_cast<const GUID&>(library.id);
  // One of the two is not there; that there was none at all is well too.
  UnRegisterTypeLib(id, 1, 0, 0x409, system);
  UnRegisterTypeLibForUser(id, 1, 0, 0x409, system);
}

}  // namespace

Result register_library(const LibraryTable& library, const std::string& path) {
  const std::wstring file = wide(path);
  for (const bool for_user : {false, true}) {
    const Classes classes(for_user ? HKEY_CURRENT_USER : HKEY_LOCAL_MACHINE);
    if (enter_classes(classes, library, file) && enter_types(file, for_user) >= 0) return com::ok;
    // Not half of it in one place and half in the other.
    remove_classes(classes, library);
  }
  return com::registration_failed;
}

Result unregister_library(const LibraryTable& library) {
  remove_types(library);
  const bool users = remove_classes(Classes(HKEY_CURRENT_USER), library);
  const bool machines = remove_classes(Classes(HKEY_LOCAL_MACHINE), library);
  return users && machines ? com::ok : com::registration_failed;
}

}  // namespace qto::server
