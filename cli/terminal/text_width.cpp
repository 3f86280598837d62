#include "cli/terminal/text_width.hpp"

#include <cstdint>

namespace qto::cli {
namespace {

struct Letter {
  std::uint32_t code = 0;
  std::size_t bytes = 1;
};

/// The letter at the front of a text; a damaged one is a letter of one byte.
Letter front_letter(std::string_view text) noexcept {
  const auto lead = static_cast<unsigned char>(text.front());
  const std::size_t bytes = lead < 0x80 ? 1 : lead >= 0xF0 ? 4 : lead >= 0xE0 ? 3 : 2;
  if (lead < 0x80 || lead < 0xC0 || bytes > text.size()) return {lead, 1};
  std::uint32_t code = lead & (0xFFu >> (bytes + 1));
  for (std::size_t i = 1; i < bytes; ++i) {
    const auto next = static_cast<unsigned char>(text[i]);
    if ((next & 0xC0) != 0x80) return {lead, 1};
    code = code << 6 | (next & 0x3Fu);
  }
  return {code, bytes};
}

bool within(std::uint32_t code, std::uint32_t first, std::uint32_t last) noexcept {
  return code >= first && code <= last;
}

std::size_t width_of(std::uint32_t code) noexcept {
  if (within(code, 0x300, 0x36F) || within(code, 0x200B, 0x200F) || within(code, 0x20D0, 0x20FF) ||
      within(code, 0xFE00, 0xFE0F))
    return 0;
  const bool wide = within(code, 0x1100, 0x115F) || within(code, 0x2E80, 0xA4CF) ||
                    within(code, 0xAC00, 0xD7A3) || within(code, 0xF900, 0xFAFF) ||
                    within(code, 0xFE30, 0xFE6F) || within(code, 0xFF00, 0xFF60) ||
                    within(code, 0xFFE0, 0xFFE6) || within(code, 0x1F300, 0x1FAFF) ||
                    within(code, 0x20000, 0x3FFFD);
  return wide ? 2 : 1;
}

}  // namespace

std::size_t text_width(std::string_view text) noexcept {
  std::size_t width = 0;
  while (!text.empty()) {
    const Letter letter = front_letter(text);
    width += width_of(letter.code);
    text.remove_prefix(letter.bytes);
  }
  return width;
}

std::string clipped(std::string_view text, std::size_t width) {
  if (text_width(text) <= width) return std::string(text);
  if (width == 0) return "";
  std::size_t bytes = 0;
  for (std::size_t used = 0; bytes < text.size();) {
    const Letter letter = front_letter(text.substr(bytes));
    used += width_of(letter.code);
    if (used > width - 1) break;
    bytes += letter.bytes;
  }
  return std::string(text.substr(0, bytes)) + "…";
}

}  // namespace qto::cli
