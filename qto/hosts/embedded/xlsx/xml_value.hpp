#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "qto/automation/variant.hpp"

/// Values as the XML of a workbook writes them. No locale plays a part.
namespace qto::embedded {

/// The whole text must be a number; surrounding XML white space is ignored.
std::optional<std::int64_t> whole_number(std::string_view text) noexcept;
/// Finite numbers only; what is too small to be represented is 0.
std::optional<double> real_number(std::string_view text) noexcept;
bool xml_boolean(std::string_view text) noexcept;

/// Replaces the escapes _xHHHH_ (ECMA-376 Part 1, 22.9.2.19) by the UTF-16 units that they stand
/// for, pairs of surrogates included. Texts without one are left as they are, at the cost of a
/// search.
void decode_escapes(std::string& text);

/// Cuts a text to that many UTF-16 units, never inside a character.
void cut_to_units(std::string& text, std::size_t units);

/// The serial number of a moment in ISO 8601 form: date, time or both. Nothing for other texts.
std::optional<double> serial_of_iso(std::string_view text, bool date1904) noexcept;

/// The error value that a file writes as such a text; #VALUE! for kinds that came later.
ErrorValue error_from(std::string_view text) noexcept;

}  // namespace qto::embedded
