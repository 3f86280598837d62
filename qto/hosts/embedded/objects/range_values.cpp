#include "qto/hosts/embedded/objects/cell_formula.hpp"
#include "qto/hosts/embedded/objects/cells/cell_values.hpp"
#include "qto/hosts/embedded/objects/checks/raise.hpp"
#include "qto/hosts/embedded/objects/range_object.hpp"

namespace qto::embedded {
namespace {

/// True when every cell of the block shows a formula.
bool all_formulas(const Sheet& sheet, const Rect& block) {
  for (const auto& large : sheet.large_blocks())
    if (large.block.intersect(block) == block) return true;
  if (block.cells() > sheet.cells.formula_count()) return false;
  std::int64_t formulas = 0;
  sheet.cells.for_each(block,
                       [&](CellPos, const Cell&, FormulaId id) { formulas += id != 0 ? 1 : 0; });
  return formulas == block.cells();
}

}  // namespace

CellPos RangeObject::the_cell() const {
  if (!block_.is_cell() || more_)
    fail("Of one cell only, not of " + Address(false, false, host::xlA1, false));
  return block_.first;
}

bool RangeObject::HasFormula() const {
  const Sheet& sheet = sheet_->sheet();
  if (block_.is_cell() && !more_) return sheet.formula_at(block_.first) != 0;
  for (const Rect& block : blocks())
    if (!all_formulas(sheet, block)) return false;
  return true;
}

std::string RangeObject::Formula() const {
  std::string out;
  append_formula_text(out, sheet_->open(), sheet_->sheet(), the_cell(),
                      &CompiledFormula::append_formula);
  return out;
}

std::string RangeObject::FormulaLocal() const {
  std::string out;
  append_formula_text(out, sheet_->open(), sheet_->sheet(), the_cell(),
                      &CompiledFormula::append_local);
  return out;
}

std::string RangeObject::FormulaR1C1Local() const {
  std::string out;
  append_formula_text(out, sheet_->open(), sheet_->sheet(), the_cell(),
                      &CompiledFormula::append_r1c1);
  return out;
}

Variant RangeObject::value() const {
  if (block_.is_cell()) return sheet_->cell_value(block_.first);
  OpenBook& book = sheet_->open();
  book.application().ensure_calculated();
  return values_of_block(book.book(), sheet_->sheet(), block_);
}

std::string RangeObject::Text() const {
  OpenBook& book = sheet_->open();
  if (!block_.is_cell() || more_) return {};
  book.application().ensure_calculated();
  return shown_text(book.book(), sheet_->sheet(), block_.first);
}

std::string RangeObject::NumberFormat() const {
  const OpenBook& book = sheet_->open();
  const Cell* cell = sheet_->sheet().cells.find(block_.first);
  return book.book().styles.at(cell ? cell->style() : 0).format_code;
}

}  // namespace qto::embedded
