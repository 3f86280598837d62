#include "qto/hosts/embedded/encryption/bytes.hpp"

#include <algorithm>

#include "qto/automation/text.hpp"

namespace qto::embedded {

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

}  // namespace qto::embedded
