#pragma once

#include <cstddef>
#include <string>
#include <string_view>

/// UTF-8 and UTF-16, character by character.
namespace qto::text {

/// Stands for bytes that are no UTF-8, and for half a surrogate pair.
inline constexpr char32_t replacement_character = 0xFFFD;

struct DecodedCharacter {
  char32_t code = 0;
  std::size_t length = 0;  ///< in bytes, at least 1
  bool valid = true;       ///< otherwise the bytes are the longest ill-formed piece, at most 3
};

/// The character at `at`, which must lie within the text.
DecodedCharacter decode_utf8(std::string_view text, std::size_t at) noexcept;
/// Appends a character, which must be one: at most 10FFFF and no surrogate.
void append_utf8(std::string& out, char32_t code);
void append_utf16(std::u16string& out, char32_t code);

}  // namespace qto::text
