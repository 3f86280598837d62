#pragma once

#include <string>

#include "qto/com/com.hpp"
#include "qto/server/tables/table.hpp"

namespace qto::server {

/// Enters the classes of a library, which the file at `path` serves, where clients look for them:
/// in the system's registry on Windows (the user's part of it where the machine's is closed), in a
/// registry file elsewhere. Answers access_denied, disk_full or registration_failed when nothing
/// can be written.
com::Result register_library(const LibraryTable& library, const std::string& path);
/// Takes out all that register_library enters. Well when there was nothing.
com::Result unregister_library(const LibraryTable& library);

}  // namespace qto::server
