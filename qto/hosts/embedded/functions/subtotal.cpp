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

enum class Rows { all, unfiltered, visible };
enum class Errors { end_it, passed_over, counted };

/// Which cells an aggregate takes.
struct Selection {
  Rows rows = Rows::all;
  Errors errors = Errors::end_it;
  bool subtotals = true;
};

/// Counting numbers does not mind errors, and counting values counts them.
Errors errors_for(double kind) {
  if (kind == 2) return Errors::passed_over;
  return kind == 3 ? Errors::counted : Errors::end_it;
}

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
  Gatherer(Context& context, Selection selection) : context_(context), selection_(selection) {}

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
      if (passes_over(*area.sheet, pos.row)) return;
      if (!selection_.subtotals && id != 0 && is_subtotal(book, id)) return;
      error = take(view_of(cell, book.texts));
    });
    return error;
  }

  bool passes_over(const Sheet& sheet, std::int32_t row) const {
    if (selection_.rows == Rows::all) return false;
    return selection_.rows == Rows::visible ? sheet.layout.row_hidden(row)
                                            : sheet.layout.row_filtered_out(row);
  }

  std::optional<ErrorValue> take(const ValueView& value) {
    if (value.is_error() && selection_.errors == Errors::end_it) return value.error();
    if (value.is_error() && selection_.errors == Errors::passed_over) return std::nullopt;
    if (value.is_number()) sample.numbers.push_back(value.number());
    if (!value.is_empty()) ++sample.values;
    return std::nullopt;
  }

  Context& context_;
  Selection selection_;
};

Operand fn_subtotal(Call& call) {
  const double code = std::trunc(call.number(0));
  const bool visible_only = code > 100;
  const double kind = visible_only ? code - 100 : code;
  if (kind < 1 || kind > 11) return ErrorValue::value;
  const Rows rows = visible_only ? Rows::visible : Rows::unfiltered;
  Gatherer gatherer(call.context(), {rows, errors_for(kind), false});
  for (const Operand& argument : call.from(1)) {
    if (!argument.is_reference()) return argument.error() ? *argument.error() : ErrorValue::value;
    if (const auto error = gatherer.add(argument)) return *error;
  }
  return aggregate(static_cast<Aggregate>(kind), std::move(gatherer.sample));
}

Operand fn_aggregate(Call& call) {
  const double kind = std::trunc(call.number(0));
  const double option = call.given(1) ? std::trunc(call.number(1)) : 0;
  if (kind < 1 || kind > 19 || option < 0 || option > 7) return ErrorValue::value;
  const int bits = static_cast<int>(option);
  const Rows rows = (bits & 1) != 0 ? Rows::visible : Rows::all;
  const Errors errors = (bits & 2) != 0 ? Errors::passed_over : errors_for(kind);
  Gatherer gatherer(call.context(), {rows, errors, bits >= 4});
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
     "an aggregate that passes over other subtotals and rows that a filter hides",
     "=SUBTOTAL(2,A1:B9)", "0"},
};
// clang-format on
static_assert(well_formed(subtotal_table));

}  // namespace

std::span<const FunctionSpec> subtotal_functions() { return subtotal_table; }

}  // namespace qto::embedded::functions
