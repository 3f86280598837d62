#pragma once

#include <optional>
#include <vector>

#include "qto/automation/address.hpp"
#include "qto/hosts/embedded/book/formula_record.hpp"

namespace qto::embedded {

/// A what-if table: each of its cells shows what a formula gives when the input cells hold the
/// values at the head of the cell's row and column. All cells are on the table's sheet.
struct DataTable {
  Rect block;
  std::optional<CellPos> row_input;     ///< takes the values above the block
  std::optional<CellPos> column_input;  ///< takes the values left of the block

  /// The cell with the formula that a cell of the block shows; off the grid for a block at its
  /// edge.
  CellPos formula_cell(CellPos at) const noexcept;
  CellPos row_value(CellPos at) const noexcept { return {block.first.row - 1, at.column}; }
  CellPos column_value(CellPos at) const noexcept { return {at.row, block.first.column - 1}; }
  /// The cells that the value of a cell rests on: the formula, the inputs, the values that they
  /// take.
  std::vector<CellPos> sources(CellPos at) const;
};

/// Nothing for any other formula, and for a table whose input cells are gone.
std::optional<DataTable> data_table(const FormulaRecord& record);

}  // namespace qto::embedded
