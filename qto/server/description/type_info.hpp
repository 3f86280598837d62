#pragma once

#include "qto/com/type_info.hpp"
#include "qto/server/tables/table.hpp"

namespace qto::server {

enum class TypePart : std::uint8_t { default_interface, whole_class };

/// The description of a class, whose name is the class's, or of its default interface, whose name
/// begins with "_": from the module's type library on Windows, from the table elsewhere. The
/// reference is the caller's; the result is the system's where the type library cannot be read.
Result type_info_of(const ClassTable& table, TypePart part, TypeInfo** out) noexcept;
/// Lets go of what earlier answers were read from.
void release_type_library() noexcept;

}  // namespace qto::server
