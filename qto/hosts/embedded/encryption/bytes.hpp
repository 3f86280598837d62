#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string_view>
#include <vector>

/// Bytes and the little-endian numbers in them.
namespace qto::embedded {

using Bytes = std::vector<unsigned char>;
using ByteView = std::span<const unsigned char>;

/// Reads a number at a position; the caller has checked that it lies inside.
template <class Number>
Number read_le(ByteView bytes, std::size_t at) noexcept {
  Number value = 0;
  for (std::size_t i = sizeof(Number); i-- > 0;)
    value = static_cast<Number>(value << 8 | bytes[at + i]);
  return value;
}

inline void append_le32(Bytes& out, std::uint32_t value) {
  for (int shift = 0; shift < 32; shift += 8)
    out.push_back(static_cast<unsigned char>(value >> shift));
}

/// The text as UTF-16 units, low byte first, as passwords are hashed.
Bytes utf16_bytes(std::string_view text);

/// The bytes cut or filled up with `filler` to a length.
Bytes resized(ByteView bytes, std::size_t length, unsigned char filler);

/// The bytes that a base64 text stands for; nothing when it is none or has more than 4,096 letters.
std::optional<Bytes> from_base64(std::string_view text);

}  // namespace qto::embedded
