#include "qto/automation/server/module.hpp"

#include <dlfcn.h>

#include <atomic>
#include <filesystem>

namespace qto::server {
namespace {

// Another thread may ask whether the library can go.
std::atomic<std::int64_t> uses{0};

}  // namespace

void module_add_use() noexcept { ++uses; }
void module_release_use() noexcept { --uses; }
bool module_in_use() noexcept { return uses != 0; }

const ClassTable* table_of(const Object& object) {
  const std::string_view name = object.TypeName();
  for (const LibraryTable* library : this_module().shown)
    for (const ClassTable* table : library->classes)
      if (table->name == name) return table;
  return nullptr;
}

std::string module_path() {
  Dl_info info{};
  if (!dladdr(reinterpret_cast<const void*>(&uses), &info) || !info.dli_fname) return "";
  std::error_code failed;
  const auto path = std::filesystem::canonical(info.dli_fname, failed);
  return failed ? "" : path.string();
}

}  // namespace qto::server
