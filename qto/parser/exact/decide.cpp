#include "qto/parser/exact/decide.hpp"

#include "qto/automation/text.hpp"

namespace qto::exact {

using formula::NodeKind;

Told tell_text(const Call& call, const std::string& text, const char* what) {
  const auto found =
      call.over_elements ? call.evaluation.elements(text) : call.evaluation.value(text);
  if (!found) return {{}, std::string(what) + " cannot be evaluated"};
  if (const auto* error = found->get_if<ErrorValue>())
    return {*found, std::string(what) + " is " + std::string(error_text(*error))};
  return {*found, ""};
}

Told tell(const Call& call, std::size_t argument, const char* what) {
  if (!call.given(argument)) return {};
  const auto text = call.evaluation.text_of(call.arguments[argument], call.scope);
  if (!text) return {{}, std::string(what) + " depends on a parameter"};
  return tell_text(call, *text, what);
}

Told tell_one(const Call& call, std::size_t argument, const char* what) {
  Told told = tell(call, argument, what);
  if (!told.why.empty() || !told.value.is_array()) return told;
  const Variant first = told.value.array().at(1, 1);
  const bool same =
      each_element(told.value, [&](const Variant& element) { return element == first; });
  if (!same) return {{}, std::string(what) + " differs over an array"};
  if (const auto* error = first.get_if<ErrorValue>())
    return {first, std::string(what) + " is " + std::string(error_text(*error))};
  return {first, ""};
}

std::optional<double> number_in(const Variant& value) {
  if (const auto* number = value.get_if<double>()) return *number;
  if (const auto* whole = value.get_if<std::int32_t>()) return *whole;
  if (const auto* flag = value.get_if<bool>()) return *flag ? 1 : 0;
  if (const auto* date = value.get_if<Date>()) return date->serial;
  if (value.is_empty()) return 0;
  if (value.is_text()) return text::to_number(value.text());
  return std::nullopt;
}

bool each_element(const Variant& value, const std::function<bool(const Variant&)>& visit) {
  if (!value.is_array()) return visit(value);
  const VariantArray& array = value.array();
  for (std::int32_t row = 1; row <= array.rows(); ++row)
    for (std::int32_t column = 1; column <= array.columns(); ++column)
      if (!visit(array.at(row, column))) return false;
  return true;
}

Part argument_part(const Call& call, std::size_t argument) {
  return {call.arguments[argument], call.scope, {}};
}

}  // namespace qto::exact
