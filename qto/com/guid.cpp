#include "qto/com/guid.hpp"

#include <charconv>
#include <cstdio>

namespace qto::com {

std::string guid_text(const Guid& g) {
  char out[39];
  std::snprintf(out, sizeof out, "{%08X-%04X-%04X-%02X%02X-%02X%02X%02X%02X%02X%02X}", g.data1,
                g.data2, g.data3, g.data4[0], g.data4[1], g.data4[2], g.data4[3], g.data4[4],
                g.data4[5], g.data4[6], g.data4[7]);
  return out;
}

namespace {

template <class Number>
bool read_hex(std::string_view digits, Number& out) {
  const char* end = digits.data() + digits.size();
  const auto read = std::from_chars(digits.data(), end, out, 16);
  return read.ec == std::errc() && read.ptr == end;
}

}  // namespace

std::optional<Guid> parse_guid(std::string_view text) {
  if (text.size() == 38 && text.front() == '{' && text.back() == '}') text = text.substr(1, 36);
  if (text.size() != 36) return std::nullopt;
  for (const std::size_t dash : {8, 13, 18, 23})
    if (text[dash] != '-') return std::nullopt;
  Guid guid;
  bool good = read_hex(text.substr(0, 8), guid.data1) && read_hex(text.substr(9, 4), guid.data2) &&
              read_hex(text.substr(14, 4), guid.data3);
  for (std::size_t i = 0; i < 8; ++i)
    good = good && read_hex(text.substr(i < 2 ? 19 + 2 * i : 20 + 2 * i, 2), guid.data4[i]);
  return good ? std::optional(guid) : std::nullopt;
}

}  // namespace qto::com
