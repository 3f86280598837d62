#include <algorithm>
#include <cmath>

#include "qto/hosts/embedded/functions/aggregate.hpp"
#include "qto/hosts/embedded/functions/families.hpp"
#include "qto/hosts/embedded/functions/moments.hpp"
#include "qto/hosts/embedded/functions/numbers.hpp"

namespace qto::embedded::functions {

namespace {

using enum Parameter;

template <Counting counting>
Operand fn_average(Call& call) {
  double sum = 0;
  std::int64_t count = 0;
  const auto error = visit_numbers(call.context(), call.from(0), counting, [&](double number) {
    sum += number;
    ++count;
  });
  if (error) return *error;
  if (count == 0) return ErrorValue::div0;
  return sum / static_cast<double>(count);
}

template <Counting counting, bool largest>
Operand fn_extreme(Call& call) {
  std::optional<double> found;
  const auto error = visit_numbers(call.context(), call.from(0), counting, [&](double number) {
    if (!found || (largest ? number > *found : number < *found)) found = number;
  });
  if (error) return *error;
  return found.value_or(0.0);
}

/// Counts the values that pass; errors count as values.
template <class Passes>
Operand count_values(Call& call, Passes&& passes) {
  std::int64_t count = 0;
  for (const Operand& argument : call.from(0)) {
    if (!argument.is_reference() && !argument.is_array()) {
      count += passes(call.context().single(argument), true);
      continue;
    }
    std::vector<Operand> blocks(argument.areas().begin(), argument.areas().end());
    if (blocks.empty()) blocks.push_back(argument);
    for (const Operand& block : blocks)
      Grid(call.context(), block).for_each([&](int, int, const ValueView& value) {
        count += passes(value, false);
        return true;
      });
  }
  return static_cast<double>(count);
}

Operand fn_count(Call& call) {
  return count_values(call, [&](const ValueView& value, bool single) {
    if (!single || value.is_error()) return value.is_number();
    return static_cast<bool>(to_number(value, call.context().dates()));
  });
}

Operand fn_counta(Call& call) {
  return count_values(
      call, [](const ValueView& value, bool single) { return single || !value.is_empty(); });
}

Operand fn_countblank(Call& call) {
  std::int64_t blank = 0;
  for (const Area& area : call[0].areas()) {
    blank += area.rect.cells();
    Grid(call.context(), area).for_each([&](int, int, const ValueView& value) {
      const bool is_blank = value.is_empty() || (value.is_text() && value.text().empty());
      blank -= !is_blank;
      return true;
    });
  }
  return static_cast<double>(blank);
}

template <Counting counting, bool sample, bool root>
Operand fn_variance(Call& call) {
  const auto numbers = collect_numbers(call.context(), call.from(0), counting);
  if (!numbers) return numbers.error();
  const double degrees = static_cast<double>(numbers->size()) - (sample ? 1 : 0);
  if (degrees <= 0) return ErrorValue::div0;
  const double variance = squared_deviations(*numbers) / degrees;
  return root ? std::sqrt(variance) : variance;
}

Operand fn_devsq(Call& call) {
  const auto numbers = collect_numbers(call.context(), call.from(0));
  if (!numbers) return numbers.error();
  if (numbers->empty()) return ErrorValue::num;
  return squared_deviations(*numbers);
}

Operand fn_avedev(Call& call) {
  const auto numbers = collect_numbers(call.context(), call.from(0));
  if (!numbers) return numbers.error();
  if (numbers->empty()) return ErrorValue::num;
  const double center = mean(*numbers);
  double sum = 0;
  for (const double number : *numbers) sum += std::fabs(number - center);
  return sum / static_cast<double>(numbers->size());
}

Operand fn_geomean(Call& call) {
  const auto numbers = collect_numbers(call.context(), call.from(0));
  if (!numbers) return numbers.error();
  if (numbers->empty()) return ErrorValue::num;
  double logarithms = 0;
  for (const double number : *numbers) {
    if (number <= 0) return ErrorValue::num;
    logarithms += std::log(number);
  }
  return std::exp(logarithms / static_cast<double>(numbers->size()));
}

Operand fn_harmean(Call& call) {
  const auto numbers = collect_numbers(call.context(), call.from(0));
  if (!numbers) return numbers.error();
  if (numbers->empty()) return ErrorValue::na;
  double sum = 0;
  for (const double number : *numbers) {
    if (number <= 0) return ErrorValue::num;
    sum += 1 / number;
  }
  return static_cast<double>(numbers->size()) / sum;
}

template <bool population>
Operand fn_skew(Call& call) {
  const auto numbers = collect_numbers(call.context(), call.from(0));
  if (!numbers) return numbers.error();
  const double n = static_cast<double>(numbers->size());
  if (n < 3) return ErrorValue::div0;
  const double squares = squared_deviations(*numbers);
  const double deviation = std::sqrt(squares / (population ? n : n - 1));
  if (deviation == 0) return ErrorValue::div0;
  const double center = mean(*numbers);
  double cubes = 0;
  for (const double number : *numbers) cubes += std::pow((number - center) / deviation, 3);
  return population ? cubes / n : cubes * n / ((n - 1) * (n - 2));
}

Operand fn_kurt(Call& call) {
  const auto numbers = collect_numbers(call.context(), call.from(0));
  if (!numbers) return numbers.error();
  const double n = static_cast<double>(numbers->size());
  if (n < 4) return ErrorValue::div0;
  const double deviation = std::sqrt(squared_deviations(*numbers) / (n - 1));
  if (deviation == 0) return ErrorValue::div0;
  const double center = mean(*numbers);
  double fourths = 0;
  for (const double number : *numbers) fourths += std::pow((number - center) / deviation, 4);
  return fourths * n * (n + 1) / ((n - 1) * (n - 2) * (n - 3)) -
         3 * (n - 1) * (n - 1) / ((n - 2) * (n - 3));
}

/// True for an argument that is one value, in a cell or not, and no number.
bool is_single_other(Context& context, const Operand& argument) {
  if (argument.is_array() || argument.is_missing()) return false;
  if (argument.is_reference() && !(argument.area() && argument.area()->rect.is_cell()))
    return false;
  const ValueView value = context.single(argument);
  return !value.is_number() && !value.is_error();
}

/// The old function refuses what is no number as an argument of its own, the new ones pass over it.
Outcome<std::vector<double>> modes(Call& call, bool refusing) {
  std::vector<Operand> arguments;
  for (const Operand& argument : call.from(0)) {
    if (!is_single_other(call.context(), argument))
      arguments.push_back(argument);
    else if (refusing)
      return ErrorValue::value;
  }
  const auto numbers = collect_numbers(call.context(), arguments);
  if (!numbers) return numbers.error();
  auto found = most_frequent(*numbers);
  if (found.empty()) return ErrorValue::na;
  return found;
}

template <bool refusing>
Operand fn_mode(Call& call) {
  const auto found = modes(call, refusing);
  return found ? Operand(found->front()) : Operand(found.error());
}

Operand fn_mode_mult(Call& call) {
  const auto found = modes(call, false);
  if (!found) return found.error();
  Matrix column(static_cast<int>(found->size()), 1);
  column.items = *found;
  return to_operand(column);
}

Operand fn_standardize(Call& call) {
  if (call.number(2) <= 0) return ErrorValue::num;
  return (call.number(0) - call.number(1)) / call.number(2);
}

constexpr auto fn_var_s = fn_variance<Counting::numbers, true, false>;
constexpr auto fn_var_p = fn_variance<Counting::numbers, false, false>;
constexpr auto fn_stdev_s = fn_variance<Counting::numbers, true, true>;
constexpr auto fn_stdev_p = fn_variance<Counting::numbers, false, true>;

// clang-format off
constexpr FunctionSpec statistics_table[] = {
    {"AVEDEV", 1, any_count, takes_spans, {values}, fn_avedev, "number1, ...",
     "the mean distance from the mean", "=AVEDEV(1,2,3,4)", "1"},
    {"AVERAGE", 1, any_count, takes_spans, {values}, fn_average<Counting::numbers>, "number1, ...",
     "the arithmetic mean", "=AVERAGE(1,2,6)", "3"},
    {"AVERAGEA", 1, any_count, takes_spans, {values}, fn_average<Counting::anything>, "value1, ...",
     "the mean, with texts in ranges as 0", "=AVERAGEA({1,\"x\",TRUE})", "0.666666666666667"},
    {"COUNT", 1, any_count, takes_spans, {values}, fn_count, "value1, ...",
     "how many numbers there are", "=COUNT(1,\"2\",{3,\"x\"})", "3"},
    {"COUNTA", 1, any_count, takes_spans, {values}, fn_counta, "value1, ...",
     "how many values there are", "=COUNTA(1,\"\",NA())", "3"},
    {"COUNTBLANK", 1, 1, plain, {reference}, fn_countblank, "range",
     "how many cells are empty or hold an empty text", "=COUNTBLANK(A1:B2)", "4"},
    {"DEVSQ", 1, any_count, takes_spans, {values}, fn_devsq, "number1, ...",
     "the sum of squared deviations from the mean", "=DEVSQ(1,2,3)", "2"},
    {"GEOMEAN", 1, any_count, takes_spans, {values}, fn_geomean, "number1, ...",
     "the geometric mean", "=GEOMEAN(2,8)", "4"},
    {"HARMEAN", 1, any_count, takes_spans, {values}, fn_harmean, "number1, ...",
     "the harmonic mean", "=HARMEAN(2,6)", "3"},
    {"KURT", 1, any_count, takes_spans, {values}, fn_kurt, "number1, ...",
     "how peaked the numbers lie", "=ROUND(KURT(3,4,5,2,3,4,5,6,4,7),4)", "-0.1518"},
    {"MAX", 1, any_count, takes_spans, {values}, fn_extreme<Counting::numbers, true>,
     "number1, ...", "the largest number", "=MAX(1,5,3)", "5"},
    {"MAXA", 1, any_count, takes_spans, {values}, fn_extreme<Counting::anything, true>,
     "value1, ...", "the largest value, with texts in ranges as 0", "=MAXA({-1,\"x\"})", "0"},
    {"MIN", 1, any_count, takes_spans, {values}, fn_extreme<Counting::numbers, false>,
     "number1, ...", "the smallest number", "=MIN(4,2,3)", "2"},
    {"MINA", 1, any_count, takes_spans, {values}, fn_extreme<Counting::anything, false>,
     "value1, ...", "the smallest value, with texts in ranges as 0", "=MINA({1,\"x\"})", "0"},
    {"MODE", 1, any_count, takes_spans, {values}, fn_mode<true>, "number1, ...",
     "the number that occurs most often", "=MODE(1,2,2,3)", "2"},
    {"MODE.MULT", 1, any_count, takes_spans, {values}, fn_mode_mult, "number1, ...",
     "the numbers that occur most often, as a column", "=SUM(MODE.MULT(1,1,2,2,3))", "3"},
    {"MODE.SNGL", 1, any_count, takes_spans, {values}, fn_mode<false>, "number1, ...",
     "the number that occurs most often", "=MODE.SNGL(5,5,1)", "5"},
    {"SKEW", 1, any_count, takes_spans, {values}, fn_skew<false>, "number1, ...",
     "how skewed the numbers lie", "=ROUND(SKEW(3,4,5,2,3,4,5,6,4,7),4)", "0.3595"},
    {"SKEW.P", 1, any_count, takes_spans, {values}, fn_skew<true>, "number1, ...",
     "how skewed a population lies", "=ROUND(SKEW.P(3,4,5,2,3,4,5,6,4,7),4)", "0.3032"},
    {"STANDARDIZE", 3, 3, plain, {number}, fn_standardize, "x, mean, deviation",
     "the distance from the mean in deviations", "=STANDARDIZE(42,40,1.5)", "1.33333333333333"},
    {"STDEV", 1, any_count, takes_spans, {values}, fn_stdev_s, "number1, ...",
     "the standard deviation of a sample", "=STDEV(1,3)^2", "2"},
    {"STDEV.P", 1, any_count, takes_spans, {values}, fn_stdev_p, "number1, ...",
     "the standard deviation of a population", "=STDEV.P(1,3)", "1"},
    {"STDEV.S", 1, any_count, takes_spans, {values}, fn_stdev_s, "number1, ...",
     "the standard deviation of a sample", "=STDEV.S(1,3)^2", "2"},
    {"STDEVA", 1, any_count, takes_spans, {values}, fn_variance<Counting::anything, true, true>,
     "value1, ...", "the standard deviation of a sample, with texts in ranges as 0",
     "=STDEVA({2,\"x\"})^2", "2"},
    {"STDEVP", 1, any_count, takes_spans, {values}, fn_stdev_p, "number1, ...",
     "the standard deviation of a population", "=STDEVP(1,3)", "1"},
    {"STDEVPA", 1, any_count, takes_spans, {values}, fn_variance<Counting::anything, false, true>,
     "value1, ...", "the standard deviation of a population, with texts in ranges as 0",
     "=STDEVPA({2,\"x\"})", "1"},
    {"VAR", 1, any_count, takes_spans, {values}, fn_var_s, "number1, ...",
     "the variance of a sample", "=VAR(1,3)", "2"},
    {"VAR.P", 1, any_count, takes_spans, {values}, fn_var_p, "number1, ...",
     "the variance of a population", "=VAR.P(1,3)", "1"},
    {"VAR.S", 1, any_count, takes_spans, {values}, fn_var_s, "number1, ...",
     "the variance of a sample", "=VAR.S(1,3)", "2"},
    {"VARA", 1, any_count, takes_spans, {values}, fn_variance<Counting::anything, true, false>,
     "value1, ...", "the variance of a sample, with texts in ranges as 0", "=VARA({2,\"x\"})", "2"},
    {"VARP", 1, any_count, takes_spans, {values}, fn_var_p, "number1, ...",
     "the variance of a population", "=VARP(1,3)", "1"},
    {"VARPA", 1, any_count, takes_spans, {values}, fn_variance<Counting::anything, false, false>,
     "value1, ...", "the variance of a population, with texts in ranges as 0", "=VARPA({2,\"x\"})",
     "1"},
};
// clang-format on
static_assert(well_formed(statistics_table));

}  // namespace

std::span<const FunctionSpec> statistics_functions() { return statistics_table; }

}  // namespace qto::embedded::functions
