#include "qto/automation/text.hpp"

#include <unicode/locid.h>
#include <unicode/uchar.h>
#include <unicode/unistr.h>
#include <unicode/ustring.h>
#include <unicode/utf8.h>

#include <algorithm>

namespace qto::text {
bool is_ascii(std::string_view text) noexcept {
  return std::all_of(text.begin(), text.end(),
                     [](char c) { return static_cast<unsigned char>(c) < 0x80; });
}

namespace {

char lower_ascii(char c) noexcept { return c >= 'A' && c <= 'Z' ? static_cast<char>(c + 32) : c; }

/// Calls `take` with the bytes of the folded text, code point by code point.
template <class Take>
void fold_into(std::string_view text, Take&& take) {
  const auto* bytes = reinterpret_cast<const std::uint8_t*>(text.data());
  const auto length = static_cast<std::int32_t>(text.size());
  for (std::int32_t i = 0; i < length;) {
    const std::int32_t start = i;
    UChar32 c;
    U8_NEXT(bytes, i, length, c);
    if (c < 0) {  // not UTF-8: keep the bytes
      for (std::int32_t k = start; k < i; ++k) take(static_cast<char>(bytes[k]));
      continue;
    }
    c = u_foldCase(c, U_FOLD_CASE_DEFAULT);
    char folded[U8_MAX_LENGTH];
    std::int32_t n = 0;
    U8_APPEND_UNSAFE(folded, n, c);
    for (std::int32_t k = 0; k < n; ++k) take(folded[k]);
  }
}

std::string from_icu(const icu::UnicodeString& text) {
  std::string out;
  text.toUTF8String(out);
  return out;
}

icu::UnicodeString to_icu(std::string_view text) {
  return icu::UnicodeString::fromUTF8(
      icu::StringPiece(text.data(), static_cast<std::int32_t>(text.size())));
}

}  // namespace

std::string fold_case(std::string_view text) {
  std::string out;
  out.reserve(text.size());
  if (is_ascii(text)) {
    for (const char c : text) out.push_back(lower_ascii(c));
  } else {
    fold_into(text, [&out](char c) { out.push_back(c); });
  }
  return out;
}

bool equal_fold(std::string_view a, std::string_view b) {
  if (a == b) return true;
  if (is_ascii(a) && is_ascii(b)) return equal_ascii_nocase(a, b);
  return fold_case(a) == fold_case(b);
}

std::uint64_t hash_fold(std::string_view text) {
  std::uint64_t hash = 0xcbf29ce484222325u;
  const auto mix = [&hash](char c) {
    hash = (hash ^ static_cast<unsigned char>(c)) * 0x100000001b3u;
  };
  if (is_ascii(text)) {
    for (const char c : text) mix(lower_ascii(c));
  } else {
    fold_into(text, mix);
  }
  return hash ^ (hash >> 29);
}

std::string upper_ascii(std::string_view text) {
  std::string out(text);
  for (char& c : out)
    if (c >= 'a' && c <= 'z') c = static_cast<char>(c - 32);
  return out;
}

bool equal_ascii_nocase(std::string_view a, std::string_view b) noexcept {
  return a.size() == b.size() && std::equal(a.begin(), a.end(), b.begin(), [](char x, char y) {
           return lower_ascii(x) == lower_ascii(y);
         });
}

std::string to_upper(std::string_view text) {
  return from_icu(to_icu(text).toUpper(icu::Locale::getRoot()));
}

std::string to_lower(std::string_view text) {
  return from_icu(to_icu(text).toLower(icu::Locale::getRoot()));
}

std::string_view trim(std::string_view text) noexcept {
  while (!text.empty() && text.front() == ' ') text.remove_prefix(1);
  while (!text.empty() && text.back() == ' ') text.remove_suffix(1);
  return text;
}

std::size_t utf16_length(std::string_view text) noexcept {
  std::size_t units = 0;
  for (const char c : text) {
    const auto byte = static_cast<unsigned char>(c);
    if ((byte & 0xC0) != 0x80) units += byte >= 0xF0 ? 2 : 1;
  }
  return units;
}

std::u16string to_utf16(std::string_view text) {
  const icu::UnicodeString wide = to_icu(text);
  return std::u16string(wide.getBuffer(), static_cast<std::size_t>(wide.length()));
}

std::string from_utf16(std::u16string_view text) {
  return from_icu(icu::UnicodeString(text.data(), static_cast<std::int32_t>(text.size())));
}

bool is_valid_utf8(std::string_view text) noexcept {
  const auto* bytes = reinterpret_cast<const std::uint8_t*>(text.data());
  const auto length = static_cast<std::int32_t>(text.size());
  for (std::int32_t i = 0; i < length;) {
    UChar32 c;
    U8_NEXT(bytes, i, length, c);
    if (c < 0) return false;
  }
  return true;
}

}  // namespace qto::text
