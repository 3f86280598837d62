#include "qto/hosts/embedded/objects/sheet_view.hpp"

#include <algorithm>

namespace qto::embedded {
namespace {

// A window is so many lines of an ordinary sheet high and wide, however tall its own lines are.
constexpr double ordinary_height = 15;  // points
constexpr double ordinary_width = 64;   // pixels

struct Lines {
  std::int32_t first;
  std::int32_t last;
};

/// Rows or columns of a sheet, so that both are counted the same way.
struct Axis {
  const SheetLayout& layout;
  bool of_rows;
  std::int32_t scroll;
  std::int32_t frozen_first;
  std::int32_t frozen_count;
  std::int32_t end;

  double size(std::int32_t line) const noexcept {
    return of_rows ? layout.row_height(line) : layout.column_pixels(line);
  }
  std::int32_t first_scrollable() const noexcept { return frozen_first + frozen_count; }
  Lines frozen() const noexcept { return {frozen_first, first_scrollable() - 1}; }
  double frozen_size() const noexcept {
    double sum = 0;
    for (std::int32_t line = frozen_first; line < first_scrollable(); ++line) sum += size(line);
    return sum;
  }
  /// What shows from the scroll position on; one line at least.
  Lines scrolled(double window) const noexcept {
    double room = std::max(window - frozen_size(), 1.0);
    Lines lines{scroll, scroll};
    for (std::int32_t line = scroll; line <= end && room > 0; ++line) {
      const double taken = size(line);
      if (taken > 0) lines.last = line;
      room -= taken;
    }
    return lines;
  }
  Lines pane_of(std::int32_t line, double window) const noexcept {
    return line < first_scrollable() && frozen_count > 0 ? frozen() : scrolled(window);
  }
};

Axis rows_of(const Sheet& sheet) noexcept {
  const FrozenPanes& frozen = sheet.frozen;
  return {sheet.layout, true, sheet.scroll.row, frozen.first.row, frozen.rows, max_rows};
}

Axis columns_of(const Sheet& sheet) noexcept {
  const FrozenPanes& frozen = sheet.frozen;
  return {sheet.layout,        false,          sheet.scroll.column,
          frozen.first.column, frozen.columns, max_columns};
}

}  // namespace

Rect visible_block(const ApplicationObject& application, const Sheet& sheet, CellPos cell) {
  const Lines rows = rows_of(sheet).pane_of(cell.row, application.window_rows * ordinary_height);
  const Lines columns =
      columns_of(sheet).pane_of(cell.column, application.window_columns * ordinary_width);
  return {{rows.first, columns.first}, {rows.last, columns.last}};
}

CellPos first_scrollable(const Sheet& sheet) noexcept {
  const FrozenPanes& frozen = sheet.frozen;
  return {frozen.rows > 0 ? frozen.first.row + frozen.rows : 1,
          frozen.columns > 0 ? frozen.first.column + frozen.columns : 1};
}

void scroll_to_row(Sheet& sheet, std::int32_t row) noexcept {
  sheet.scroll.row = std::clamp(row, std::min(first_scrollable(sheet).row, max_rows), max_rows);
}

void scroll_to_column(Sheet& sheet, std::int32_t column) noexcept {
  sheet.scroll.column =
      std::clamp(column, std::min(first_scrollable(sheet).column, max_columns), max_columns);
}

void scroll_into_view(const ApplicationObject& application, Sheet& sheet, CellPos pos) {
  const Rect visible = visible_block(application, sheet, pos);
  if (pos.row < visible.first.row || pos.row > visible.last.row) scroll_to_row(sheet, pos.row);
  if (pos.column < visible.first.column || pos.column > visible.last.column)
    scroll_to_column(sheet, pos.column);
}

}  // namespace qto::embedded
