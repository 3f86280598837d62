#include "qto/server/module/module.hpp"

#include <atomic>
#include <cstdint>

namespace qto::server {
namespace {

// Another thread may ask whether the library can go.
std::atomic<std::int64_t> uses{0}, locks{0};

}  // namespace

void module_add_use() noexcept { ++uses; }
void module_release_use() noexcept { --uses; }
bool module_in_use() noexcept { return uses != 0 || locks != 0; }

void module_lock(bool lock) noexcept {
  std::int64_t held = locks;
  while (lock || held > 0)
    if (locks.compare_exchange_weak(held, held + (lock ? 1 : -1))) return;
}

namespace {

struct Shown {
  const LibraryTable* library = nullptr;
  const ClassTable* table = nullptr;
};
Shown find_shown(const Object& object) {
  const std::string_view name = object.TypeName();
  for (const LibraryTable* library : this_module().shown)
    for (const ClassTable* table : library->classes)
      if (table->name == name && table->holds(object)) return {library, table};
  return {};
}

}  // namespace

const ClassTable* table_of(const Object& object) { return find_shown(object).table; }

bool is_own(const Object& object) {
  const LibraryTable* library = find_shown(object).library;
  return library && library->id == this_module().library->id;
}

}  // namespace qto::server
