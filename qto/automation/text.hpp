#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

/// Text operations that the whole system shares. All texts are UTF-8.
namespace qto::text {

/// True when no byte belongs to a character beyond ASCII.
bool is_ascii(std::string_view text) noexcept;
/// Unicode simple case folding; ASCII texts take a fast path. Invalid bytes are kept as they are.
std::string fold_case(std::string_view text);
/// Equal when letter case is ignored (Unicode simple case folding).
bool equal_fold(std::string_view a, std::string_view b);
/// A hash that is the same for texts that differ in letter case only.
std::uint64_t hash_fold(std::string_view text);
/// ASCII letters only; for keywords and function names.
std::string upper_ascii(std::string_view text);
bool equal_ascii_nocase(std::string_view a, std::string_view b) noexcept;

/// Upper or lower case of the whole text, in no particular language.
std::string to_upper(std::string_view text);
std::string to_lower(std::string_view text);

/// Without surrounding ASCII spaces.
std::string_view trim(std::string_view text) noexcept;

/// The locale-aware test whether a text reads as a number: sign, digits, grouping and decimal
/// separators, exponent, currency sign, surrounding spaces (of en-US, the engine's locale).
bool is_numeric(std::string_view text) noexcept;
/// The number that a text reads as, by the same rules.
std::optional<double> to_number(std::string_view text) noexcept;

/// Number of UTF-16 units, as spreadsheets count characters.
std::size_t utf16_length(std::string_view text) noexcept;
std::u16string to_utf16(std::string_view text);  ///< both replace what is ill-formed by U+FFFD
std::string from_utf16(std::u16string_view text);
/// True when the bytes are well-formed UTF-8.
bool is_valid_utf8(std::string_view text) noexcept;

}  // namespace qto::text
