#include <cmath>

#include "qto/parser/exact/decide.hpp"

namespace qto::exact {
namespace {

/// A place that the host found, counted from 1, or why there is none.
struct Found {
  std::int32_t place = 0;
  std::string why;
};

Found place_found(const Call& call, const std::string& text) {
  const Told told = tell_text(call, text, "what it finds");
  if (!told.why.empty()) return {0, told.why};
  if (told.value.is_array()) return {0, "what it finds differs over an array"};
  const auto number = number_in(told.value);
  if (!number || *number < 1 || *number > max_rows) return {0, "it finds no place"};
  return {static_cast<std::int32_t>(*number), ""};
}

/// Why a lookup cannot be decided before anything is searched; "" when it can.
std::string obstacle(const Call& call, std::initializer_list<std::size_t> searched) {
  const Told key = tell_one(call, 0, "its lookup value");
  if (!key.why.empty()) return key.why;
  for (const std::size_t i : searched)
    if (call.given(i) && !call.evaluation.text_of(call.arguments[i], call.scope))
      return "its table depends on a parameter";
  return "";
}

/// VLOOKUP and HLOOKUP: the first column or row is searched.
Outcome decide_table_lookup(const Call& call, bool by_column) {
  if (call.count() < 3) return Outcome::whole("it has too few arguments");
  if (std::string why = obstacle(call, {1}); !why.empty()) return Outcome::whole(why);
  const Told lines = tell(call, 2, by_column ? "its column" : "its row");
  if (!lines.why.empty()) return Outcome::whole(lines.why);
  const Told flag = tell_one(call, 3, "its kind of search");
  if (!flag.why.empty()) return Outcome::whole(flag.why);
  const std::string keys = "INDEX(" + call.text(1) + (by_column ? ",0,1)" : ",1,0)");
  const std::string type =
      call.count() < 4 ? "1" : "IF(" + (call.given(3) ? call.text(3) : "0") + ",1,0)";
  const Found found = place_found(call, "MATCH(" + call.text(0) + "," + keys + "," + type + ")");
  if (!found.why.empty()) return Outcome::whole(found.why);
  Outcome outcome;
  const bool fits = each_element(lines.value, [&](const Variant& element) {
    const auto line = number_in(element);
    if (!line || *line < 1 || *line > max_rows) return false;
    const auto index = static_cast<std::int32_t>(*line);
    add_element(call, call.arguments[1], call.scope, by_column ? found.place : index,
                by_column ? index : found.place, outcome);
    return true;
  });
  return fits ? outcome : Outcome::whole("it asks for no line of its table");
}

}  // namespace

Outcome decide_vlookup(const Call& call) { return decide_table_lookup(call, true); }

Outcome decide_hlookup(const Call& call) { return decide_table_lookup(call, false); }

namespace {

/// Where LOOKUP finds its value among the elements of `searched`. It takes arrays of every kind,
/// errors in them included, which MATCH does where they are cells only.
Found place_by_lookup(const Call& call, const std::string& searched, bool cells, Shape shape) {
  if (cells) return place_found(call, "MATCH(" + call.text(0) + "," + searched + ",1)");
  const std::int32_t count = std::max(shape.rows, shape.columns);
  return place_found(
      call, "LOOKUP(" + call.text(0) + "," + searched + ",ROW($1:$" + std::to_string(count) + "))");
}

}  // namespace

/// A table that is wider than high is searched in its first row, any other in its first column;
/// without a vector of results the last row or column delivers.
Outcome decide_lookup(const Call& call) {
  if (call.count() < 2) return Outcome::whole("it has too few arguments");
  if (std::string why = obstacle(call, {1, 2}); !why.empty()) return Outcome::whole(why);
  const Shape shape = shape_of(call, call.arguments[1], call.scope);
  const bool by_row = shape.columns > shape.rows;
  const bool cells = call.evaluation.areas(call.arguments[1], call.scope).has_value();
  const bool vector = shape.rows == 1 || shape.columns == 1;
  const std::string searched =
      vector ? call.text(1) : "INDEX(" + call.text(1) + (by_row ? ",1,0)" : ",0,1)");
  const Found found = place_by_lookup(call, searched, cells, shape);
  if (!found.why.empty()) return Outcome::whole(found.why);
  Outcome outcome;
  if (call.given(2)) {
    const Shape results = shape_of(call, call.arguments[2], call.scope);
    const bool across = results.rows == 1 && results.columns > 1;
    add_element(call, call.arguments[2], call.scope, across ? 1 : found.place,
                across ? found.place : 1, outcome);
  } else {
    add_element(call, call.arguments[1], call.scope, by_row ? shape.rows : found.place,
                by_row ? found.place : shape.columns, outcome);
  }
  return outcome;
}

Outcome decide_xlookup(const Call& call) {
  if (call.count() < 3) return Outcome::whole("it has too few arguments");
  if (std::string why = obstacle(call, {1, 2, 4, 5}); !why.empty()) return Outcome::whole(why);
  std::string text = "XMATCH(" + call.text(0) + "," + call.text(1);
  if (call.count() > 4) text += "," + (call.given(4) ? call.text(4) : "0");
  if (call.count() > 5) text += "," + (call.given(5) ? call.text(5) : "1");
  const Found found = place_found(call, text + ")");
  Outcome outcome;
  if (!found.why.empty()) {
    const Told again = tell_text(call, text + ")", "");
    const auto* error = again.value.get_if<ErrorValue>();
    if (!error || *error != ErrorValue::na || !call.given(3)) return Outcome::whole(found.why);
    outcome.parts.push_back(argument_part(call, 3));
    return outcome;
  }
  const Shape keys = shape_of(call, call.arguments[1], call.scope);
  const bool across = keys.rows == 1 && keys.columns > 1;
  add_element(call, call.arguments[2], call.scope, across ? 0 : found.place,
              across ? found.place : 0, outcome);
  return outcome;
}

namespace {

/// A position is made of nothing that is delivered; what is looked for decides.
Outcome decide_position(const Call& call, std::string_view function) {
  if (call.count() < 2) return Outcome::whole("it has too few arguments");
  std::string text = std::string(function) + "(";
  for (std::size_t i = 0; i < call.count(); ++i) {
    if (call.given(i) && !call.evaluation.text_of(call.arguments[i], call.scope))
      return Outcome::whole("it depends on a parameter");
    text += (i > 0 ? "," : "") + call.text(i);
  }
  const Told told = tell_text(call, text + ")", "what it finds");
  return told.why.empty() ? Outcome() : Outcome::whole(told.why);
}

}  // namespace

Outcome decide_match(const Call& call) { return decide_position(call, "MATCH"); }

Outcome decide_xmatch(const Call& call) { return decide_position(call, "XMATCH"); }

}  // namespace qto::exact
