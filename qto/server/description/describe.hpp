#pragma once

#include <string>

#include "qto/server/tables/table.hpp"

/// The surface as text. Everything is taken from the tables.
namespace qto::server {

/// One line per class, member, argument list, event and enumeration item, in interface order: what
/// must not drift between versions.
std::string snapshot_text(const LibraryTable& library);
/// The type library in the interface definition language.
std::string idl_text(const LibraryTable& library);
/// A page of documentation in Markdown.
std::string interface_page(const LibraryTable& library);
/// Python type stubs of the classes and event handlers.
std::string python_stubs(const LibraryTable& library);

/// "get", "let", "set", "method" or "enum".
std::string_view kind_name(Kind kind);
/// The name of a type in documentation: "Boolean", "Long", "String", a class …
std::string type_name(const Type& type);

}  // namespace qto::server
