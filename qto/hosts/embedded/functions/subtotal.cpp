#include <cmath>

#include "qto/automation/text.hpp"
#include "qto/hosts/embedded/evaluate/call.hpp"
#include "qto/hosts/embedded/evaluate/grid.hpp"
#include "qto/hosts/embedded/formulas/compiled_formula.hpp"
#include "qto/hosts/embedded/functions/aggregate.hpp"
#include "qto/hosts/embedded/functions/families.hpp"

namespace qto::embedded::functions {

namespace {

using enum Parameter;

/// Which cells an aggregate passes over.
struct Skip {
  bool hidden_rows = false;
  bool errors = false;
  bool subtotals = false;
};

/// True when a formula is itself a subtotal, so that totals do not count twice.
bool is_subtotal(const Book& book, FormulaId id) {
  const formula::SyntaxTree* tree = book.formula(id).compiled->tree();
  if (!tree) return false;
  for (const formula::Node& node : tree->nodes)
    if (node.kind == formula::NodeKind::call &&
        (tree->texts[node.payload] == "SUBTOTAL" || tree->texts[node.payload] == "AGGREGATE"))
      return true;
  return false;
}

/// Gathers values; gives the error that ends the gathering.
class Gatherer {
 public:
  Gatherer(Context& context, Skip skip) : context_(context), skip_(skip) {}

  std::optional<ErrorValue> add(const Operand& operand) {
    for (const Area& area : operand.areas())
      if (const auto error = add_area(area)) return error;
    if (operand.is_reference()) return std::nullopt;
    std::optional<ErrorValue> error;
    Grid(context_, operand).for_each_by_row([&](int, int, const ValueView& value) {
      error = take(value);
      return !error;
    });
    return error;
  }
  Sample sample;

 private:
  std::optional<ErrorValue> add_area(const Area& area) {
    if (!context_.ready(area)) return ErrorValue::na;
    const Book& book = area.sheet->book();
    std::optional<ErrorValue> error;
    area.sheet->cells.for_each_by_row(area.rect, [&](CellPos pos, const Cell& cell, FormulaId id) {
      if (error || cell.is_empty()) return;
      if (skip_.hidden_rows && area.sheet->layout.row_hidden(pos.row)) return;
      if (skip_.subtotals && id != 0 && is_subtotal(book, id)) return;
      error = take(view_of(cell, book.texts));
    });
    return error;
  }

  std::optional<ErrorValue> take(const ValueView& value) {
    if (value.is_error()) {
      if (skip_.errors) return std::nullopt;
      return value.error();
    }
    if (value.is_number()) sample.numbers.push_back(value.number());
    if (!value.is_empty()) ++sample.values;
    return std::nullopt;
  }

  Context& context_;
  Skip skip_;
};

Operand fn_subtotal(Call& call) {
  const double code = std::trunc(call.number(0));
  const bool visible_only = code > 100;
  const double kind = visible_only ? code - 100 : code;
  if (kind < 1 || kind > 11) return ErrorValue::value;
  Gatherer gatherer(call.context(), {visible_only, false, true});
  for (const Operand& argument : call.from(1)) {
    if (!argument.is_reference()) return argument.error() ? *argument.error() : ErrorValue::value;
    const auto error = gatherer.add(argument);
    // Counting does not mind errors.
    if (error && kind != 2 && kind != 3) return *error;
  }
  return aggregate(static_cast<Aggregate>(kind), std::move(gatherer.sample));
}

Operand fn_aggregate(Call& call) {
  const double kind = std::trunc(call.number(0));
  const double option = call.given(1) ? std::trunc(call.number(1)) : 0;
  if (kind < 1 || kind > 19 || option < 0 || option > 7) return ErrorValue::value;
  const int bits = static_cast<int>(option);
  Gatherer gatherer(call.context(), {(bits & 1) != 0, (bits & 2) != 0, bits < 4});
  double k = 0;
  int last = call.count();
  if (kind >= 14) {
    if (call.count() < 4) return ErrorValue::value;
    const auto number = to_number(call.context().single(call[3]), call.context().dates());
    if (!number) return number.error();
    k = *number;
    last = 3;
  }
  for (int i = 2; i < last; ++i) {
    if (kind < 14 && !call[i].is_reference()) return ErrorValue::value;
    if (const auto error = gatherer.add(call[i])) return *error;
  }
  return aggregate(static_cast<Aggregate>(kind), std::move(gatherer.sample), k);
}

// clang-format off
constexpr FunctionSpec subtotal_table[] = {
    {"AGGREGATE", 3, any_count, plain, {number, number, Parameter::array}, fn_aggregate,
     "function, options, array, [k]", "an aggregate that can pass over errors and hidden rows",
     "=AGGREGATE(14,6,{3,#N/A,5},1)", "5"},
    {"SUBTOTAL", 2, any_count, plain, {number, values}, fn_subtotal, "function, range1, ...",
     "an aggregate that passes over other subtotals", "=SUBTOTAL(2,A1:B9)", "0"},
};
// clang-format on
static_assert(well_formed(subtotal_table));

}  // namespace

std::span<const FunctionSpec> subtotal_functions() { return subtotal_table; }

}  // namespace qto::embedded::functions
