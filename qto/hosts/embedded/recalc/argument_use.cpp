#include "qto/hosts/embedded/recalc/argument_use.hpp"

#include <algorithm>
#include <functional>
#include <iterator>

namespace qto::embedded {
namespace {

struct Row {
  std::string_view name;
  SpecialFunction function;
};

constexpr Row rows[] = {
    {"AREAS", SpecialFunction::looks_at_address},
    {"AVERAGEIF", SpecialFunction::sum_range_if},
    {"CELL", SpecialFunction::cell},
    {"CHOOSE", SpecialFunction::choice},
    {"COLUMN", SpecialFunction::looks_at_address},
    {"COLUMNS", SpecialFunction::looks_at_address},
    {"FORMULATEXT", SpecialFunction::looks_at_formula},
    {"HLOOKUP", SpecialFunction::table_row},
    {"IF", SpecialFunction::condition},
    {"IFERROR", SpecialFunction::catch_error},
    {"IFNA", SpecialFunction::catch_error},
    {"IFS", SpecialFunction::conditions},
    {"INDEX", SpecialFunction::index},
    {"ISFORMULA", SpecialFunction::looks_at_formula},
    {"ISREF", SpecialFunction::looks_at_address},
    {"LAMBDA", SpecialFunction::lambda},
    {"LET", SpecialFunction::bind_names},
    {"LOOKUP", SpecialFunction::result_vector},
    {"OFFSET", SpecialFunction::offset},
    {"ROW", SpecialFunction::looks_at_address},
    {"ROWS", SpecialFunction::looks_at_address},
    {"SHEET", SpecialFunction::looks_at_address},
    {"SHEETS", SpecialFunction::looks_at_address},
    {"SUMIF", SpecialFunction::sum_range_if},
    {"SWITCH", SpecialFunction::selection},
    {"VLOOKUP", SpecialFunction::table_column},
    {"XLOOKUP", SpecialFunction::result_vector},
};
static_assert(std::ranges::is_sorted(rows, std::less{}, &Row::name));

}  // namespace

SpecialFunction special_function(std::string_view name) noexcept {
  const auto row = std::ranges::lower_bound(rows, name, std::less{}, &Row::name);
  return row != std::end(rows) && row->name == name ? row->function : SpecialFunction::none;
}

bool hands_on(SpecialFunction function, int argument, int count) noexcept {
  switch (function) {
    case SpecialFunction::choice:
    case SpecialFunction::condition:
      return argument >= 1;
    case SpecialFunction::conditions:
      return argument % 2 == 1;
    case SpecialFunction::selection:
      return argument >= 2 && (argument % 2 == 0 || argument == count - 1);
    case SpecialFunction::catch_error:
      return argument == 1;
    case SpecialFunction::bind_names:
    case SpecialFunction::lambda:
      return argument == count - 1;
    default:
      return false;
  }
}

bool is_conditional(SpecialFunction function, int argument, int count) noexcept {
  switch (function) {
    case SpecialFunction::choice:
    case SpecialFunction::condition:
    case SpecialFunction::conditions:
    case SpecialFunction::catch_error:
      return argument >= 1;
    case SpecialFunction::selection:
      return argument >= 2;
    case SpecialFunction::result_vector:
      return argument >= 3;  // what stands in for a value that is not found
    case SpecialFunction::bind_names:
      return argument < count - 1;
    case SpecialFunction::lambda:
      return true;
    default:
      return false;
  }
}

}  // namespace qto::embedded
