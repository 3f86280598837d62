#include "qto/hosts/embedded/encryption/bytes.hpp"

#include <algorithm>

#include "qto/automation/text.hpp"

namespace qto::embedded {
namespace {

constexpr std::size_t longest_base64 = 4096;

/// The six bits of a letter; -1 for what is none.
int bits_of(char c) noexcept {
  if (c >= 'A' && c <= 'Z') return c - 'A';
  if (c >= 'a' && c <= 'z') return c - 'a' + 26;
  if (c >= '0' && c <= '9') return c - '0' + 52;
  return c == '+' ? 62 : c == '/' ? 63 : -1;
}

}  // namespace

Bytes utf16_bytes(std::string_view text) {
  Bytes bytes;
  for (const char16_t unit : text::to_utf16(text)) {
    bytes.push_back(static_cast<unsigned char>(unit & 0xFF));
    bytes.push_back(static_cast<unsigned char>(unit >> 8));
  }
  return bytes;
}

Bytes resized(ByteView bytes, std::size_t length, unsigned char filler) {
  Bytes out(bytes.begin(),
            bytes.begin() + static_cast<std::ptrdiff_t>(std::min(length, bytes.size())));
  out.resize(length, filler);
  return out;
}

std::optional<Bytes> from_base64(std::string_view text) {
  if (text.size() % 4 != 0 || text.size() > longest_base64) return std::nullopt;
  std::size_t letters = text.size();
  while (letters > 0 && text.size() - letters < 2 && text[letters - 1] == '=') --letters;
  Bytes bytes;
  bytes.reserve(text.size() / 4 * 3);
  std::uint32_t group = 0;
  for (std::size_t i = 0; i < letters; ++i) {
    const int bits = bits_of(text[i]);
    if (bits < 0) return std::nullopt;
    group = group << 6 | static_cast<std::uint32_t>(bits);
    // Every letter but the first of four completes a byte.
    if (i % 4 != 0) bytes.push_back(static_cast<unsigned char>(group >> (6 - i % 4 * 2)));
  }
  return bytes;
}

}  // namespace qto::embedded
