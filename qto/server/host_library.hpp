#pragma once

#include "qto/server/table.hpp"

namespace qto::server {

/// QTOHost: the host's object model by name. No class of it is creatable here; a library that
/// brings a host offers its application.
const LibraryTable& host_library();

}  // namespace qto::server
