#include "qto/hosts/embedded/recalc/store_result.hpp"

#include <bit>
#include <vector>

namespace qto::embedded {
namespace {

/// Beyond this many cells only those that are stored anyway are filled.
constexpr std::int64_t most_new_cells = std::int64_t{1} << 22;

bool same_value(const Cell& a, const Cell& b) noexcept {
  if (a.type() != b.type()) return false;
  switch (a.type()) {
    case CellType::empty:
      return true;
    case CellType::number:
      return std::bit_cast<std::uint64_t>(a.number()) == std::bit_cast<std::uint64_t>(b.number());
    case CellType::text:
      return a.text() == b.text();
    case CellType::boolean:
      return a.boolean() == b.boolean();
    case CellType::error:
      return a.error() == b.error();
  }
  return false;
}

bool store_one(Sheet& sheet, CellPos pos, const Variant& value) {
  Cell& cell = sheet.cells.touch(pos);
  const Cell before = cell;
  sheet.book().store(cell, value);
  return !same_value(before, cell);
}

/// The value that the array gives to a cell, rows and columns counted from 0.
const Variant& element(const VariantArray& array, std::int32_t row, std::int32_t column) {
  static const Variant beyond(ErrorValue::na);
  if (array.rows() == 1) row = 0;
  if (array.columns() == 1) column = 0;
  if (row >= array.rows() || column >= array.columns()) return beyond;
  return array.at(row + 1, column + 1);
}

}  // namespace

bool store_result(Sheet& sheet, const Rect& cells, const Variant& result) {
  const auto value_at = [&](CellPos pos) -> const Variant& {
    if (!result.is_array()) return result;
    return element(result.array(), pos.row - cells.first.row, pos.column - cells.first.column);
  };
  if (cells.is_cell()) return store_one(sheet, cells.first, value_at(cells.first));
  bool changed = false;
  if (cells.cells() > most_new_cells) {
    std::vector<CellPos> stored;
    sheet.cells.for_each(cells,
                         [&](CellPos pos, const Cell&, FormulaId) { stored.push_back(pos); });
    for (const CellPos pos : stored) changed |= store_one(sheet, pos, value_at(pos));
    return changed;
  }
  for (std::int32_t column = cells.first.column; column <= cells.last.column; ++column)
    for (std::int32_t row = cells.first.row; row <= cells.last.row; ++row)
      changed |= store_one(sheet, {row, column}, value_at({row, column}));
  return changed;
}

}  // namespace qto::embedded
