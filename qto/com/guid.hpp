#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace qto::com {

/// A globally unique identifier, laid out as clients pass it.
struct Guid {
  std::uint32_t data1 = 0;
  std::uint16_t data2 = 0, data3 = 0;
  std::array<std::uint8_t, 8> data4{};
  bool operator==(const Guid&) const = default;
};
static_assert(sizeof(Guid) == 16);

/// The identifier number `n` of this system's own block; numbers once given out stay as they are.
constexpr Guid own_guid(std::uint32_t n) {
  return {0x81663600u + n, 0xe4e0, 0x49ec, {0xa3, 0xc2, 0x45, 0xa1, 0x46, 0x0f, 0x48, 0x36}};
}

/// "{81663600-E4E0-…}", in upper case.
std::string guid_text(const Guid& guid);
/// The identifier of such a text, with or without braces; nothing when it is none.
std::optional<Guid> parse_guid(std::string_view text);

}  // namespace qto::com
