#include "qto/hosts/embedded/objects/checks/edit_guard.hpp"

#include <algorithm>
#include <string>

#include "qto/hosts/embedded/formulas/compiled_formula.hpp"
#include "qto/hosts/embedded/objects/checks/raise.hpp"

namespace qto::embedded {
namespace {

void check_unlocked(const Book& book, const Sheet& sheet, const std::vector<Rect>& blocks) {
  if (!sheet.protection.enabled) return;
  for (const Rect& block : blocks) {
    std::int64_t unlocked = 0;
    sheet.cells.for_each(block, [&](CellPos, const Cell& cell, FormulaId) {
      unlocked += book.styles.at(cell.style()).locked ? 0 : 1;
    });
    // Cells that were never stored have the default style, which is locked.
    if (unlocked != block.cells()) fail(address_of(block) + " on " + sheet.name + " is protected");
  }
}

bool covered(const Rect& array, const std::vector<Rect>& blocks) {
  return std::any_of(blocks.begin(), blocks.end(),
                     [&](const Rect& block) { return block.intersect(array) == array; });
}

void check_arrays(const Book& book, const Sheet& sheet, const std::vector<Rect>& blocks) {
  FormulaId last = 0;
  for (const Rect& block : blocks) {
    sheet.cells.for_each(block, [&](CellPos, const Cell&, FormulaId id) {
      if (id == 0 || id == last) return;
      last = id;
      const FormulaRecord& record = book.formula(id);
      if (record.kind != FormulaKind::normal && !covered(record.block, blocks))
        fail("Part of the array " + address_of(record.block) + " cannot be changed");
    });
    for (const auto& large : sheet.large_blocks())
      if (large.block.intersect(block))
        fail("The array formula " + address_of(large.block) + " is too large to be changed");
  }
}

}  // namespace

std::int64_t cells_in(const std::vector<Rect>& blocks) noexcept {
  std::int64_t count = 0;
  for (const Rect& block : blocks) count += block.cells();
  return count;
}

void check_size(const std::vector<Rect>& blocks) {
  constexpr std::int64_t most_cells = std::int64_t{1} << 22;
  if (cells_in(blocks) > most_cells) fail("Too many cells for one edit");
}

void check_editable(const Book& book, const Sheet& sheet, const std::vector<Rect>& blocks,
                    bool stores_every_cell) {
  if (stores_every_cell) check_size(blocks);
  check_unlocked(book, sheet, blocks);
  check_arrays(book, sheet, blocks);
}

void check_formula(std::string_view body, CellPos at) {
  const auto compiled = CompiledFormula::compile(body, at);
  if (compiled->broken())
    fail("=" + std::string(body) + " is not a formula: " + compiled->why_broken());
}

}  // namespace qto::embedded
