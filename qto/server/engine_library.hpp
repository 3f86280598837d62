#pragma once

#include "qto/server/table.hpp"

namespace qto::server {

/// QTOEngine 1.0: seven classes and five enumerations.
const LibraryTable& engine_library();

/// The class of that name in a library (letter case ignored), or null.
const ClassTable* find_class(const LibraryTable& library, std::string_view name);

}  // namespace qto::server
