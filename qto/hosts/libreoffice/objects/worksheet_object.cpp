#include "qto/hosts/libreoffice/objects/worksheet_object.hpp"

#include <com/sun/star/util/CellProtection.hpp>
#include <com/sun/star/util/XProtectable.hpp>

#include "qto/automation/text.hpp"
#include "qto/hosts/libreoffice/objects/chart_objects.hpp"
#include "qto/hosts/libreoffice/objects/constant_text.hpp"
#include "qto/hosts/libreoffice/objects/name_object.hpp"
#include "qto/hosts/libreoffice/objects/pivot_object.hpp"
#include "qto/hosts/libreoffice/objects/range_object.hpp"
#include "qto/hosts/libreoffice/objects/sheet_operations.hpp"
#include "qto/hosts/libreoffice/office/fail.hpp"

namespace qto::libreoffice {
namespace {

/// The cell of the block in the formula's row or column; nothing when they do not meet.
std::optional<Rect> meet_implicitly(const Rect& block, CellPos at) {
  if (block.is_cell()) return block;
  if (block.columns() == 1 && at.row >= block.first.row && at.row <= block.last.row)
    return Rect::cell({at.row, block.first.column});
  if (block.rows() == 1 && at.column >= block.first.column && at.column <= block.last.column)
    return Rect::cell({block.first.row, at.column});
  return std::nullopt;
}

}  // namespace

SheetSlot& WorksheetObject::slot() const {
  if (!slot_->document) fail_gone();
  return *slot_;
}

Ref<host::Application> WorksheetObject::application() const {
  slot();
  return workbook_->Application();
}

Ref<host::Workbook> WorksheetObject::Workbook() const {
  slot();
  return workbook_;
}

void WorksheetObject::put_Visible(std::int32_t visibility) {
  put_visibility(owner(), slot(), visibility);
}

void WorksheetObject::Unprotect(std::string_view password) { unprotect(slot(), password); }
void WorksheetObject::Select() { select_sheet(owner(), slot()); }
void WorksheetObject::Activate() { activate_sheet(owner(), slot()); }

bool WorksheetObject::find_block(std::string_view address, Rect& block) const {
  if (!slot_->document) return false;
  const auto found = parse_range_text(address);
  if (found) block = *found;
  return found.has_value();
}

Ref<host::Range> WorksheetObject::find_range(std::string_view address) const {
  Rect block;
  return find_block(address, block) ? Block(block) : nullptr;
}

Ref<host::Range> WorksheetObject::Range(std::string_view address) const {
  slot();
  if (auto found = find_range(address)) return found;
  fail("No range " + std::string(address) + " on " + Name(), "Worksheet.Range");
}

Ref<host::Range> WorksheetObject::Block(const Rect& block) const {
  slot();
  if (!block.first.on_grid() || !block.last.on_grid()) fail("The block lies outside of the grid");
  return make_ref<RangeObject>(self(), block);
}

Ref<host::Range> WorksheetObject::Cells(std::int32_t row, std::int32_t column) const {
  return Block(Rect::cell({row, column}));
}

Ref<host::Range> WorksheetObject::UsedRange() const { return Block(slot().cells().used()); }

Ref<host::DefinedName> WorksheetObject::find_name(std::string_view name) const {
  if (!slot_->document) return nullptr;
  const NameEntry* entry = document().names().find(name, slot_.get());
  return entry ? name_object(owner(), workbook_->book(), *entry) : nullptr;
}

Ref<host::DefinedName> WorksheetObject::Names(std::string_view name) const {
  slot();
  if (auto found = find_name(name)) return found;
  fail("No name " + std::string(name) + " on " + Name(), "Worksheet.Names");
}

Ref<host::DefinedName> WorksheetObject::AddName(std::string_view name, std::string_view refers_to) {
  return define_name(owner(), workbook_->book(), &slot(), name, refers_to);
}

Ref<host::Range> WorksheetObject::range_of(const Evaluated& result) const {
  if (!result.sheet) return nullptr;
  return make_ref<RangeObject>(ref_cast<WorksheetObject>(owner().handle(*result.sheet)),
                               result.blocks);
}

Variant WorksheetObject::Evaluate(std::string_view text) const {
  const CellPos at = document().active == slot_.get() ? slot_->selection.first : CellPos{};
  const Evaluated result = evaluate(document(), slot(), at, text, EvaluationMode::array);
  return result.sheet ? Variant(range_of(result)) : result.value;
}

bool WorksheetObject::in_array(CellPos cell) const {
  const CellRecord* record = slot().cells().find(cell);
  return record && record->in_array();
}

Evaluated WorksheetObject::evaluate_piece(CellPos cell, std::string_view piece) const {
  return evaluate(document(), slot(), cell, piece,
                  in_array(cell) ? EvaluationMode::array : EvaluationMode::cell);
}

Variant WorksheetObject::value_in_cell(CellPos cell, std::string_view piece) const {
  const Evaluated result = evaluate_piece(cell, piece);
  if (!result.sheet) return result.value;
  if (in_array(cell) || result.blocks.size() > 1) return range_of(result)->value();
  const auto met = meet_implicitly(result.blocks.front(), cell);
  if (!met) return ErrorValue::value;
  return result.sheet->document->value(*result.sheet, met->first);
}

Ref<host::Range> WorksheetObject::range_in_cell(CellPos cell, std::string_view piece) const {
  return range_of(evaluate_piece(cell, piece));
}

Ref<host::Range> WorksheetObject::CircularReference() const {
  const auto& cells = document().circular_cells(slot());
  return cells.empty() ? nullptr : Cells(cells.front().row, cells.front().column);
}

std::vector<Ref<host::PivotTable>> WorksheetObject::PivotTables() const {
  return pivot_tables(self());
}

std::vector<Ref<host::ChartObject>> WorksheetObject::ChartObjects() const {
  return chart_objects(workbook_, slot());
}

Ref<host::ChartObject> WorksheetObject::ChartObjects(std::string_view name) const {
  for (auto& chart : ChartObjects())
    if (text::equal_fold(chart->Name(), name)) return std::move(chart);
  no_member("No chart object " + std::string(name) + " on " + Name(), "Worksheet.ChartObjects");
}

void WorksheetObject::append_cell_formula(CellPos pos, std::string& out) const {
  const CellRecord* cell = slot().cells().find(pos);
  if (!cell) return;
  if (cell->formula.isEmpty()) {
    append_constant(out, document().value(slot(), pos), document().date_origin());
    return;
  }
  check_formula_shown(slot(), pos);
  const bool array = cell->in_array();
  const OUString body =
      array ? cell->formula.copy(2, cell->formula.getLength() - 3) : cell->formula.copy(1);
  out.push_back('=');
  out.append(document().engine_text(body, slot(), pos));
}

Variant WorksheetObject::cell_value(CellPos pos) const { return document().value(slot(), pos); }

bool WorksheetObject::cell_has_formula(CellPos pos) const {
  const CellRecord* cell = slot().cells().find(pos);
  return cell && !cell->formula.isEmpty();
}

}  // namespace qto::libreoffice
