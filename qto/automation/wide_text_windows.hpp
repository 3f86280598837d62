#pragma once

#include <string>
#include <string_view>

#include "qto/automation/text.hpp"

/// Texts as the functions of Windows take them: UTF-16 in wide characters. For Windows alone.
namespace qto::text {

static_assert(sizeof(wchar_t) == sizeof(char16_t));

inline std::wstring to_wide(std::string_view text) {
  const std::u16string units = to_utf16(text);
  return {units.begin(), units.end()};
}

inline std::string from_wide(std::wstring_view text) {
  return from_utf16({reinterpret_cast<const char16_t*>(text.data()), text.size()});
}

}  // namespace qto::text
