#pragma once

#include <algorithm>
#include <compare>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

/// Positions and A1 addresses on the grid of a worksheet. Rows and columns count from 1.
namespace qto {

inline constexpr std::int32_t max_rows = 1'048'576;
inline constexpr std::int32_t max_columns = 16'384;

struct CellPos {
  std::int32_t row = 1;
  std::int32_t column = 1;
  auto operator<=>(const CellPos&) const = default;
  bool on_grid() const noexcept {
    return row >= 1 && row <= max_rows && column >= 1 && column <= max_columns;
  }
};

/// A rectangular block of cells; always at least one cell.
struct Rect {
  CellPos first;
  CellPos last;
  bool operator==(const Rect&) const = default;

  static Rect cell(CellPos pos) noexcept { return {pos, pos}; }
  static Rect sheet() noexcept { return {{1, 1}, {max_rows, max_columns}}; }
  std::int32_t rows() const noexcept { return last.row - first.row + 1; }
  std::int32_t columns() const noexcept { return last.column - first.column + 1; }
  std::int64_t cells() const noexcept { return std::int64_t{rows()} * columns(); }
  bool is_cell() const noexcept { return first == last; }
  bool whole_columns() const noexcept { return first.row == 1 && last.row == max_rows; }
  bool whole_rows() const noexcept { return first.column == 1 && last.column == max_columns; }
  bool contains(CellPos pos) const noexcept {
    return pos.row >= first.row && pos.row <= last.row && pos.column >= first.column &&
           pos.column <= last.column;
  }
  std::optional<Rect> intersect(const Rect& other) const noexcept {
    const Rect r{{std::max(first.row, other.first.row), std::max(first.column, other.first.column)},
                 {std::min(last.row, other.last.row), std::min(last.column, other.last.column)}};
    if (r.first.row > r.last.row || r.first.column > r.last.column) return std::nullopt;
    return r;
  }
};

/// An address as written, with its dollars.
struct WrittenCell {
  CellPos pos;
  bool row_absolute = false;
  bool column_absolute = false;
};

/// Which form an address was written in.
enum class AreaShape : std::uint8_t { cell, area, columns, rows };

struct WrittenArea {
  WrittenCell first;
  WrittenCell last;
  AreaShape shape = AreaShape::cell;
  /// The block with its corners in order.
  Rect rect() const noexcept;
};

/// Reads a column's letters at the start of `text` ("A" to "XFD", any letter case) and moves past
/// them; 0 and no move when there are none or they lie beyond the grid.
std::int32_t take_column(std::string_view& text) noexcept;

/// "B7", "$B$7"; the whole text must be one cell address on the grid.
std::optional<WrittenCell> parse_cell(std::string_view text) noexcept;
/// A cell, "A1:B2", whole columns "A:C" or whole rows "3:5", each with or without dollars. Spaces
/// around the colon are not accepted.
std::optional<WrittenArea> parse_area(std::string_view text) noexcept;
/// What a range text denotes: an area, or the intersection of several areas separated by spaces;
/// surrounding spaces are ignored. Nothing when a text is not an address or areas do not meet.
std::optional<Rect> parse_range_text(std::string_view text) noexcept;

void append_column(std::string& out, std::int32_t column);
void append_cell(std::string& out, CellPos pos, bool row_absolute = false,
                 bool column_absolute = false);
/// The shortest A1 form: one cell, whole columns ("A:C"), whole rows ("3:5") or two corners.
void append_rect(std::string& out, const Rect& rect, bool row_absolute = false,
                 bool column_absolute = false);
std::string address_of(CellPos pos);
std::string address_of(const Rect& rect, bool row_absolute = false, bool column_absolute = false);

/// R1C1 form of a block: absolute ("R2C3") or relative to `base` ("R[-1]C").
std::string r1c1_of(const Rect& rect, bool row_absolute, bool column_absolute, CellPos base);

/// True when a sheet or book name needs apostrophes in a formula.
bool needs_quotes(std::string_view sheet_name) noexcept;
/// Appends the name, in apostrophes with inner ones doubled when it needs them.
void append_sheet_name(std::string& out, std::string_view sheet_name);

}  // namespace qto
