#pragma once

#include <string>

#include "qto/server/table.hpp"

namespace qto::server {

/// "get", "let", "set", "method" or "enum".
std::string_view kind_name(Kind kind);
/// The name of a type in documentation: "Boolean", "Long", "String", a class …
std::string type_name(const Type& type);

}  // namespace qto::server
