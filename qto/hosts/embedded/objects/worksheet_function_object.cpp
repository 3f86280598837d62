#include "qto/hosts/embedded/objects/worksheet_function_object.hpp"

#include "qto/hosts/embedded/objects/checks/raise.hpp"
#include "qto/hosts/embedded/objects/evaluation.hpp"
#include "qto/hosts/embedded/objects/range_object.hpp"
#include "qto/hosts/embedded/objects/references/formula_literal.hpp"

namespace qto::embedded {
namespace {

/// An argument as formula text: a range by its address, a value as a literal. Nothing counts as 0,
/// as an empty cell does that is looked up or stands for a condition.
void append_argument(std::string& out, const Variant& value, const Book& book) {
  const auto range = ref_cast<host::Range>(value.object());
  if (range)
    out.append(range_of(range).Address(true, true, host::xlA1, true));
  else if (!append_literal(out, value, book))
    out.push_back('0');
}

Variant evaluate_on(const RangeObject& range, std::string_view formula) {
  OpenBook& book = range.sheet()->open();
  return book.application().text_evaluator().evaluate(book, range.sheet()->sheet(), {}, formula);
}

}  // namespace

std::optional<double> WorksheetFunctionObject::Match(const Variant& lookup_value,
                                                     const Ref<host::Range>& lookup_range,
                                                     std::optional<double> match_type) {
  const RangeObject& range = range_of(lookup_range);
  std::string formula = "MATCH(";
  append_argument(formula, lookup_value, range.sheet()->open().book());
  formula.append(",").append(range.Address(true, true, host::xlA1, true));
  if (match_type) {
    formula.push_back(',');
    append_literal(formula, *match_type, range.sheet()->open().book());
  }
  const Variant result = evaluate_on(range, formula.append(")"));
  const double* position = result.get_if<double>();
  return position ? std::optional(*position) : std::nullopt;
}

double WorksheetFunctionObject::CountIf(const Ref<host::Range>& range, const Variant& criteria) {
  const RangeObject& counted = range_of(range);
  std::string formula = "COUNTIF(" + counted.Address(true, true, host::xlA1, true) + ",";
  append_argument(formula, criteria, counted.sheet()->open().book());
  const Variant result = evaluate_on(counted, formula.append(")"));
  const double* count = result.get_if<double>();
  if (!count) fail("COUNTIF gives no number for " + formula);
  return *count;
}

}  // namespace qto::embedded
