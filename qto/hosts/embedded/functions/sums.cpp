#include <cmath>

#include "qto/hosts/embedded/evaluate/operators.hpp"
#include "qto/hosts/embedded/functions/families.hpp"
#include "qto/hosts/embedded/functions/numbers.hpp"

namespace qto::embedded::functions {

namespace {

using enum Parameter;

Operand fn_sum(Call& call) {
  double sum = 0;
  const auto error = visit_numbers(call.context(), call.from(0), Counting::numbers,
                                   [&](double number) { sum += number; });
  return error ? Operand(*error) : Operand(sum);
}

Operand fn_sumsq(Call& call) {
  double sum = 0;
  const auto error = visit_numbers(call.context(), call.from(0), Counting::numbers,
                                   [&](double number) { sum += number * number; });
  return error ? Operand(*error) : Operand(sum);
}

Operand fn_product(Call& call) {
  double product = 1;
  std::int64_t count = 0;
  const auto error =
      visit_numbers(call.context(), call.from(0), Counting::numbers, [&](double number) {
        product *= number;
        ++count;
      });
  if (error) return *error;
  return count ? product : 0.0;
}

/// The product at one place of all factors; what is no number counts as 0 there.
Outcome<double> product_at(const std::vector<Grid>& factors, int row, int column) {
  double product = 1;
  for (const Grid& factor : factors) {
    const ValueView value = factor.at(row, column);
    if (value.is_error()) return value.error();
    product *= value.is_number() ? value.number() : 0.0;
  }
  return product;
}

Operand fn_sumproduct(Call& call) {
  std::vector<Grid> factors;
  for (const Operand& argument : call.from(0)) {
    if (argument.error()) return *argument.error();
    factors.emplace_back(call.context(), argument);
    const Grid& added = factors.back();
    if (added.rows() != factors[0].rows() || added.columns() != factors[0].columns())
      return ErrorValue::value;
  }
  if (call.context().gave_up()) return ErrorValue::na;
  // A text counts as 0 beside others, but does not stand for a factor.
  for (const Grid& factor : factors)
    if (factor.size() == 1 && factor.at(0, 0).is_text()) return ErrorValue::value;
  double sum = 0;
  std::optional<ErrorValue> error;
  // Only where the first factor holds something can the product differ from 0, unless another
  // factor holds an error there.
  const auto add = [&](int row, int column) {
    const auto product = product_at(factors, row, column);
    if (!product)
      error = product.error();
    else
      sum += *product;
    return !error;
  };
  factors[0].for_each_by_row(
      [&](int row, int column, const ValueView&) { return add(row, column); });
  for (std::size_t i = 1; i < factors.size() && !error; ++i)
    factors[i].for_each([&](int, int, const ValueView& value) {
      if (value.is_error()) error = value.error();
      return !error;
    });
  return error ? Operand(*error) : Operand(sum);
}

template <class Term>
Operand sum_over_pairs(Call& call, Term&& term) {
  const auto pairs = collect_pairs(call.context(), call[0], call[1]);
  if (!pairs) return pairs.error();
  if (pairs->first.empty()) return ErrorValue::div0;
  double sum = 0;
  for (std::size_t i = 0; i < pairs->first.size(); ++i)
    sum += term(pairs->first[i], pairs->second[i]);
  return sum;
}

Operand fn_sumx2my2(Call& call) {
  return sum_over_pairs(call, [](double x, double y) { return x * x - y * y; });
}
Operand fn_sumx2py2(Call& call) {
  return sum_over_pairs(call, [](double x, double y) { return x * x + y * y; });
}
Operand fn_sumxmy2(Call& call) {
  return sum_over_pairs(call, [](double x, double y) { return (x - y) * (x - y); });
}

Operand fn_seriessum(Call& call) {
  const double x = call.number(0);
  const auto coefficients = collect_numbers(call.context(), call.from(3));
  if (!coefficients) return coefficients.error();
  double sum = 0;
  double power = call.number(1);
  for (const double coefficient : *coefficients) {
    const Variant factor = raise_to_power(x, power);
    if (factor.is_error()) return factor;
    sum += coefficient * *factor.get_if<double>();
    power += call.number(2);
  }
  return sum;
}

Operand fn_percentof(Call& call) {
  double part = 0;
  double all = 0;
  if (const auto error = visit_numbers(call.context(), call.from(0).first(1), Counting::numbers,
                                       [&](double number) { part += number; }))
    return *error;
  if (const auto error = visit_numbers(call.context(), call.from(1), Counting::numbers,
                                       [&](double number) { all += number; }))
    return *error;
  if (all == 0) return ErrorValue::div0;
  return part / all;
}

// clang-format off
constexpr FunctionSpec sum_table[] = {
    {"PERCENTOF", 2, 2, plain, {Parameter::array}, fn_percentof, "part, all",
     "the sum of a part by the sum of all", "=PERCENTOF({1,2},{1,2,3,4})", "0.3"},
    {"PRODUCT", 1, any_count, takes_spans, {values}, fn_product, "number1, ...",
     "the product of the numbers", "=PRODUCT(2,3,{4,\"x\"})", "24"},
    {"SERIESSUM", 4, 4, plain, {strict_number, strict_number, strict_number, values}, fn_seriessum,
     "x, power, step, coefficients", "the sum of a power series", "=SERIESSUM(2,1,1,{1,1,1})",
     "14"},
    {"SUM", 1, any_count, takes_spans, {values}, fn_sum, "number1, ...", "the sum of the numbers",
     "=SUM(1,\"2\",{3,\"x\"})", "6"},
    {"SUMPRODUCT", 1, any_count, plain, {Parameter::array}, fn_sumproduct, "array1, ...",
     "the sum of the products of what stands at the same place", "=SUMPRODUCT({1,2},{3,4})", "11"},
    {"SUMSQ", 1, any_count, takes_spans, {values}, fn_sumsq, "number1, ...",
     "the sum of the squares", "=SUMSQ(3,4)", "25"},
    {"SUMX2MY2", 2, 2, plain, {Parameter::array}, fn_sumx2my2, "array_x, array_y",
     "the sum of the differences of squares", "=SUMX2MY2({3,4},{1,2})", "20"},
    {"SUMX2PY2", 2, 2, plain, {Parameter::array}, fn_sumx2py2, "array_x, array_y",
     "the sum of the sums of squares", "=SUMX2PY2({3,4},{1,2})", "30"},
    {"SUMXMY2", 2, 2, plain, {Parameter::array}, fn_sumxmy2, "array_x, array_y",
     "the sum of the squares of differences", "=SUMXMY2({3,4},{1,2})", "8"},
};
// clang-format on
static_assert(well_formed(sum_table));

}  // namespace

std::span<const FunctionSpec> sum_functions() { return sum_table; }

}  // namespace qto::embedded::functions
