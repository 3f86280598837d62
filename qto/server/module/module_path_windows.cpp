#include <windows.h>

#include "qto/automation/text.hpp"
#include "qto/server/module/module.hpp"

namespace qto::server {

std::string module_path() {
  constexpr DWORD flags =
      GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS | GET_MODULE_HANDLE_EX_FLAG_UNCHANGED_REFCOUNT;
  HMODULE own = nullptr;
  if (!GetModuleHandleExW(flags, reinterpret_cast<LPCWSTR>(&module_in_use), &own)) return "";
  std::u16string path(MAX_PATH, u'\0');
  for (;;) {
    const DWORD length = GetModuleFileNameW(own, reinterpret_cast<LPWSTR>(path.data()),
                                            static_cast<DWORD>(path.size()));
    if (length == 0) return "";
    if (length < path.size()) return text::from_utf16(path.substr(0, length));
    path.resize(2 * path.size());
  }
}

}  // namespace qto::server
