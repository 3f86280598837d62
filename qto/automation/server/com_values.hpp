#pragma once

#include <string_view>

#include "qto/automation/server/com.hpp"
#include "qto/automation/server/table.hpp"

namespace qto::server::com {

/// A counted text with memory of its own; free_text gives it back. Null is an empty text.
Text make_text(std::string_view utf8);
std::string read_text(const char16_t* text);
void free_text(Text text) noexcept;

/// Releases what the variant owns and makes it empty. By-reference variants own nothing.
void clear(ComVariant& variant) noexcept;
/// A variant that owns its text, array or reference. Objects appear as faces.
ComVariant to_com(const Variant& value);
/// The value that a client passes, what references point to included. Throws CallFailure with
/// type_mismatch for a type that cannot cross.
Variant from_com(const ComVariant& variant);
/// Writes an answer to where a by-reference variant points; does nothing for any other. The old
/// text or reference there is released.
void write_back(ComVariant& target, const Variant& value);

}  // namespace qto::server::com
