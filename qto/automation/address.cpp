#include "qto/automation/address.hpp"

namespace qto {
namespace {

bool is_letter(char c) noexcept { return (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z'); }
bool is_digit(char c) noexcept { return c >= '0' && c <= '9'; }

bool take(std::string_view& text, char c) noexcept {
  if (text.empty() || text.front() != c) return false;
  text.remove_prefix(1);
  return true;
}

/// A row number without leading zeros; 0 when there is none on the grid.
std::int32_t take_row(std::string_view& text) noexcept {
  std::int32_t row = 0;
  std::size_t used = 0;
  if (text.empty() || text.front() == '0') return 0;
  while (used < text.size() && is_digit(text[used])) {
    row = row * 10 + (text[used] - '0');
    if (row > max_rows) return 0;
    ++used;
  }
  text.remove_prefix(used);
  return row;
}

/// One corner: a cell, a lone column or a lone row, told by which of the two is 0.
WrittenCell take_corner(std::string_view& text) noexcept {
  WrittenCell corner;
  corner.pos = {0, 0};
  const bool dollar = take(text, '$');
  corner.pos.column = take_column(text);
  if (corner.pos.column == 0) {
    corner.row_absolute = dollar;
    corner.pos.row = take_row(text);
    return corner;
  }
  corner.column_absolute = dollar;
  std::string_view after = text;
  const bool row_dollar = take(after, '$');
  if (const std::int32_t row = take_row(after)) {
    corner.pos.row = row;
    corner.row_absolute = row_dollar;
    text = after;
  }
  return corner;
}

void append_number(std::string& out, std::int32_t number) {
  char digits[12];
  int n = 0;
  do digits[n++] = static_cast<char>('0' + number % 10);
  while (number /= 10);
  while (n) out.push_back(digits[--n]);
}

void append_row(std::string& out, std::int32_t row, bool absolute) {
  if (absolute) out.push_back('$');
  append_number(out, row);
}

void append_written_column(std::string& out, std::int32_t column, bool absolute) {
  if (absolute) out.push_back('$');
  append_column(out, column);
}

void append_r1c1(std::string& out, char axis, std::int32_t index, bool absolute,
                 std::int32_t base) {
  out.push_back(axis);
  if (absolute) return append_number(out, index);
  if (index == base) return;
  out.push_back('[');
  if (index < base) out.push_back('-');
  append_number(out, index < base ? base - index : index - base);
  out.push_back(']');
}

}  // namespace

std::int32_t take_column(std::string_view& text) noexcept {
  std::int32_t column = 0;
  std::size_t used = 0;
  for (; used < text.size() && is_letter(text[used]); ++used) {
    if (used == 3) return 0;
    column = column * 26 + ((text[used] & 0x1F));
  }
  if (column > max_columns) return 0;
  text.remove_prefix(used);
  return column;
}

Rect WrittenArea::rect() const noexcept {
  const auto [r1, r2] = std::minmax({first.pos.row, last.pos.row});
  const auto [c1, c2] = std::minmax({first.pos.column, last.pos.column});
  return {{r1, c1}, {r2, c2}};
}

std::optional<WrittenCell> parse_cell(std::string_view text) noexcept {
  const WrittenCell corner = take_corner(text);
  if (!text.empty() || corner.pos.row == 0 || corner.pos.column == 0) return std::nullopt;
  return corner;
}

std::optional<WrittenArea> parse_area(std::string_view text) noexcept {
  WrittenArea area;
  area.first = take_corner(text);
  const CellPos first = area.first.pos;
  if (first.row == 0 && first.column == 0) return std::nullopt;
  if (text.empty()) {
    if (first.row == 0 || first.column == 0) return std::nullopt;
    area.last = area.first;
    return area;
  }
  if (!take(text, ':')) return std::nullopt;
  area.last = take_corner(text);
  const CellPos last = area.last.pos;
  if (!text.empty()) return std::nullopt;
  if ((first.row == 0) != (last.row == 0) || (first.column == 0) != (last.column == 0))
    return std::nullopt;
  area.shape = AreaShape::area;
  if (first.row == 0) {
    area.shape = AreaShape::columns;
    area.first.pos.row = 1;
    area.last.pos.row = max_rows;
  } else if (first.column == 0) {
    area.shape = AreaShape::rows;
    area.first.pos.column = 1;
    area.last.pos.column = max_columns;
  }
  return area;
}

std::optional<Rect> parse_range_text(std::string_view text) noexcept {
  std::optional<Rect> result;
  while (true) {
    while (take(text, ' ')) {
    }
    if (text.empty()) return result;
    const std::size_t end = std::min(text.find(' '), text.size());
    const auto area = parse_area(text.substr(0, end));
    if (!area) return std::nullopt;
    result = result ? result->intersect(area->rect()) : area->rect();
    if (!result) return std::nullopt;
    text.remove_prefix(end);
  }
}

void append_column(std::string& out, std::int32_t column) {
  char letters[4];
  int n = 0;
  for (; column > 0; column = (column - 1) / 26)
    letters[n++] = static_cast<char>('A' + (column - 1) % 26);
  while (n) out.push_back(letters[--n]);
}

void append_cell(std::string& out, CellPos pos, bool row_absolute, bool column_absolute) {
  append_written_column(out, pos.column, column_absolute);
  append_row(out, pos.row, row_absolute);
}

void append_rect(std::string& out, const Rect& rect, bool row_absolute, bool column_absolute) {
  if (rect.is_cell()) return append_cell(out, rect.first, row_absolute, column_absolute);
  if (rect.whole_columns()) {
    append_written_column(out, rect.first.column, column_absolute);
    out.push_back(':');
    return append_written_column(out, rect.last.column, column_absolute);
  }
  if (rect.whole_rows()) {
    append_row(out, rect.first.row, row_absolute);
    out.push_back(':');
    return append_row(out, rect.last.row, row_absolute);
  }
  append_cell(out, rect.first, row_absolute, column_absolute);
  out.push_back(':');
  append_cell(out, rect.last, row_absolute, column_absolute);
}

std::string address_of(CellPos pos) {
  std::string out;
  append_cell(out, pos);
  return out;
}

std::string address_of(const Rect& rect, bool row_absolute, bool column_absolute) {
  std::string out;
  append_rect(out, rect, row_absolute, column_absolute);
  return out;
}

std::string r1c1_of(const Rect& rect, bool row_absolute, bool column_absolute, CellPos base) {
  std::string out;
  const auto corner = [&](CellPos pos) {
    if (!rect.whole_columns() || rect.whole_rows())
      append_r1c1(out, 'R', pos.row, row_absolute, base.row);
    if (!rect.whole_rows() || rect.whole_columns())
      append_r1c1(out, 'C', pos.column, column_absolute, base.column);
  };
  corner(rect.first);
  if (rect.is_cell()) return out;
  const std::string first = out;
  out.push_back(':');
  corner(rect.last);
  // A single whole row or column is written once.
  return out.substr(first.size() + 1) == first ? first : out;
}

bool needs_quotes(std::string_view name) noexcept {
  if (name.empty() || is_digit(name.front())) return true;
  for (const char c : name) {
    const bool plain = is_letter(c) || is_digit(c) || c == '_' || c == '.' ||
                       static_cast<unsigned char>(c) >= 0x80;
    if (!plain) return true;
  }
  // A name that reads as a cell in either notation would be taken for a reference.
  if (parse_cell(name)) return true;
  if ((name.front() | 0x20) != 'r' && (name.front() | 0x20) != 'c') return false;
  return std::all_of(name.begin() + 1, name.end(),
                     [](char c) { return is_digit(c) || (c | 0x20) == 'c'; });
}

void append_sheet_name(std::string& out, std::string_view name) {
  if (!needs_quotes(name)) {
    out.append(name);
    return;
  }
  out.push_back('\'');
  for (const char c : name) {
    if (c == '\'') out.push_back('\'');
    out.push_back(c);
  }
  out.push_back('\'');
}

}  // namespace qto
