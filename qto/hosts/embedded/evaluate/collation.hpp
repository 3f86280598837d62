#pragma once

#include <string_view>

namespace qto::embedded {

/// The sorting weight of an ASCII character, letter case ignored: punctuation, digits, letters.
unsigned char ascii_weight(char c) noexcept;

/// Order of two texts of any characters, letter case ignored; 0 when the system holds them for
/// equal or cannot tell. Between ASCII texts it agrees with ascii_weight().
int collate(std::string_view a, std::string_view b);

}  // namespace qto::embedded
