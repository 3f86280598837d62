#include <cmath>

#include "qto/automation/text.hpp"
#include "qto/hosts/embedded/evaluate/build_array.hpp"
#include "qto/hosts/embedded/evaluate/call.hpp"
#include "qto/hosts/embedded/formulas/compiled_formula.hpp"
#include "qto/hosts/embedded/functions/blocks.hpp"
#include "qto/hosts/embedded/functions/families.hpp"
#include "qto/hosts/embedded/functions/r1c1.hpp"

namespace qto::embedded::functions {

namespace {

using enum Parameter;

Operand fn_row(Call& call) {
  if (!call.given(0)) return static_cast<double>(call.context().at().row);
  const Area* area = call[0].area();
  if (!area) return ErrorValue::value;
  const int first = area->rect.first.row;
  if (!call.array() || area->rect.rows() == 1) return static_cast<double>(first);
  return build_array(call.context(), area->rect.rows(), 1,
                     [&](int row, int) { return static_cast<double>(first + row); });
}

Operand fn_column(Call& call) {
  if (!call.given(0)) return static_cast<double>(call.context().at().column);
  const Area* area = call[0].area();
  if (!area) return ErrorValue::value;
  const int first = area->rect.first.column;
  if (!call.array() || area->rect.columns() == 1) return static_cast<double>(first);
  return build_array(call.context(), 1, area->rect.columns(),
                     [&](int, int column) { return static_cast<double>(first + column); });
}

std::optional<ErrorValue> shape_error(const Operand& operand) {
  if (operand.error()) return *operand.error();
  if (operand.is_reference()) {
    if (operand.area()) return std::nullopt;
    return ErrorValue::ref;
  }
  // A single value is a block of one.
  return operand.is_missing() ? std::optional(ErrorValue::value) : std::nullopt;
}

Operand fn_rows(Call& call) {
  if (const auto error = shape_error(call[0])) return *error;
  return static_cast<double>(shape_of(call[0]).rows);
}

Operand fn_columns(Call& call) {
  if (const auto error = shape_error(call[0])) return *error;
  return static_cast<double>(shape_of(call[0]).columns);
}

Operand fn_areas(Call& call) { return static_cast<double>(call[0].areas().size()); }

/// Appends what stands before "!": a sheet, or "[book]sheet", in apostrophes where it needs them.
void append_qualifier(std::string& out, std::string_view text) {
  std::string plain(text);
  std::erase_if(plain, [](char c) { return c == '[' || c == ']'; });
  if (plain.empty()) return;
  if (!needs_quotes(plain))
    out += text;
  else
    append_sheet_name(out, text);
}

Operand fn_address(Call& call) {
  const double row = std::trunc(call.number(0));
  const double column = std::trunc(call.number(1));
  const double kind = call.given(2) ? std::trunc(call.number(2)) : 1;
  const bool a1 = !call.given(3) || call.logical(3);
  const bool on_grid = row >= 1 && row <= max_rows && column >= 1 && column <= max_columns;
  if (!on_grid && a1) return ErrorValue::value;
  if (kind < 1 || kind > 4) return ErrorValue::value;
  const bool row_absolute = kind <= 2;
  const bool column_absolute = kind == 1 || kind == 3;
  std::string result;
  if (call.count() > 4) {
    append_qualifier(result, call.text(4));
    result += '!';
  }
  if (a1) {
    append_cell(result, {static_cast<int>(row), static_cast<int>(column)}, row_absolute,
                column_absolute);
    return result;
  }
  if (std::fabs(row) > max_rows || std::fabs(column) > max_columns) return ErrorValue::value;
  const auto axis = [&](char letter, double number, bool absolute) {
    const std::string digits = std::to_string(static_cast<int>(number));
    result += letter;
    if (absolute)
      result += digits;
    else if (number != 0)
      result += '[' + digits + ']';
  };
  axis('R', row, row_absolute);
  axis('C', column, column_absolute);
  return result;
}

Operand fn_offset(Call& call) {
  const Area* base = call[0].area();
  if (!base) return ErrorValue::value;
  const double height = call.given(3) ? std::trunc(call.number(3)) : base->rect.rows();
  const double width = call.given(4) ? std::trunc(call.number(4)) : base->rect.columns();
  if (height == 0 || width == 0) return ErrorValue::ref;
  double top = base->rect.first.row + std::trunc(call.number(1));
  double left = base->rect.first.column + std::trunc(call.number(2));
  if (height < 0) top += height + 1;
  if (width < 0) left += width + 1;
  const double bottom = top + std::fabs(height) - 1;
  const double right = left + std::fabs(width) - 1;
  const bool inside = top >= 1 && left >= 1 && bottom <= max_rows && right <= max_columns;
  if (!inside) return ErrorValue::ref;
  return Area{base->sheet,
              {{static_cast<int>(top), static_cast<int>(left)},
               {static_cast<int>(bottom), static_cast<int>(right)}}};
}

Operand fn_indirect(Call& call) {
  Context& context = call.context();
  const std::string_view text = text::trim(call.text(0));
  if (text.empty()) return ErrorValue::ref;
  if (!call.given(1) || call.logical(1)) return context.reference_of(text);
  const auto converted = a1_of_r1c1(text, context.at());
  // A name is the same in both notations.
  return context.reference_of(converted ? std::string_view(*converted) : text);
}

Operand fn_hyperlink(Call& call) {
  if (!call.given(1)) return call.text(0);
  return call.value(1).to_variant();
}

Operand fn_transpose(Call& call) {
  if (call[0].error()) return *call[0].error();
  const Grid grid(call.context(), call[0]);
  return build_array(call.context(), grid.columns(), grid.rows(), [&](int row, int column) {
    const ValueView value = grid.at(column, row);
    return value.is_empty() ? Variant(0.0) : value.to_variant();
  });
}

Operand fn_formulatext(Call& call) {
  const Area* area = call[0].area();
  if (!area) return ErrorValue::value;
  const Sheet& sheet = *area->sheet;
  const FormulaId id = sheet.formula_at(area->rect.first);
  if (id == 0) return ErrorValue::na;
  const FormulaRecord& record = sheet.book().formula(id);
  RenderContext render;
  render.book = &sheet.book();
  render.sheet = &sheet;
  render.at = area->rect.first;
  if (record.kind != FormulaKind::normal) render.at = record.block.first;
  render.find_open = [](const Book& book, std::uint32_t index, const void* data) -> const Book* {
    const auto& environment = *static_cast<const Environment*>(data);
    return environment.find_open_book(book.externals[index].name);
  };
  render.data = &call.context().environment();
  std::string text;
  record.compiled->append_local(text, render);
  return text;
}

// clang-format off
constexpr FunctionSpec reference_table[] = {
    {"ADDRESS", 2, 5, plain, {number, number, number, logical, text}, fn_address,
     "row, column, [kind], [a1], [sheet]", "the address of a cell as text",
     "=ADDRESS(2,3,4,TRUE,\"My sheet\")", "'My sheet'!C2"},
    {"AREAS", 1, 1, plain, {reference}, fn_areas, "reference", "the number of areas",
     "=AREAS((A1:B2,C3))", "2"},
    {"COLUMN", 0, 1, plain, {reference}, fn_column, "[reference]", "the number of the column",
     "=COLUMN(C1)", "3"},
    {"COLUMNS", 1, 1, plain, {Parameter::array}, fn_columns, "array", "the number of columns",
     "=COLUMNS(A1:C2)", "3"},
    {"FORMULATEXT", 1, 1, plain, {reference}, fn_formulatext, "reference",
     "the formula of a cell as text", "=ISNA(FORMULATEXT(B9))", "TRUE"},
    {"HYPERLINK", 1, 2, plain, {text, value}, fn_hyperlink, "link, [shown]", "what a link shows",
     "=HYPERLINK(\"#A1\",\"top\")", "top"},
    {"INDIRECT", 1, 2, gives_reference | changes_always, {text, logical}, fn_indirect, "text, [a1]",
     "the reference that a text denotes", "=ROW(INDIRECT(\"B\"&7))", "7"},
    {"OFFSET", 3, 5, gives_reference | changes_always, {reference, number, number, number, number},
     fn_offset, "reference, rows, columns, [height], [width]", "a block some rows and columns away",
     "=ROWS(OFFSET(A1,2,0,5))", "5"},
    {"ROW", 0, 1, plain, {reference}, fn_row, "[reference]", "the number of the row", "=ROW(C7)",
     "7"},
    {"ROWS", 1, 1, plain, {Parameter::array}, fn_rows, "array", "the number of rows",
     "=ROWS(A1:C2)", "2"},
    {"TRANSPOSE", 1, 1, plain, {Parameter::array}, fn_transpose, "array",
     "rows and columns exchanged", "=INDEX(TRANSPOSE({1,2;3,4}),1,2)", "3"},
};
// clang-format on
static_assert(well_formed(reference_table));

}  // namespace

std::span<const FunctionSpec> reference_functions() { return reference_table; }

}  // namespace qto::embedded::functions
