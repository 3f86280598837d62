#include "qto/hosts/embedded/objects/worksheet_object.hpp"

#include "qto/automation/text.hpp"
#include "qto/hosts/embedded/objects/cell_formula.hpp"
#include "qto/hosts/embedded/objects/chart_objects.hpp"
#include "qto/hosts/embedded/objects/checks/raise.hpp"
#include "qto/hosts/embedded/objects/evaluation.hpp"
#include "qto/hosts/embedded/objects/name_object.hpp"
#include "qto/hosts/embedded/objects/pivot_object.hpp"
#include "qto/hosts/embedded/objects/range_object.hpp"
#include "qto/hosts/embedded/objects/sheet_operations.hpp"

namespace qto::embedded {

WorksheetObject::WorksheetObject(Ref<WorkbookObject> workbook, SheetSlot& slot)
    : workbook_(std::move(workbook)), slot_(&slot) {}

WorksheetObject::~WorksheetObject() { slot_->handle = nullptr; }

embedded::Sheet& WorksheetObject::sheet() const {
  if (!slot_->sheet) fail_gone();
  return *slot_->sheet;
}

OpenBook& WorksheetObject::open() const {
  sheet();
  return *slot_->book;
}

Ref<host::Application> WorksheetObject::application() const {
  sheet();
  return workbook_->owner();
}

Ref<host::HostObject> WorksheetObject::Parent() const { return Workbook(); }

Ref<host::Workbook> WorksheetObject::Workbook() const {
  sheet();
  return workbook_;
}

std::string WorksheetObject::Name() const { return sheet().name; }

int WorksheetObject::Index() const { return open().book().index_of(sheet()) + 1; }

std::int32_t WorksheetObject::Visible() const {
  return static_cast<std::int32_t>(sheet().visibility);
}

void WorksheetObject::put_Visible(std::int32_t visibility) {
  put_visibility(open(), sheet(), visibility);
}

void WorksheetObject::Unprotect(std::string_view password) { unprotect(sheet(), password); }

void WorksheetObject::Select() { select_sheet(open(), sheet()); }

void WorksheetObject::Activate() { activate_sheet(open(), sheet()); }

bool WorksheetObject::find_block(std::string_view address, Rect& block) const {
  if (!slot_->sheet) return false;
  const auto found = parse_range_text(address);
  if (found) block = *found;
  return found.has_value();
}

Ref<host::Range> WorksheetObject::find_range(std::string_view address) const {
  Rect block;
  return find_block(address, block) ? Block(block) : nullptr;
}

Ref<host::Range> WorksheetObject::Range(std::string_view address) const {
  sheet();
  if (auto found = find_range(address)) return found;
  fail("No range " + std::string(address) + " on " + Name());
}

Ref<host::Range> WorksheetObject::Block(const Rect& block) const {
  sheet();
  if (!block.first.on_grid() || !block.last.on_grid()) fail("The block lies outside of the grid");
  return make_ref<RangeObject>(Ref<WorksheetObject>(const_cast<WorksheetObject*>(this)), block);
}

Ref<host::Range> WorksheetObject::Cells(std::int32_t row, std::int32_t column) const {
  return Block(Rect::cell({row, column}));
}

Ref<host::Range> WorksheetObject::UsedRange() const { return Block(sheet().cells.used()); }

Ref<host::DefinedName> WorksheetObject::find_name(std::string_view name) const {
  if (!slot_->sheet) return nullptr;
  const DefinedName* found = slot_->book->book().names.find(name, slot_->sheet);
  return found ? name_object(*slot_->book, *found) : nullptr;
}

Ref<host::DefinedName> WorksheetObject::Names(std::string_view name) const {
  sheet();
  if (auto found = find_name(name)) return found;
  fail("No name " + std::string(name) + " on " + Name());
}

Ref<host::DefinedName> WorksheetObject::AddName(std::string_view name, std::string_view refers_to) {
  return define_name(open(), &sheet(), name, refers_to);
}

Ref<host::Range> WorksheetObject::CircularReference() const {
  OpenBook& book = open();
  const auto cell = book.circles.of(book.book()).first_on(sheet());
  return cell ? Cells(cell->row, cell->column) : nullptr;
}

Variant WorksheetObject::Evaluate(std::string_view text) const {
  OpenBook& book = open();
  const bool active = &book.active_sheet() == slot_->sheet;
  const CellPos at = active ? book.active_cell() : CellPos{};
  return book.application().text_evaluator().evaluate(book, *slot_->sheet, at, text);
}

/// The pieces of an array formula run over all elements, those of any other meet its cell.
Variant WorksheetObject::evaluate_piece(CellPos cell, std::string_view piece,
                                        EvaluationMode ordinary) const {
  OpenBook& book = open();
  const FormulaId id = sheet().cells.formula(cell);
  const bool array = id != 0 && book.book().formula(id).kind == FormulaKind::array;
  return book.application().text_evaluator().evaluate(book, sheet(), cell, piece,
                                                      array ? EvaluationMode::reference : ordinary);
}

Variant WorksheetObject::value_in_cell(CellPos cell, std::string_view piece) const {
  const Variant result = evaluate_piece(cell, piece, EvaluationMode::cell_value);
  const auto range = ref_cast<host::Range>(result.object());
  return range ? range->value() : result;
}

Variant WorksheetObject::elements_in_cell(CellPos cell, std::string_view piece,
                                          bool over_ranges) const {
  const Variant result = evaluate_piece(
      cell, piece, over_ranges ? EvaluationMode::reference : EvaluationMode::cell_reference);
  const auto range = ref_cast<host::Range>(result.object());
  if (!range) return result;
  return over_ranges || range->CellsCount() == 1 ? range->value() : value_in_cell(cell, piece);
}

Ref<host::Range> WorksheetObject::range_in_cell(CellPos cell, std::string_view piece) const {
  return ref_cast<host::Range>(
      evaluate_piece(cell, piece, EvaluationMode::cell_reference).object());
}

std::vector<Ref<host::PivotTable>> WorksheetObject::PivotTables() const {
  std::vector<Ref<host::PivotTable>> tables;
  const int count = static_cast<int>(sheet().pivots.size());
  for (int i = 0; i < count; ++i)
    tables.push_back(
        make_ref<PivotObject>(Ref<WorksheetObject>(const_cast<WorksheetObject*>(this)), i));
  return tables;
}

std::vector<Ref<host::ChartObject>> WorksheetObject::ChartObjects() const {
  std::vector<Ref<host::ChartObject>> charts;
  const int count = static_cast<int>(sheet().charts.size());
  for (int i = 0; i < count; ++i)
    charts.push_back(make_ref<ChartFrameObject>(ChartPlace{workbook_, slot_, i}));
  return charts;
}

Ref<host::ChartObject> WorksheetObject::ChartObjects(std::string_view name) const {
  for (auto& chart : ChartObjects())
    if (text::equal_fold(chart->Name(), name)) return std::move(chart);
  no_member("No chart object " + std::string(name) + " on " + Name());
}

void WorksheetObject::append_cell_formula(CellPos pos, std::string& out) const {
  append_formula_text(out, open(), sheet(), pos, &CompiledFormula::append_formula);
}

Variant WorksheetObject::cell_value(CellPos pos) const {
  OpenBook& book = open();
  book.application().ensure_calculated();
  const Cell* cell = slot_->sheet->cells.find(pos);
  return cell ? book.book().value_of(*cell) : Variant{};
}

host::FormulaPattern WorksheetObject::formula_pattern(CellPos pos) const {
  const FormulaId id = sheet().formula_at(pos);
  if (id == 0) return {};
  const FormulaRecord& record = open().book().formula(id);
  if (record.kind != FormulaKind::normal) return {};
  const auto references = record.compiled->moving_references();
  return references ? host::FormulaPattern{id, *references} : host::FormulaPattern{};
}

bool WorksheetObject::cell_has_formula(CellPos pos) const { return sheet().formula_at(pos) != 0; }

}  // namespace qto::embedded
