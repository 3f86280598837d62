#include <dlfcn.h>

#include <filesystem>

#include "qto/server/module/module.hpp"

namespace qto::server {

std::string module_path() {
  Dl_info info{};
  if (!dladdr(reinterpret_cast<const void*>(&module_in_use), &info) || !info.dli_fname) return "";
  std::error_code failed;
  const auto path = std::filesystem::canonical(info.dli_fname, failed);
  return failed ? "" : path.string();
}

}  // namespace qto::server
