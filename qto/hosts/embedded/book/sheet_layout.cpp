#include "qto/hosts/embedded/book/sheet_layout.hpp"

#include <algorithm>

namespace qto::embedded {

ColumnLayout SheetLayout::column(std::int32_t column) const noexcept {
  const auto index = static_cast<std::size_t>(column - 1);
  return index < columns_.size() ? columns_[index] : ColumnLayout{};
}

double SheetLayout::column_width(std::int32_t column) const noexcept {
  const float own = this->column(column).width;
  return own > 0 ? own : default_width;
}

RowLayout SheetLayout::row(std::int32_t row) const noexcept {
  const auto found = std::ranges::lower_bound(rows_, row, {}, &RowLayout::row);
  if (found != rows_.end() && found->row == row) return *found;
  return {row, 0, rows_hidden_by_default};
}

void SheetLayout::set_columns(std::int32_t first, std::int32_t last, ColumnLayout layout) {
  if (columns_.size() < static_cast<std::size_t>(last)) columns_.resize(last);
  std::fill(columns_.begin() + (first - 1), columns_.begin() + last, layout);
}

void SheetLayout::set_row(RowLayout layout) {
  if (rows_.empty() || rows_.back().row < layout.row) {
    rows_.push_back(layout);
    return;
  }
  const auto found = std::ranges::lower_bound(rows_, layout.row, {}, &RowLayout::row);
  if (found != rows_.end() && found->row == layout.row)
    *found = layout;
  else
    rows_.insert(found, layout);
}

void SheetLayout::hide_columns(std::int32_t first, std::int32_t last, bool hidden) {
  if (columns_.size() < static_cast<std::size_t>(last)) columns_.resize(last);
  for (std::int32_t column = first; column <= last; ++column) columns_[column - 1].hidden = hidden;
}

void SheetLayout::hide_rows(std::int32_t first, std::int32_t last, bool hidden) {
  for (std::int32_t number = first; number <= last; ++number) {
    RowLayout layout = row(number);
    if (layout.hidden == hidden) continue;
    layout.hidden = hidden;
    set_row(layout);
  }
}

}  // namespace qto::embedded
