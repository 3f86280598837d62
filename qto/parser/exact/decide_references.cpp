#include <cmath>
#include <unordered_set>

#include "qto/parser/exact/decide.hpp"

namespace qto::exact {
namespace {

/// The call as a text; nothing when it rests on a parameter.
std::optional<std::string> call_text(const Call& call, std::string_view function) {
  std::string text(function);
  text += "(";
  for (std::size_t i = 0; i < call.count(); ++i) {
    if (i > 0) text += ",";
    if (!call.given(i)) continue;
    const auto argument = call.evaluation.text_of(call.arguments[i], call.scope);
    if (!argument) return std::nullopt;
    text += *argument;
  }
  return text + ")";
}

/// Why the numbers of a call do not say one place; "" when they do.
std::string numbers_differ(const Call& call, std::size_t first) {
  for (std::size_t i = first; i < call.count(); ++i) {
    const Told told = tell_one(call, i, "an argument");
    if (!told.why.empty()) return told.why;
  }
  return "";
}

/// Why a call that gives no reference does not; "" when it has a value all the same.
std::string why_no_cells(const Call& call, const std::string& text) {
  const Told told = tell_text(call, text, "what it gives");
  if (!told.why.empty()) return told.why;
  return told.value.is_array() ? "what it gives differs over an array" : "";
}

}  // namespace

Outcome decide_index(const Call& call) {
  const auto text = call_text(call, "INDEX");
  if (!text) return Outcome::whole("it depends on a parameter");
  if (std::string why = numbers_differ(call, 1); !why.empty()) return Outcome::whole(why);
  Outcome outcome;
  if (auto areas = call.evaluation.areas(*text)) {
    outcome.parts.push_back({formula::no_node, nullptr, std::move(*areas)});
    return outcome;
  }
  if (std::string why = why_no_cells(call, *text); !why.empty()) return Outcome::whole(why);
  // An element of an array: what delivers it, as far as that can be told.
  const auto number = [&](std::size_t i) {
    const auto given = number_in(tell_one(call, i, "").value);
    return static_cast<std::int32_t>(given && *given > 0 && *given <= max_rows ? *given : 0);
  };
  std::int32_t row = number(1);
  std::int32_t column = number(2);
  const Shape shape = shape_of(call, call.arguments[0], call.scope);
  if (call.count() < 3 && shape.rows == 1) std::swap(row, column);
  add_element(call, call.arguments[0], call.scope, row, column, outcome);
  return outcome;
}

Outcome decide_offset(const Call& call) {
  const auto text = call_text(call, "OFFSET");
  if (!text) return Outcome::whole("it depends on a parameter");
  if (std::string why = numbers_differ(call, 1); !why.empty()) return Outcome::whole(why);
  auto areas = call.evaluation.areas(*text);
  if (!areas) {
    const std::string why = why_no_cells(call, *text);
    return Outcome::whole(why.empty() ? "it gives no cells" : why);
  }
  Outcome outcome;
  outcome.parts.push_back({formula::no_node, nullptr, std::move(*areas)});
  return outcome;
}

/// An array of texts leads to the cells of each.
Outcome decide_indirect(const Call& call) {
  const Told target = tell(call, 0, "its text");
  if (!target.why.empty()) return Outcome::whole(target.why);
  const Told style = tell_one(call, 1, "its style");
  if (!style.why.empty()) return Outcome::whole(style.why);
  const std::string behind = call.count() > 1 ? "," + call.text(1) + ")" : ")";
  Outcome outcome;
  std::unordered_set<std::string> met;
  const bool all = each_element(target.value, [&](const Variant& element) {
    if (!element.is_text()) return false;
    std::string text = "INDIRECT(\"";
    for (const char c : element.text()) text.append(c == '"' ? 2 : 1, c);
    if (!met.insert(text).second) return true;
    auto areas = call.evaluation.areas(text + "\"" + behind);
    if (!areas) return false;
    outcome.parts.push_back({formula::no_node, nullptr, std::move(*areas)});
    return true;
  });
  return all ? outcome : Outcome::whole("its text denotes no cells");
}

}  // namespace qto::exact
