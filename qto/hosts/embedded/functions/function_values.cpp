#include <cmath>

#include "qto/hosts/embedded/evaluate/build_array.hpp"
#include "qto/hosts/embedded/evaluate/call.hpp"
#include "qto/hosts/embedded/functions/blocks.hpp"
#include "qto/hosts/embedded/functions/families.hpp"

namespace qto::embedded::functions {

namespace {

using enum Parameter;

/// As refusal(), but an argument that is left out counts as empty.
std::optional<ErrorValue> areas_refusal(const Operand& operand) {
  if (operand.error()) return *operand.error();
  if (operand.areas().size() > 1) return ErrorValue::value;
  return std::nullopt;
}

/// The one value of a result; a result with several is #CALC!.
Variant single_value(Context& context, const Operand& result) {
  const Grid grid(context, result);
  if (grid.size() != 1) return ErrorValue::calc;
  return grid.at(0, 0).to_variant();
}

Operand fn_lambda(LazyCall& call) { return call.function_value(); }

Operand fn_map(Call& call) {
  const int arrays = call.count() - 1;
  std::vector<Grid> grids;
  int rows = 1;
  int columns = 1;
  for (int i = 0; i < arrays; ++i) {
    if (const auto error = areas_refusal(call[i])) return *error;
    grids.emplace_back(call.context(), call[i]);
    rows = std::max(rows, grids.back().rows());
    columns = std::max(columns, grids.back().columns());
  }
  return build_array(call.context(), rows, columns, [&](int row, int column) -> Variant {
    std::vector<Operand> arguments;
    for (const Grid& grid : grids) arguments.emplace_back(grid.broadcast(row, column).to_variant());
    return single_value(call.context(), call.context().apply(call[arrays], arguments));
  });
}

/// REDUCE and SCAN: start, array, function of the value so far and the next one.
template <class Keep>
Operand fold(Call& call, Keep&& keep) {
  if (const auto error = areas_refusal(call[1])) return *error;
  const Grid grid(call.context(), call[1]);
  Operand so_far = call.given(0) ? call[0] : Operand(Variant());
  bool first = !call.given(0);
  for (std::int64_t i = 0; i < grid.size(); ++i) {
    const Operand next(grid.nth(i).to_variant());
    // Without a start the first value is it.
    so_far = first ? next : call.context().apply(call[2], std::vector<Operand>{so_far, next});
    first = false;
    if (call.context().gave_up()) return ErrorValue::na;
    keep(i, so_far);
  }
  return so_far;
}

Operand fn_reduce(Call& call) {
  return fold(call, [](std::int64_t, const Operand&) {});
}

Operand fn_scan(Call& call) {
  if (const auto error = areas_refusal(call[1])) return *error;
  const Shape shape = shape_of(call[1]);
  if (std::int64_t{shape.rows} * shape.columns > max_array_elements) return ErrorValue::num;
  auto result = make_ref<VariantArray>(shape.rows, shape.columns);
  fold(call, [&](std::int64_t i, const Operand& value) {
    result->at(static_cast<int>(i / shape.columns) + 1, static_cast<int>(i % shape.columns) + 1) =
        single_value(call.context(), value);
  });
  return Ref<const VariantArray>(result);
}

template <bool by_row>
Operand fn_by_line(Call& call) {
  if (const auto error = areas_refusal(call[0])) return *error;
  const Shape shape = shape_of(call[0]);
  return build_array(
      call.context(), by_row ? shape.rows : 1, by_row ? 1 : shape.columns,
      [&](int row, int column) -> Variant {
        const Operand line = part_of(call.context(), call[0], row, column, by_row ? 1 : shape.rows,
                                     by_row ? shape.columns : 1);
        return single_value(call.context(), call.context().apply(call[1], {&line, 1}));
      });
}

Operand fn_makearray(Call& call) {
  const double rows = std::trunc(call.number(0));
  const double columns = std::trunc(call.number(1));
  if (rows < 1 || columns < 1) return ErrorValue::value;
  if (rows * columns > static_cast<double>(max_array_elements)) return ErrorValue::num;
  return build_array(call.context(), static_cast<int>(rows), static_cast<int>(columns),
                     [&](int row, int column) -> Variant {
                       const Operand place[] = {row + 1.0, column + 1.0};
                       return single_value(call.context(), call.context().apply(call[2], place));
                     });
}

Operand fn_isomitted(LazyCall& call) { return call.evaluate(0).is_missing(); }

// clang-format off
constexpr FunctionSpec function_value_table[] = {
    {"BYCOL", 2, 2, plain, {Parameter::array, values}, fn_by_line<false>, "array, function",
     "a function of each column", "=SUM(BYCOL({1,2;3,4},LAMBDA(c,MAX(c))))", "7"},
    {"BYROW", 2, 2, plain, {Parameter::array, values}, fn_by_line<true>, "array, function",
     "a function of each row", "=SUM(BYROW({1,2;3,4},LAMBDA(r,MAX(r))))", "6"},
    {"ISOMITTED", 1, 1, plain, {any}, fn_isomitted, "argument",
     "true when a function value was called without the argument",
     "=LET(f,LAMBDA(x,ISOMITTED(x)),f(1))", "FALSE"},
    {"LAMBDA", 1, any_count, plain, {any}, fn_lambda, "[parameter1, ...], body",
     "a function as a value", "=LET(f,LAMBDA(x,y,x*y),f(3,4))", "12"},
    {"MAKEARRAY", 3, 3, plain, {number, number, values}, fn_makearray, "rows, columns, function",
     "an array of a function of row and column", "=SUM(MAKEARRAY(2,2,LAMBDA(r,c,r*c)))", "9"},
    {"MAP", 2, any_count, plain, {Parameter::array}, fn_map, "array1, ..., function",
     "a function of the elements of arrays", "=SUM(MAP({1,2,3},LAMBDA(x,x^2)))", "14"},
    {"REDUCE", 3, 3, plain, {values, Parameter::array, values}, fn_reduce, "start, array, function",
     "one value folded from all elements", "=REDUCE(1,{2,3,4},LAMBDA(a,b,a*b))", "24"},
    {"SCAN", 3, 3, plain, {values, Parameter::array, values}, fn_scan, "start, array, function",
     "the values on the way of REDUCE", "=INDEX(SCAN(0,{1,2,3},LAMBDA(a,b,a+b)),3)", "6"},
};
// clang-format on
static_assert(well_formed(function_value_table));

}  // namespace

std::span<const FunctionSpec> function_value_functions() { return function_value_table; }

}  // namespace qto::embedded::functions
