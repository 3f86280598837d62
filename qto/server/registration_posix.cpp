#include <cstdlib>
#include <string_view>

#include "qto/server/registration.hpp"
#include "qto/server/registry.hpp"

namespace qto::server {
namespace {

/// Registration goes to the user's file; QTO_REGISTER=system asks for the system's.
com::Result change_registry(const LibraryTable& library, const std::string& path) {
  const char* scope = std::getenv("QTO_REGISTER");
  const auto file =
      scope && std::string_view(scope) == "system" ? system_registry() : user_registry();
  return file && update_registry(*file, library, path) ? com::ok : com::registration_failed;
}

}  // namespace

com::Result register_library(const LibraryTable& library, const std::string& path) {
  return change_registry(library, path);
}

com::Result unregister_library(const LibraryTable& library) { return change_registry(library, ""); }

}  // namespace qto::server
