#include <cmath>

#include "qto/hosts/embedded/evaluate/call.hpp"
#include "qto/hosts/embedded/evaluate/grid.hpp"
#include "qto/hosts/embedded/functions/families.hpp"

namespace qto::embedded::functions {

namespace {

using enum Parameter;

Operand fn_isblank(Call& call) { return call.value(0).is_empty() && call.given(0); }
Operand fn_iserror(Call& call) { return call.value(0).is_error(); }
Operand fn_isna(Call& call) {
  return call.value(0).is_error() && call.value(0).error() == ErrorValue::na;
}
Operand fn_iserr(Call& call) {
  return call.value(0).is_error() && call.value(0).error() != ErrorValue::na;
}
Operand fn_islogical(Call& call) { return call.value(0).is_boolean(); }
Operand fn_isnumber(Call& call) { return call.value(0).is_number(); }
Operand fn_istext(Call& call) { return call.value(0).is_text(); }
Operand fn_isnontext(Call& call) { return !call.value(0).is_text(); }
Operand fn_isref(Call& call) { return call[0].is_reference(); }

bool is_odd(double number) { return std::fmod(std::trunc(std::fabs(number)), 2) == 1; }
Operand fn_isodd(Call& call) { return is_odd(call.number(0)); }
Operand fn_iseven(Call& call) { return !is_odd(call.number(0)); }

Operand fn_isformula(Call& call) {
  const Area* area = call[0].area();
  if (!area) return ErrorValue::value;
  return area->sheet->formula_at(area->rect.first) != 0;
}

Operand fn_n(Call& call) {
  const Grid grid(call.context(), call[0]);
  const ValueView value = grid.at(0, 0);
  if (value.is_error()) return value.error();
  if (value.is_number()) return value.number();
  if (value.is_boolean()) return value.boolean() ? 1.0 : 0.0;
  return 0.0;
}

Operand fn_na(Call&) { return ErrorValue::na; }

Operand fn_type(Call& call) {
  const Operand& operand = call[0];
  if (operand.is_array()) return 64.0;
  if (operand.area() && !operand.area()->rect.is_cell() && call.array()) return 64.0;
  const ValueView value = call.context().single(operand);
  if (value.is_text()) return 2.0;
  if (value.is_boolean()) return 4.0;
  return value.is_error() ? 16.0 : 1.0;
}

Operand fn_error_type(Call& call) {
  const ValueView value = call.value(0);
  if (!value.is_error()) return ErrorValue::na;
  switch (value.error()) {
    case ErrorValue::null:
      return 1.0;
    case ErrorValue::div0:
      return 2.0;
    case ErrorValue::value:
      return 3.0;
    case ErrorValue::ref:
      return 4.0;
    case ErrorValue::name:
      return 5.0;
    case ErrorValue::num:
      return 6.0;
    case ErrorValue::na:
      return 7.0;
    case ErrorValue::getting_data:
      return 8.0;
    case ErrorValue::spill:
      return 9.0;
    case ErrorValue::calc:
      return 14.0;
  }
  return ErrorValue::na;
}

Operand fn_sheet(Call& call) {
  const Sheet* sheet = call.context().place().sheet;
  if (call.given(0)) {
    if (call[0].is_reference()) {
      sheet = call[0].areas().front().sheet;
    } else {
      const ValueView name = call.context().single(call[0]);
      if (name.is_error()) return name.error();
      if (!name.is_text()) return ErrorValue::na;
      sheet = call.context().book().find_sheet(name.text());
      if (!sheet) return ErrorValue::na;
    }
  }
  return static_cast<double>(sheet->book().index_of(*sheet) + 1);
}

Operand fn_sheets(Call& call) {
  if (!call.given(0)) return static_cast<double>(call.context().book().sheets().size());
  if (!call[0].is_reference()) return ErrorValue::na;
  return call[0].is_span() ? static_cast<double>(call[0].areas().size()) : 1.0;
}

// clang-format off
constexpr FunctionSpec information_table[] = {
    {"ERROR.TYPE", 1, 1, plain, {any}, fn_error_type, "error",
     "the number of an error, #N/A for anything else", "=ERROR.TYPE(1/0)", "2"},
    {"ISBLANK", 1, 1, plain, {any}, fn_isblank, "value", "true for an empty cell", "=ISBLANK(\"\")",
     "FALSE"},
    {"ISERR", 1, 1, plain, {any}, fn_iserr, "value", "true for an error other than #N/A",
     "=ISERR(1/0)", "TRUE"},
    {"ISERROR", 1, 1, plain, {any}, fn_iserror, "value", "true for any error", "=ISERROR(NA())",
     "TRUE"},
    {"ISEVEN", 1, 1, plain, {strict_number}, fn_iseven, "number",
     "true when the whole part is even", "=ISEVEN(2.9)", "TRUE"},
    {"ISFORMULA", 1, 1, plain, {reference}, fn_isformula, "reference",
     "true when the cell holds a formula", "=ISFORMULA(A1)", "FALSE"},
    {"ISLOGICAL", 1, 1, plain, {any}, fn_islogical, "value", "true for a Boolean",
     "=ISLOGICAL(TRUE)", "TRUE"},
    {"ISNA", 1, 1, plain, {any}, fn_isna, "value", "true for #N/A", "=ISNA(1/0)", "FALSE"},
    {"ISNONTEXT", 1, 1, plain, {any}, fn_isnontext, "value", "true for anything but a text",
     "=ISNONTEXT(1)", "TRUE"},
    {"ISNUMBER", 1, 1, plain, {any}, fn_isnumber, "value", "true for a number", "=ISNUMBER(\"1\")",
     "FALSE"},
    {"ISODD", 1, 1, plain, {strict_number}, fn_isodd, "number", "true when the whole part is odd",
     "=ISODD(-3.2)", "TRUE"},
    {"ISREF", 1, 1, takes_spans, {values}, fn_isref, "value", "true for a reference", "=ISREF(A1)",
     "TRUE"},
    {"ISTEXT", 1, 1, plain, {any}, fn_istext, "value", "true for a text", "=ISTEXT(\"a\")", "TRUE"},
    {"N", 1, 1, plain, {values}, fn_n, "value", "the value as a number, 0 for a text", "=N(TRUE)",
     "1"},
    {"NA", 0, 0, plain, {}, fn_na, "", "the error #N/A", "=ISNA(NA())", "TRUE"},
    {"SHEET", 0, 1, takes_spans, {values}, fn_sheet, "[value]",
     "the position of a sheet among the sheets", "=SHEET()", "1"},
    {"SHEETS", 0, 1, takes_spans, {values}, fn_sheets, "[reference]", "the number of sheets",
     "=SHEETS(A1)", "1"},
    {"TYPE", 1, 1, plain, {values}, fn_type, "value",
     "1 for a number, 2 a text, 4 a Boolean, 16 an error, 64 an array", "=TYPE({1,2})", "64"},
};
// clang-format on
static_assert(well_formed(information_table));

}  // namespace

std::span<const FunctionSpec> information_functions() { return information_table; }

}  // namespace qto::embedded::functions
