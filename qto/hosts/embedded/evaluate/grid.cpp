#include "qto/hosts/embedded/evaluate/grid.hpp"

namespace qto::embedded {

namespace {

/// Blocks of more rows are cut down to what their sheet holds before they are walked row by row.
constexpr int long_block_rows = 4096;

}  // namespace

Grid::Grid(Context& context, const Operand& operand) {
  if (const Variant* value = operand.value()) {
    if (value->is_array()) {
      array_ = &value->array();
      rows_ = array_->rows();
      columns_ = array_->columns();
    } else {
      scalar_ = view_of(*value);
    }
    return;
  }
  if (operand.is_missing()) return;
  area_ = operand.area();
  if (!area_) {
    scalar_ = ErrorValue::value;
    return;
  }
  context.ready(*area_);
  texts_ = &area_->sheet->book().texts;
  rows_ = area_->rect.rows();
  columns_ = area_->rect.columns();
}

ValueView Grid::at(int row, int column) const noexcept {
  if (area_) {
    const Cell* cell =
        area_->sheet->cells.find({area_->rect.first.row + row, area_->rect.first.column + column});
    return cell ? view_of(*cell, *texts_) : ValueView();
  }
  return array_ ? view_of(array_->at(row + 1, column + 1)) : scalar_;
}

ValueView Grid::broadcast(int row, int column) const noexcept {
  if (rows_ == 1) row = 0;
  if (columns_ == 1) column = 0;
  if (row >= rows_ || column >= columns_) return ErrorValue::na;
  return at(row, column);
}

int Grid::stored_rows() const noexcept {
  if (!area_ || rows_ <= long_block_rows) return rows_;
  const Rect& rect = area_->rect;
  const int last = area_->sheet->cells.last_row(rect.first.column, rect.last.column);
  return std::clamp(last - area_->rect.first.row + 1, 0, rows_);
}

int Grid::stored_columns() const noexcept {
  if (!area_) return columns_;
  const int last = area_->sheet->cells.last_column();
  return std::clamp(last - area_->rect.first.column + 1, 0, columns_);
}

}  // namespace qto::embedded
