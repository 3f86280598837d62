#include "qto/hosts/embedded/book/sheet.hpp"

namespace qto::embedded {
namespace {
constexpr std::int64_t stored_per_cell = 65'536;
}

FormulaId Sheet::formula_at(CellPos pos) const noexcept {
  if (const FormulaId own = cells.formula(pos)) return own;
  for (const FormulaBlock& large : large_blocks_)
    if (large.block.contains(pos)) return large.id;
  return 0;
}

void Sheet::set_block_formula(const Rect& block, FormulaId id) {
  cells.set_formula(block.first, id);
  if (block.cells() > stored_per_cell) {
    large_blocks_.push_back({block, id});
    return;
  }
  for (std::int32_t row = block.first.row; row <= block.last.row; ++row)
    for (std::int32_t column = block.first.column; column <= block.last.column; ++column)
      cells.set_formula({row, column}, id);
}

}  // namespace qto::embedded
