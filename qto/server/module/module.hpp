#pragma once

#include <span>
#include <string>

#include "qto/com/com.hpp"
#include "qto/server/tables/table.hpp"

namespace qto::server {

/// What one shared library serves; each library defines it.
struct Module {
  const LibraryTable* library;  ///< its creatable classes
  /// The libraries whose objects it can show by name, its own first.
  std::span<const LibraryTable* const> shown;
  /// Gives up what the library still shares with others although no client uses it; null: nothing.
  void (*let_go)() = nullptr;
  /// What stands for an object of another server; throws CallFailure where nothing can. Null: such
  /// objects are refused.
  Ref<Object> (*adopt)(com::Unknown& foreign) = nullptr;
};
const Module& this_module();

/// The table of an object's class, or null. The object is of the C++ type that the table's members
/// take: a name alone does not do.
const ClassTable* table_of(const Object& object);

/// Whether the object's class is one that this library itself serves.
bool is_own(const Object& object);

/// Counts what keeps the module loaded: wrappers shown to clients, live hosts, and locks.
void module_add_use() noexcept;
void module_release_use() noexcept;
/// A client's lock, or its end; ends without a lock are ignored.
void module_lock(bool lock) noexcept;
bool module_in_use() noexcept;

/// The absolute path of the shared library that holds this code; "" when it cannot be told.
std::string module_path();

}  // namespace qto::server
