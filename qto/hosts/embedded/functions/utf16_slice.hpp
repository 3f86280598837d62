#pragma once

#include <string>
#include <string_view>

/// Cutting UTF-8 texts at positions that count UTF-16 units, as spreadsheets count characters.
namespace qto::embedded::functions {

/// The longest text that a cell holds.
inline constexpr std::size_t max_text_length = 32767;

/// `count` characters from position `start` (from 0); less where the text ends before.
std::string slice(std::string_view text, std::size_t start, std::size_t count);
/// True when the text is longer than a cell holds.
bool too_long(std::string_view text) noexcept;
/// A count of characters given as a number; large ones are cut down.
std::size_t to_count(double number) noexcept;

}  // namespace qto::embedded::functions
