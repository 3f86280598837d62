#include "qto/automation/text.hpp"

#include <algorithm>

#include "qto/automation/case_folding.hpp"
#include "qto/automation/unicode.hpp"

namespace qto::text {

bool is_ascii(std::string_view text) noexcept {
  return std::all_of(text.begin(), text.end(),
                     [](char c) { return static_cast<unsigned char>(c) < 0x80; });
}

namespace {

char lower_ascii(char c) noexcept { return c >= 'A' && c <= 'Z' ? static_cast<char>(c + 32) : c; }

/// Calls `take` with the bytes of the folded text, character by character.
template <class Take>
void fold_into(std::string_view text, Take&& take) {
  std::string folded;
  for (std::size_t at = 0; at < text.size();) {
    const DecodedCharacter c = decode_utf8(text, at);
    if (c.valid) {
      folded.clear();
      append_utf8(folded, fold_case(c.code));
      for (const char byte : folded) take(byte);
    } else {  // not UTF-8: keep the bytes
      for (const char byte : text.substr(at, c.length)) take(byte);
    }
    at += c.length;
  }
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
  std::u16string out;
  out.reserve(text.size());
  for (std::size_t at = 0; at < text.size();) {
    const DecodedCharacter c = decode_utf8(text, at);
    append_utf16(out, c.code);
    at += c.length;
  }
  return out;
}

std::string from_utf16(std::u16string_view text) {
  std::string out;
  out.reserve(text.size());
  for (std::size_t at = 0; at < text.size(); ++at) {
    char32_t code = text[at];
    if (code >= 0xD800 && code <= 0xDFFF) {
      const char32_t next = at + 1 < text.size() ? text[at + 1] : 0;
      const bool pair = code < 0xDC00 && next >= 0xDC00 && next <= 0xDFFF;
      code = pair ? 0x10000 + ((code - 0xD800) << 10) + (next - 0xDC00) : replacement_character;
      if (pair) ++at;
    }
    append_utf8(out, code);
  }
  return out;
}

bool is_valid_utf8(std::string_view text) noexcept {
  for (std::size_t at = 0; at < text.size();) {
    const DecodedCharacter c = decode_utf8(text, at);
    if (!c.valid) return false;
    at += c.length;
  }
  return true;
}

}  // namespace qto::text
