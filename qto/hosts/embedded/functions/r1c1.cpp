#include "qto/hosts/embedded/functions/r1c1.hpp"

#include <charconv>

namespace qto::embedded::functions {

namespace {

struct Axis {
  bool present = false;
  std::int32_t value = 0;
};

/// Reads "R3", "R[-1]" or "R" (the same row) at the start of `text`.
std::optional<Axis> take_axis(std::string_view& text, char letter, std::int32_t base,
                              std::int32_t size) {
  if (text.empty() || (text.front() & ~0x20) != letter) return Axis{};
  text.remove_prefix(1);
  const bool relative = text.starts_with('[');
  if (relative) text.remove_prefix(1);
  std::int32_t number = 0;
  const auto parsed = std::from_chars(text.data(), text.data() + text.size(), number);
  const bool has_number = parsed.ec == std::errc();
  if (!has_number && (relative || parsed.ec == std::errc::result_out_of_range)) return std::nullopt;
  if (has_number) text.remove_prefix(static_cast<std::size_t>(parsed.ptr - text.data()));
  if (relative) {
    if (!text.starts_with(']')) return std::nullopt;
    text.remove_prefix(1);
  }
  if (number < -size || number > size) return std::nullopt;
  const std::int32_t value = has_number && !relative ? number : base + number;
  if (value < 1 || value > size) return std::nullopt;
  return Axis{true, value};
}

/// One corner: a cell, a whole row or a whole column.
std::optional<Rect> take_corner(std::string_view& text, CellPos base) {
  const auto row = take_axis(text, 'R', base.row, max_rows);
  if (!row) return std::nullopt;
  const auto column = take_axis(text, 'C', base.column, max_columns);
  if (!column || (!row->present && !column->present)) return std::nullopt;
  Rect rect = Rect::sheet();
  if (row->present) rect.first.row = rect.last.row = row->value;
  if (column->present) rect.first.column = rect.last.column = column->value;
  return rect;
}

}  // namespace

std::optional<std::string> a1_of_r1c1(std::string_view text, CellPos base) {
  const std::size_t mark = text.rfind('!');
  std::string result;
  if (mark != std::string_view::npos) {
    result = text.substr(0, mark + 1);
    text.remove_prefix(mark + 1);
  }
  auto rect = take_corner(text, base);
  if (!rect) return std::nullopt;
  if (text.starts_with(':')) {
    text.remove_prefix(1);
    const auto other = take_corner(text, base);
    if (!other) return std::nullopt;
    rect->first.row = std::min(rect->first.row, other->first.row);
    rect->first.column = std::min(rect->first.column, other->first.column);
    rect->last.row = std::max(rect->last.row, other->last.row);
    rect->last.column = std::max(rect->last.column, other->last.column);
  }
  if (!text.empty()) return std::nullopt;
  append_rect(result, *rect, true, true);
  return result;
}

}  // namespace qto::embedded::functions
