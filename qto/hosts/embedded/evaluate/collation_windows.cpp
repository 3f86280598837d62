#include <windows.h>

#include <array>
#include <string>
#include <unordered_map>

#include "qto/automation/unicode.hpp"
#include "qto/automation/wide_text_windows.hpp"
#include "qto/hosts/embedded/evaluate/collation.hpp"

namespace qto::embedded {
namespace {

/// Where a character stands among all, accents and letter case aside: the weight of the ASCII
/// character that it is a form of or comes behind, then the system's own sorting weight among those
/// behind it. An ignored one has no place.
struct Place {
  unsigned char weight = 0;
  std::string behind;
  auto operator<=>(const Place&) const = default;
};

/// The system's sorting weight of a character, as bytes to compare.
std::string system_weight(char32_t c) {
  std::u16string units;
  text::append_utf16(units, c);
  const std::wstring wide(units.begin(), units.end());
  const auto length = static_cast<int>(wide.size());
  constexpr DWORD how = LCMAP_SORTKEY | NORM_IGNORECASE | NORM_IGNORENONSPACE | NORM_IGNOREWIDTH |
                        NORM_IGNOREKANATYPE | SORT_STRINGSORT;
  std::array<char, 64> key{};
  const int size = LCMapStringEx(LOCALE_NAME_INVARIANT, how, wide.data(), length,
                                 reinterpret_cast<wchar_t*>(key.data()),
                                 static_cast<int>(key.size()), nullptr, nullptr, 0);
  if (size <= 0) return "?";  // longer than any: treated alike
  const std::string bytes(key.data(), static_cast<std::size_t>(size));
  return bytes.substr(0, bytes.find('\1'));  // where the weights of accents begin
}

Place new_place(char32_t c) {
  if (c < 0x80) return {ascii_weight(static_cast<char>(c)), ""};
  const std::string weight = system_weight(c);
  if (weight.empty()) return {};
  for (const std::string_view forms : {"0123456789", "abcdefghijklmnopqrstuvwxyz"})
    for (const char form : forms)
      if (weight == system_weight(static_cast<char32_t>(form))) return {ascii_weight(form), ""};
  const char behind = weight < system_weight(U'0') ? '$' : weight < system_weight(U'a') ? '9' : 'z';
  return {ascii_weight(behind), weight};
}

const Place& place_of(char32_t c) {
  thread_local std::unordered_map<char32_t, Place> known;
  const auto found = known.find(c);
  return found != known.end() ? found->second : known.emplace(c, new_place(c)).first->second;
}

/// The place of the next character that has one; moves on. An empty place at the end.
Place next_place(std::string_view text, std::size_t& at) {
  while (at < text.size()) {
    const text::DecodedCharacter c = text::decode_utf8(text, at);
    at += c.length;
    if (const Place& place = place_of(c.code); place.weight != 0) return place;
  }
  return {};
}

}  // namespace

int collate(std::string_view a, std::string_view b) {
  std::size_t in_a = 0;
  std::size_t in_b = 0;
  while (in_a < a.size() || in_b < b.size()) {
    const auto order = next_place(a, in_a) <=> next_place(b, in_b);
    if (order != 0) return order < 0 ? -1 : 1;
  }
  // The same but for accents.
  const std::wstring wide_a = text::to_wide(a);
  const std::wstring wide_b = text::to_wide(b);
  const int order = CompareStringEx(LOCALE_NAME_INVARIANT, NORM_IGNORECASE | SORT_STRINGSORT,
                                    wide_a.data(), static_cast<int>(wide_a.size()), wide_b.data(),
                                    static_cast<int>(wide_b.size()), nullptr, nullptr, 0);
  return order == 0 ? 0 : order - CSTR_EQUAL;
}

}  // namespace qto::embedded
