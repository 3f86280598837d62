#include "qto/automation/unicode.hpp"

namespace qto::text {
namespace {

struct Lead {
  std::size_t length = 0;            ///< of the whole sequence; 0: no sequence begins so
  unsigned char second_low = 0x80;   ///< what the second byte may be: neither an overlong form, nor
  unsigned char second_high = 0xBF;  ///< a surrogate, nor beyond 10FFFF
};

constexpr Lead lead_of(unsigned char byte) noexcept {
  if (byte < 0xC2 || byte > 0xF4) return {};
  if (byte < 0xE0) return {2};
  if (byte == 0xE0) return {3, 0xA0, 0xBF};
  if (byte == 0xED) return {3, 0x80, 0x9F};
  if (byte < 0xF0) return {3};
  if (byte == 0xF0) return {4, 0x90, 0xBF};
  if (byte == 0xF4) return {4, 0x80, 0x8F};
  return {4};
}

}  // namespace

DecodedCharacter decode_utf8(std::string_view text, std::size_t at) noexcept {
  const auto first = static_cast<unsigned char>(text[at]);
  if (first < 0x80) return {first, 1};
  const Lead lead = lead_of(first);
  char32_t code = first & (0x7Fu >> lead.length);
  std::size_t length = 1;
  for (; length < lead.length && at + length < text.size(); ++length) {
    const auto byte = static_cast<unsigned char>(text[at + length]);
    const bool fits =
        length == 1 ? byte >= lead.second_low && byte <= lead.second_high : (byte & 0xC0) == 0x80;
    if (!fits) break;
    code = code << 6 | (byte & 0x3F);
  }
  if (lead.length == 0 || length < lead.length) return {replacement_character, length, false};
  return {code, length};
}

void append_utf8(std::string& out, char32_t code) {
  const auto follow = [&](int shift) {
    out.push_back(static_cast<char>(0x80 | (code >> shift & 0x3F)));
  };
  if (code < 0x80) {
    out.push_back(static_cast<char>(code));
  } else if (code < 0x800) {
    out.push_back(static_cast<char>(0xC0 | code >> 6));
    follow(0);
  } else if (code < 0x10000) {
    out.push_back(static_cast<char>(0xE0 | code >> 12));
    follow(6);
    follow(0);
  } else {
    out.push_back(static_cast<char>(0xF0 | code >> 18));
    follow(12);
    follow(6);
    follow(0);
  }
}

void append_utf16(std::u16string& out, char32_t code) {
  if (code < 0x10000) {
    out.push_back(static_cast<char16_t>(code));
  } else {
    out.push_back(static_cast<char16_t>(0xD7C0 + (code >> 10)));
    out.push_back(static_cast<char16_t>(0xDC00 | (code & 0x3FF)));
  }
}

}  // namespace qto::text
