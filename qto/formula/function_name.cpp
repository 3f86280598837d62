#include "qto/formula/function_name.hpp"

#include <algorithm>

#include "qto/automation/text.hpp"

namespace qto::formula {

std::string_view without_prefix(std::string_view name) noexcept {
  constexpr std::size_t length = 6;
  while (name.size() > length && (name.starts_with("_xl") || name.starts_with("_XL"))) {
    const std::string_view prefix = name.substr(0, length);
    const bool known =
        text::equal_ascii_nocase(prefix, "_xlfn.") || text::equal_ascii_nocase(prefix, "_xlws.") ||
        text::equal_ascii_nocase(prefix, "_xlpm.") || text::equal_ascii_nocase(prefix, "_xlop.");
    if (!known) break;
    name.remove_prefix(length);
  }
  return name;
}

MarkFunction mark_function(std::string_view name) noexcept {
  const std::string_view plain = without_prefix(name);
  if (plain.size() == name.size()) return MarkFunction::none;
  if (text::equal_ascii_nocase(plain, "SINGLE")) return MarkFunction::single;
  if (text::equal_ascii_nocase(plain, "ANCHORARRAY")) return MarkFunction::anchor_array;
  return MarkFunction::none;
}

std::string shown_function_name(std::string_view name) {
  name = without_prefix(name);
  const bool capitals = std::any_of(name.begin(), name.end(), [](char c) {
    return (c >= 'A' && c <= 'Z') || static_cast<unsigned char>(c) >= 0x80;
  });
  return capitals ? std::string(name) : text::upper_ascii(name);
}

}  // namespace qto::formula
