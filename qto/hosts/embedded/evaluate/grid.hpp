#pragma once

#include <cstdint>

#include "qto/hosts/embedded/evaluate/context.hpp"

namespace qto::embedded {

/// The values of an operand seen as rows and columns, which count from 0: a block of cells, an
/// array, or a single value. Nothing is copied; the operand must outlive the grid. A reference of
/// several areas is one #VALUE!.
class Grid {
 public:
  /// Asks for readiness of a reference; when the evaluation is given up the values mean nothing.
  Grid(Context& context, const Operand& operand);

  int rows() const noexcept { return rows_; }
  int columns() const noexcept { return columns_; }
  std::int64_t size() const noexcept { return std::int64_t{rows_} * columns_; }
  bool is_vector() const noexcept { return rows_ == 1 || columns_ == 1; }
  /// The block of cells that is seen, or null.
  const Area* area() const noexcept { return area_; }

  ValueView at(int row, int column) const noexcept;
  /// As operations over arrays see it: one row or column serves for all; #N/A outside.
  ValueView broadcast(int row, int column) const noexcept;
  /// The n-th value row by row, from 0.
  ValueView nth(std::int64_t index) const noexcept {
    return at(static_cast<int>(index / columns_), static_cast<int>(index % columns_));
  }

  /// Calls visit(row, column, value) column by column until it gives false. Cells where nothing is
  /// stored are passed over, so whole columns cost what they hold.
  template <class Visit>
  void for_each(Visit&& visit) const;
  /// The same row by row.
  template <class Visit>
  void for_each_by_row(Visit&& visit) const;
  /// The number of rows from the top that can hold anything: the rest of a long block is blank.
  int stored_rows() const noexcept;
  int stored_columns() const noexcept;

 private:
  const Area* area_ = nullptr;
  const TextPool* texts_ = nullptr;
  const VariantArray* array_ = nullptr;
  ValueView scalar_;
  int rows_ = 1;
  int columns_ = 1;
};

template <class Visit>
void Grid::for_each(Visit&& visit) const {
  if (area_) {
    const CellPos origin = area_->rect.first;
    area_->sheet->cells.for_each(area_->rect, [&](CellPos at, const Cell& cell, FormulaId) {
      return static_cast<bool>(
          visit(at.row - origin.row, at.column - origin.column, view_of(cell, *texts_)));
    });
    return;
  }
  for (int column = 0; column < columns_; ++column)
    for (int row = 0; row < rows_; ++row)
      if (!visit(row, column, at(row, column))) return;
}

template <class Visit>
void Grid::for_each_by_row(Visit&& visit) const {
  if (area_ && columns_ == 1) return for_each(visit);
  if (area_) {
    const CellPos origin = area_->rect.first;
    bool go_on = true;
    area_->sheet->cells.for_each_by_row(area_->rect, [&](CellPos at, const Cell& cell, FormulaId) {
      if (go_on && !cell.is_empty())
        go_on = visit(at.row - origin.row, at.column - origin.column, view_of(cell, *texts_));
    });
    return;
  }
  for (int row = 0; row < rows_; ++row)
    for (int column = 0; column < columns_; ++column)
      if (!visit(row, column, at(row, column))) return;
}

}  // namespace qto::embedded
