#include <cmath>

#include "qto/automation/text.hpp"
#include "qto/parser/exact/decide.hpp"

namespace qto::exact {
namespace {

/// As every spreadsheet reads a condition; nothing for a text that is no truth value.
std::optional<bool> truth_of(const Variant& value) {
  if (value.is_text()) {
    if (text::equal_ascii_nocase(value.text(), "TRUE")) return true;
    if (text::equal_ascii_nocase(value.text(), "FALSE")) return false;
    return std::nullopt;
  }
  const auto number = number_in(value);
  if (!number) return std::nullopt;
  return *number != 0;
}

struct Truth {
  bool holds = false;
  std::string why;
};

/// What a condition says, for all elements alike.
Truth condition(const Call& call, std::size_t argument) {
  const Told told = tell(call, argument, "its condition");
  if (!told.why.empty()) return {false, told.why};
  std::optional<bool> all;
  std::string why;
  each_element(told.value, [&](const Variant& element) {
    const auto holds = truth_of(element);
    if (const auto* error = element.get_if<ErrorValue>())
      why = "its condition is " + std::string(error_text(*error));
    else if (!holds)
      why = "its condition is no truth value";
    else if (*holds != all.value_or(*holds))
      why = "its condition differs over an array";
    all = holds;
    return why.empty();
  });
  return {all.value_or(false), why};
}

/// One argument; nothing where it is left out, for a constant takes its place.
Outcome delivered(const Call& call, std::size_t argument, std::size_t considered) {
  Outcome outcome;
  outcome.considered = considered;
  if (call.given(argument)) outcome.parts.push_back(argument_part(call, argument));
  return outcome;
}

}  // namespace

Outcome decide_if(const Call& call) {
  const Truth truth = condition(call, 0);
  if (!truth.why.empty()) return Outcome::whole(truth.why);
  return delivered(call, truth.holds ? 1 : 2, call.count());
}

Outcome decide_ifs(const Call& call) {
  for (std::size_t i = 0; i + 1 < call.count(); i += 2) {
    const Truth truth = condition(call, i);
    if (!truth.why.empty()) return Outcome::whole(truth.why);
    if (truth.holds) return delivered(call, i + 1, i + 1);
  }
  return Outcome::whole("none of its conditions holds");
}

Outcome decide_switch(const Call& call) {
  if (call.count() < 3) return Outcome::whole("it has too few arguments");
  const Told value = tell_one(call, 0, "its value");
  if (!value.why.empty()) return Outcome::whole(value.why);
  const std::string compared = "(" + call.text(0) + ")=";
  for (std::size_t i = 1; i + 1 < call.count(); i += 2) {
    const auto text = call.evaluation.text_of(call.arguments[i], call.scope);
    if (!text) return Outcome::whole("a value of it depends on a parameter");
    const Told same = tell_text(call, compared + "(" + *text + ")", "a comparison of it");
    if (!same.why.empty()) return Outcome::whole(same.why);
    const auto* holds = same.value.get_if<bool>();
    if (!holds) return Outcome::whole("a value of it differs over an array");
    if (*holds) return delivered(call, i + 1, i + 1);
  }
  if (call.count() % 2 == 1) return Outcome::whole("none of its values fits");
  return delivered(call, call.count() - 1, call.count());
}

Outcome decide_choose(const Call& call) {
  const Told told = tell_one(call, 0, "its index");
  if (!told.why.empty()) return Outcome::whole(told.why);
  const auto index = number_in(told.value);
  if (!index || *index < 1 || *index >= static_cast<double>(call.count()))
    return Outcome::whole("its index chooses no argument");
  return delivered(call, static_cast<std::size_t>(std::floor(*index)), call.count());
}

namespace {

/// The value, or what stands in for it where all of it is such an error.
template <class IsCaught>
Outcome value_or_other(const Call& call, IsCaught&& is_caught) {
  if (call.count() < 2) return Outcome::whole("it has too few arguments");
  const auto text = call.evaluation.text_of(call.arguments[0], call.scope);
  if (!text) return Outcome::whole("its value depends on a parameter");
  const auto value =
      call.over_elements ? call.evaluation.elements(*text) : call.evaluation.value(*text);
  if (!value) return Outcome::whole("its value cannot be evaluated");
  bool any = false;
  bool all = true;
  each_element(*value, [&](const Variant& element) {
    const auto* error = element.get_if<ErrorValue>();
    const bool caught = error && is_caught(*error);
    any = any || caught;
    all = all && caught;
    return true;
  });
  if (any && !all) return Outcome::whole("its value is an error in some elements of an array");
  return delivered(call, all ? 1 : 0, call.count());
}

}  // namespace

Outcome decide_iferror(const Call& call) {
  return value_or_other(call, [](ErrorValue) { return true; });
}

Outcome decide_ifna(const Call& call) {
  return value_or_other(call, [](ErrorValue error) { return error == ErrorValue::na; });
}

}  // namespace qto::exact
