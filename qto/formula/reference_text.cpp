#include "qto/formula/reference_text.hpp"

#include <charconv>
#include <utility>

namespace qto::formula {
namespace {

RefAxis relative_axis(std::int32_t index, bool absolute, std::int32_t base) noexcept {
  return {absolute ? index : index - base, absolute};
}

/// A corner's place on one axis, with its dollar.
struct End {
  std::int32_t index;
  bool absolute;
};

std::pair<End, End> ends(const RefAxis& a, const RefAxis& b, std::int32_t base,
                         std::int32_t size) noexcept {
  const End first{a.resolve(base, size), a.absolute};
  const End last{b.resolve(base, size), b.absolute};
  return first.index <= last.index ? std::pair{first, last} : std::pair{last, first};
}

/// Addresses are short: they are put together here and appended in one step.
struct Buffer {
  char text[32];
  char* next = text;

  void put(char c) { *next++ = c; }
  void dollar(bool absolute) {
    if (absolute) put('$');
  }
  void number(std::int32_t value) { next = std::to_chars(next, text + sizeof text, value).ptr; }
  void row(End end) {
    dollar(end.absolute);
    number(end.index);
  }
  void column(End end) {
    dollar(end.absolute);
    std::int32_t c = end.index - 1;
    if (c >= 26 + 26 * 26) put(static_cast<char>('A' + (c / 26 - 1) / 26 - 1));
    if (c >= 26) put(static_cast<char>('A' + (c / 26 - 1) % 26));
    put(static_cast<char>('A' + c % 26));
  }
  void cell(End row_end, End column_end) {
    column(column_end);
    row(row_end);
  }
  void r1c1(char axis, End end, std::int32_t base) {
    put(axis);
    if (end.absolute) return number(end.index);
    if (end.index == base) return;
    put('[');
    number(end.index - base);
    put(']');
  }
  void append_to(std::string& out) const { out.append(text, next - text); }
};

void append_r1c1_line(std::string& out, char axis, std::pair<End, End> line, std::int32_t base) {
  Buffer buffer;
  buffer.r1c1(axis, line.first, base);
  if (line.first.index != line.second.index || line.first.absolute != line.second.absolute) {
    buffer.put(':');
    buffer.r1c1(axis, line.second, base);
  }
  buffer.append_to(out);
}

}  // namespace

AreaRef relative_area(const WrittenArea& area, CellPos base) noexcept {
  AreaRef ref;
  ref.shape = area.shape;
  const auto row = [&](const WrittenCell& corner) {
    return relative_axis(corner.pos.row, corner.row_absolute, base.row);
  };
  const auto column = [&](const WrittenCell& corner) {
    return relative_axis(corner.pos.column, corner.column_absolute, base.column);
  };
  if (area.shape == AreaShape::columns) {
    ref.first_row = {1, true};
    ref.last_row = {max_rows, true};
  } else {
    ref.first_row = row(area.first);
    ref.last_row = row(area.last);
  }
  if (area.shape == AreaShape::rows) {
    ref.first_column = {1, true};
    ref.last_column = {max_columns, true};
  } else {
    ref.first_column = column(area.first);
    ref.last_column = column(area.last);
  }
  return ref;
}

void append_area(std::string& out, const AreaRef& area, CellPos at) {
  Buffer buffer;
  if (area.shape == AreaShape::cell) {
    buffer.cell({area.first_row.resolve(at.row, max_rows), area.first_row.absolute},
                {area.first_column.resolve(at.column, max_columns), area.first_column.absolute});
    return buffer.append_to(out);
  }
  const auto rows = ends(area.first_row, area.last_row, at.row, max_rows);
  const auto columns = ends(area.first_column, area.last_column, at.column, max_columns);
  if (area.shape == AreaShape::columns) {
    buffer.column(columns.first);
    buffer.put(':');
    buffer.column(columns.second);
  } else if (area.shape == AreaShape::rows) {
    buffer.row(rows.first);
    buffer.put(':');
    buffer.row(rows.second);
  } else {
    buffer.cell(rows.first, columns.first);
    buffer.put(':');
    buffer.cell(rows.second, columns.second);
  }
  buffer.append_to(out);
}

void append_area_r1c1(std::string& out, const AreaRef& area, CellPos at) {
  const auto rows = ends(area.first_row, area.last_row, at.row, max_rows);
  const auto columns = ends(area.first_column, area.last_column, at.column, max_columns);
  if (area.shape == AreaShape::columns) return append_r1c1_line(out, 'C', columns, at.column);
  if (area.shape == AreaShape::rows) return append_r1c1_line(out, 'R', rows, at.row);
  const auto corner = [&](End row, End column) {
    Buffer buffer;
    buffer.r1c1('R', row, at.row);
    buffer.r1c1('C', column, at.column);
    buffer.append_to(out);
  };
  corner(rows.first, columns.first);
  if (area.shape == AreaShape::cell) return;
  out.push_back(':');
  corner(rows.second, columns.second);
}

}  // namespace qto::formula
