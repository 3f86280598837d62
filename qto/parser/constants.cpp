#include "qto/automation/text.hpp"
#include "qto/diagnostics/procedure.hpp"
#include "qto/parser/parser.hpp"

namespace qto {

/// The value only ever rises: from none to zero-or-one, from either to a real constant.
void Parser::flag_contains_constant(std::string_view text) {
  Procedure proc("Parser", "flag_contains_constant");
  const auto number = text::to_number(text);
  if (!number) return;
  raise_contains_constant(*number != 0 && *number != 1 ? qtoFormulaContainsConstant
                                                       : qtoFormulaContainsConstZeroOrOne);
}

void Parser::raise_contains_constant(qtoContainsConstant found) {
  if (found == qtoFormulaContainsConstant ||
      (found != qtoNoConstantInFormula && part_->constants() == qtoNoConstantInFormula))
    part_->put_FormulaContainsConstant(found);
}

namespace {

bool is_zero(const Variant& value) noexcept {
  if (const auto* number = value.get_if<double>()) return *number == 0;
  if (const auto* whole = value.get_if<std::int32_t>()) return *whole == 0;
  if (const auto* date = value.get_if<Date>()) return date->serial == 0;
  if (!value.is_text()) return false;
  const auto number = text::to_number(value.text());
  return number && *number == 0;
}

}  // namespace

bool leaves_something_out(const DrillOptions::Settings& options) {
  return !options.show_zeros || !options.show_blanks || !options.show_dates;
}

void Parser::parse_zeros_blanks_dates_intelligently() {
  procedure("Parser", "parse_zeros_blanks_dates_intelligently", [this]() QTO_INLINED {
    const bool zeros = options().show_zeros;
    const bool blanks = options().show_blanks;
    const bool dates = options().show_dates;
    if (zeros && blanks && dates) return;
    ModelParts::Pass pass(found_);
    while (ModelPart* found = pass.next()) {
      const Variant& value = found->value();
      if (found->is_unknown() || value.is_error()) continue;
      if (!found->is_range() && !found->is_name()) continue;
      const bool marked = (!zeros && is_zero(value)) || (!blanks && value.is_empty()) ||
                          (!dates && value.is_date());
      if (!marked) continue;
      const PartKey key = found->Key();
      found_->remove(key);
      part_->put_IntelligentDrillingUsed(true);
    }
  });
}

}  // namespace qto
