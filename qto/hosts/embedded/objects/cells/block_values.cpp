#include "qto/hosts/embedded/objects/cells/block_values.hpp"

#include "qto/hosts/embedded/objects/checks/raise.hpp"

namespace qto::embedded {

Variant values_of_block(const Book& book, const Sheet& sheet, const Rect& block) {
  constexpr std::int64_t most_values = std::int64_t{1} << 26;
  if (block.is_cell()) {
    const Cell* cell = sheet.cells.find(block.first);
    return cell ? book.value_of(*cell) : Variant{};
  }
  if (block.cells() > most_values) fail("The block has too many cells to read at once");
  const auto values = make_ref<VariantArray>(block.rows(), block.columns());
  sheet.cells.for_each(block, [&](CellPos pos, const Cell& cell, FormulaId) {
    values->at(pos.row - block.first.row + 1, pos.column - block.first.column + 1) =
        book.value_of(cell);
  });
  return Variant(Ref<const VariantArray>(values));
}

}  // namespace qto::embedded
