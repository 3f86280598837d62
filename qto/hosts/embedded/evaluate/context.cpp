#include "qto/hosts/embedded/evaluate/context.hpp"

#include <cmath>

#include "qto/hosts/embedded/evaluate/grid.hpp"
#include "qto/hosts/embedded/formats/serial_date.hpp"

namespace qto::embedded {

namespace {

/// Days between the starts of the two date systems.
constexpr double days_to_1904 = 1462;

/// The cell of a one-column or one-row block that lies in the formula's row or column.
std::optional<CellPos> meeting_cell(const Rect& rect, CellPos at) {
  if (rect.is_cell()) return rect.first;
  if (rect.columns() == 1 && at.row >= rect.first.row && at.row <= rect.last.row)
    return CellPos{at.row, rect.first.column};
  if (rect.rows() == 1 && at.column >= rect.first.column && at.column <= rect.last.column)
    return CellPos{rect.first.row, at.column};
  return std::nullopt;
}

}  // namespace

bool holds_no_formulas(const Sheet& sheet) noexcept {
  return sheet.cells.formula_count() == 0 && sheet.large_blocks().empty();
}

void Context::begin(const FormulaPlace& place) {
  place_ = place;
  gave_up_ = false;
  const double now = environment_.now();
  const int day = now >= 0 && now < 2958466 ? static_cast<int>(now) : 0;
  if (day == current_day_) return;
  current_day_ = day;
  const auto date = formats::civil_from_serial(day, false);
  current_year_ = date ? date->year : 1900;
}

double Context::now() const noexcept {
  const double now = environment_.now();
  return place_.book->date1904 ? now - days_to_1904 : now;
}

bool Context::ready(const Area& area) {
  if (gave_up_) return false;
  if (holds_no_formulas(*area.sheet) || environment_.ready(area)) return true;
  gave_up_ = true;
  return false;
}

ValueView Context::single(const Operand& operand) {
  if (const Variant* value = operand.value()) return view_of(*value);
  if (operand.is_missing()) return {};
  const Area* area = operand.area();
  if (!area) return ErrorValue::value;
  const auto pos = meeting_cell(area->rect, at());
  if (!pos) return ErrorValue::value;
  if (!ready({area->sheet, Rect::cell(*pos)})) return ErrorValue::na;
  const Cell* cell = area->sheet->cells.find(*pos);
  return cell ? view_of(*cell, area->sheet->book().texts) : ValueView();
}

Operand Context::intersect_implicitly(const Operand& operand) {
  if (!operand.is_reference()) return single(operand).to_variant();
  const Area* area = operand.area();
  if (!area) return ErrorValue::value;
  const auto pos = meeting_cell(area->rect, at());
  if (!pos) return ErrorValue::value;
  return Area{area->sheet, Rect::cell(*pos)};
}

Operand Context::dereference(const Operand& operand) {
  if (!operand.is_reference()) return operand;
  const Area* area = operand.area();
  if (!area) return ErrorValue::value;
  if (area->rect.is_cell()) return single(operand).to_variant();
  if (area->rect.cells() > max_array_elements) return ErrorValue::num;
  const Grid grid(*this, operand);
  auto array = make_ref<VariantArray>(grid.rows(), grid.columns());
  grid.for_each([&](int row, int column, const ValueView& value) {
    array->at(row + 1, column + 1) = value.to_variant();
    return true;
  });
  return Ref<const VariantArray>(array);
}

Area Context::spill_of(const Area& cell) const {
  const FormulaId id = cell.sheet->formula_at(cell.rect.first);
  if (id == 0) return cell;
  const FormulaRecord& record = cell.sheet->book().formula(id);
  if (record.kind != FormulaKind::array) return cell;
  return {cell.sheet, record.block};
}

}  // namespace qto::embedded
