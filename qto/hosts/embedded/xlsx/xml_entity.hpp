#pragma once

#include <cstddef>
#include <string_view>

/// The small rules of XML that a tokenizer needs for plain documents.
namespace qto::embedded {

/// Length of a byte-order mark, XML declaration (version 1.0, UTF-8) and white space at the start
/// of a document; 0 when there are none of them, npos when the declaration is not plain.
std::size_t plain_prolog_length(std::string_view text) noexcept;

/// True when every "&" begins a predefined entity or a reference to a character that XML allows.
bool entities_are_known(std::string_view text) noexcept;
/// Replaces known entities in place; the new length.
std::size_t decode_entities(char* first, const char* last) noexcept;

/// Well-formed UTF-8 of characters that XML allows; control characters are not looked at.
bool is_xml_utf8(std::string_view text) noexcept;

}  // namespace qto::embedded
