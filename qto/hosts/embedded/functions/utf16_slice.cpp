#include "qto/hosts/embedded/functions/utf16_slice.hpp"

#include <algorithm>

#include "qto/automation/text.hpp"

namespace qto::embedded::functions {

std::string slice(std::string_view text, std::size_t start, std::size_t count) {
  if (text::is_ascii(text)) return std::string(text.substr(std::min(start, text.size()), count));
  const std::u16string units = text::to_utf16(text);
  return text::from_utf16(std::u16string_view(units).substr(std::min(start, units.size()), count));
}

bool too_long(std::string_view text) noexcept {
  return text.size() > max_text_length && text::utf16_length(text) > max_text_length;
}

std::size_t to_count(double number) noexcept {
  return number <= 0 ? 0 : number >= 1e9 ? 1'000'000'000 : static_cast<std::size_t>(number);
}

}  // namespace qto::embedded::functions
