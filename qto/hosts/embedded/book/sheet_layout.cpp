#include "qto/hosts/embedded/book/sheet_layout.hpp"

#include <algorithm>
#include <cmath>

namespace qto::embedded {

ColumnLayout SheetLayout::column(std::int32_t column) const noexcept {
  const auto index = static_cast<std::size_t>(column - 1);
  return index < columns_.size() ? columns_[index] : ColumnLayout{};
}

double SheetLayout::column_width(std::int32_t column) const noexcept {
  const float own = this->column(column).width;
  return own > 0 ? own : default_width;
}

double SheetLayout::column_pixels(std::int32_t column) const noexcept {
  constexpr double digit = 7;
  constexpr double margins = 5;
  return column_hidden(column) ? 0 : std::round(column_width(column) * digit + margins);
}

double SheetLayout::row_height(std::int32_t row) const noexcept {
  const RowLayout layout = this->row(row);
  if (layout.hidden) return 0;
  return layout.height > 0 ? layout.height : default_height;
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

bool SheetLayout::row_filtered_out(std::int32_t row) const noexcept {
  const auto holds = [row](const FilteredRows& rows) {
    return row >= rows.first && row <= rows.last;
  };
  return std::ranges::any_of(filters_, holds) && row_hidden(row);
}

void SheetLayout::hide_rows(std::int32_t first, std::int32_t last, bool hidden) {
  const auto from = std::ranges::lower_bound(rows_, first, {}, &RowLayout::row);
  const auto to = std::ranges::upper_bound(rows_, last, {}, &RowLayout::row);
  // Built anew: inserting a million rows one by one into the middle would take for ever.
  std::vector<RowLayout> rows(rows_.begin(), from);
  if (hidden == rows_hidden_by_default) {
    for (auto row = from; row != to; ++row)
      if (row->height > 0) rows.push_back({row->row, row->height, hidden});
  } else {
    auto stored = from;
    for (std::int32_t number = first; number <= last; ++number) {
      const bool own = stored != to && stored->row == number;
      rows.push_back({number, own ? stored->height : 0, hidden});
      if (own) ++stored;
    }
  }
  rows.insert(rows.end(), to, rows_.end());
  rows_ = std::move(rows);
}

}  // namespace qto::embedded
