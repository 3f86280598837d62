#include <algorithm>
#include <cmath>

#include "qto/hosts/embedded/evaluate/build_array.hpp"
#include "qto/hosts/embedded/functions/families.hpp"
#include "qto/hosts/embedded/functions/moments.hpp"
#include "qto/hosts/embedded/functions/numbers.hpp"
#include "qto/hosts/embedded/functions/quantiles.hpp"
#include "qto/hosts/embedded/functions/scalar_math.hpp"

namespace qto::embedded::functions {

namespace {

using enum Parameter;

Outcome<std::vector<double>> sorted_numbers(Call& call, std::span<const Operand> arguments) {
  auto numbers = collect_numbers(call.context(), arguments);
  if (!numbers) return numbers.error();
  std::vector<double> sorted = *numbers;
  std::sort(sorted.begin(), sorted.end());
  return sorted;
}

Operand fn_median(Call& call) {
  const auto sorted = sorted_numbers(call, call.from(0));
  return sorted ? median_of(*sorted) : Operand(sorted.error());
}

template <bool largest>
Operand fn_kth(Call& call) {
  const auto sorted = sorted_numbers(call, call.from(0).first(1));
  return sorted ? kth(*sorted, call.number(1), largest) : Operand(sorted.error());
}

template <Operand (*F)(std::span<const double>, double)>
Operand fn_percentile(Call& call) {
  const auto sorted = sorted_numbers(call, call.from(0).first(1));
  return sorted ? F(*sorted, call.number(1)) : Operand(sorted.error());
}

template <Operand (*F)(std::span<const double>, double)>
Operand fn_quartile(Call& call) {
  const auto sorted = sorted_numbers(call, call.from(0).first(1));
  if (!sorted) return sorted.error();
  const double quarter = std::trunc(call.number(1));
  if (quarter < 0 || quarter > 4) return ErrorValue::num;
  return F(*sorted, quarter / 4);
}

template <bool average>
Operand fn_rank(Call& call) {
  const auto numbers = collect_numbers(call.context(), call.from(1).first(1));
  if (!numbers) return numbers.error();
  const double subject = call.number(0);
  const bool ascending = call.number(2, 0) != 0;
  std::int64_t before = 0;
  std::int64_t same = 0;
  for (const double number : *numbers) {
    before += ascending ? number < subject : number > subject;
    same += number == subject;
  }
  if (same == 0) return ErrorValue::na;
  const double rank = static_cast<double>(before + 1);
  return average ? rank + static_cast<double>(same - 1) / 2 : rank;
}

/// The rank of x among sorted numbers as a position from 0, between two of them interpolated.
std::optional<double> position_of(std::span<const double> sorted, double x) {
  if (sorted.empty() || x < sorted.front() || x > sorted.back()) return std::nullopt;
  const auto above = std::lower_bound(sorted.begin(), sorted.end(), x);
  const double index = static_cast<double>(above - sorted.begin());
  if (*above == x) return index;
  const double below = *(above - 1);
  return index - 1 + (x - below) / (*above - below);
}

/// Cut off, not rounded, to significant digits as the function promises.
Operand cut(double fraction, double digits) {
  if (digits < 1) return ErrorValue::num;
  const double power = std::pow(10, std::trunc(digits));
  return round_down(fraction * power) / power;
}

template <bool inclusive>
Operand fn_percentrank(Call& call) {
  const auto sorted = sorted_numbers(call, call.from(0).first(1));
  if (!sorted) return sorted.error();
  if (sorted->empty()) return ErrorValue::num;
  const auto position = position_of(*sorted, call.number(1));
  if (!position) return ErrorValue::na;
  const double n = static_cast<double>(sorted->size());
  const double digits = call.given(2) ? call.number(2) : 3;
  if (!inclusive) return cut((*position + 1) / (n + 1), digits);
  return cut(n == 1 ? 1.0 : *position / (n - 1), digits);
}

Operand fn_trimmean(Call& call) {
  const auto sorted = sorted_numbers(call, call.from(0).first(1));
  if (!sorted) return sorted.error();
  const double share = call.number(1);
  if (sorted->empty() || share < 0 || share >= 1) return ErrorValue::num;
  const auto cut = static_cast<std::size_t>(static_cast<double>(sorted->size()) * share / 2);
  return mean(std::span(*sorted).subspan(cut, sorted->size() - 2 * cut));
}

Operand fn_frequency(Call& call) {
  const auto data = sorted_numbers(call, call.from(0).first(1));
  if (!data) return data.error();
  const auto bins = collect_numbers(call.context(), call.from(1));
  if (!bins) return bins.error();
  // Without bins all is measured by zero.
  const std::vector<double> limits = bins->empty() ? std::vector<double>{0} : *bins;
  std::vector<std::size_t> order(limits.size());
  for (std::size_t i = 0; i < order.size(); ++i) order[i] = i;
  std::stable_sort(order.begin(), order.end(),
                   [&](std::size_t a, std::size_t b) { return limits[a] < limits[b]; });
  Matrix counts(static_cast<int>(limits.size()) + 1, 1);
  auto from = data->begin();
  for (const std::size_t bin : order) {
    const auto to = std::upper_bound(from, data->end(), limits[bin]);
    counts.items[bin] = static_cast<double>(to - from);
    from = to;
  }
  counts.items.back() = static_cast<double>(data->end() - from);
  return to_operand(counts);
}

// clang-format off
constexpr FunctionSpec ranking_table[] = {
    {"FREQUENCY", 2, 2, plain, {values}, fn_frequency, "data, bins",
     "how many numbers fall into each bin, as a column", "=SUM(FREQUENCY({1,2,3},{1,2}))", "3"},
    {"LARGE", 2, 2, plain, {values, number}, fn_kth<true>, "array, k", "the k-th largest number",
     "=LARGE({3,5,1},2)", "3"},
    {"MEDIAN", 1, any_count, takes_spans, {values}, fn_median, "number1, ...",
     "the number in the middle", "=MEDIAN(1,4,2,8)", "3"},
    {"PERCENTILE", 2, 2, plain, {values, number}, fn_percentile<percentile_inclusive>, "array, k",
     "the value below which a fraction lies", "=PERCENTILE({1,2,3,4},0.3)", "1.9"},
    {"PERCENTILE.EXC", 2, 2, plain, {values, number}, fn_percentile<percentile_exclusive>,
     "array, k", "the value below which a fraction lies, ends left out",
     "=PERCENTILE.EXC({1,2,3},0.25)", "1"},
    {"PERCENTILE.INC", 2, 2, plain, {values, number}, fn_percentile<percentile_inclusive>,
     "array, k", "the value below which a fraction lies", "=PERCENTILE.INC({1,2,3,4},0.3)", "1.9"},
    {"PERCENTRANK", 2, 3, plain, {values, number, number}, fn_percentrank<true>,
     "array, x, [digits]", "the rank of a value as a fraction", "=PERCENTRANK({1,2,3,4},2)",
     "0.333"},
    {"PERCENTRANK.EXC", 2, 3, plain, {values, number, number}, fn_percentrank<false>,
     "array, x, [digits]", "the rank of a value as a fraction, ends left out",
     "=PERCENTRANK.EXC({1,2,3},2)", "0.5"},
    {"PERCENTRANK.INC", 2, 3, plain, {values, number, number}, fn_percentrank<true>,
     "array, x, [digits]", "the rank of a value as a fraction", "=PERCENTRANK.INC({1,2,3,4},2)",
     "0.333"},
    {"QUARTILE", 2, 2, plain, {values, number}, fn_quartile<percentile_inclusive>, "array, quarter",
     "the value below which quarters lie", "=QUARTILE({1,2,4,7,8,9,10,12},1)", "3.5"},
    {"QUARTILE.EXC", 2, 2, plain, {values, number}, fn_quartile<percentile_exclusive>,
     "array, quarter", "the value below which quarters lie, ends left out",
     "=QUARTILE.EXC({1,2,3},1)", "1"},
    {"QUARTILE.INC", 2, 2, plain, {values, number}, fn_quartile<percentile_inclusive>,
     "array, quarter", "the value below which quarters lie", "=QUARTILE.INC({1,2,4,7,8,9,10,12},1)",
     "3.5"},
    {"RANK", 2, 3, plain, {number, reference, number}, fn_rank<false>,
     "number, reference, [ascending]", "the rank of a number among others",
     "=ISERROR(RANK(1,A1:A2))", "TRUE"},
    {"RANK.AVG", 2, 3, plain, {number, reference, number}, fn_rank<true>,
     "number, reference, [ascending]", "the rank of a number, equals sharing their mean rank",
     "=ISERROR(RANK.AVG(1,A1:A2))", "TRUE"},
    {"RANK.EQ", 2, 3, plain, {number, reference, number}, fn_rank<false>,
     "number, reference, [ascending]", "the rank of a number among others",
     "=ISERROR(RANK.EQ(1,A1:A2))", "TRUE"},
    {"SMALL", 2, 2, plain, {values, number}, fn_kth<false>, "array, k", "the k-th smallest number",
     "=SMALL({3,5,1},2)", "3"},
    {"TRIMMEAN", 2, 2, plain, {values, number}, fn_trimmean, "array, share",
     "the mean without a share of the extremes", "=TRIMMEAN({1,2,3,100},0.5)", "2.5"},
};
// clang-format on
static_assert(well_formed(ranking_table));

}  // namespace

Operand percentile_inclusive(std::span<const double> sorted, double k) {
  if (sorted.empty() || !(k >= 0 && k <= 1)) return ErrorValue::num;
  const double position = k * static_cast<double>(sorted.size() - 1);
  const auto below = static_cast<std::size_t>(position);
  if (below + 1 >= sorted.size()) return sorted.back();
  const double part = position - static_cast<double>(below);
  return sorted[below] + part * (sorted[below + 1] - sorted[below]);
}

Operand percentile_exclusive(std::span<const double> sorted, double k) {
  const double n = static_cast<double>(sorted.size());
  if (sorted.empty() || !(k > 0 && k < 1)) return ErrorValue::num;
  const double position = k * (n + 1) - 1;
  if (position < 0 || position > n - 1) return ErrorValue::num;
  return percentile_inclusive(sorted, sorted.size() == 1 ? 0.0 : position / (n - 1));
}

Operand median_of(std::span<const double> sorted) {
  if (sorted.empty()) return ErrorValue::num;
  const std::size_t middle = sorted.size() / 2;
  return sorted.size() % 2 ? sorted[middle] : (sorted[middle - 1] + sorted[middle]) / 2;
}

Operand kth(std::span<const double> sorted, double k, bool largest) {
  const double position = largest ? std::ceil(k) : std::trunc(k);
  if (!(position >= 1 && position <= static_cast<double>(sorted.size()))) return ErrorValue::num;
  const auto index = static_cast<std::size_t>(position);
  return largest ? sorted[sorted.size() - index] : sorted[index - 1];
}

std::span<const FunctionSpec> ranking_functions() { return ranking_table; }

}  // namespace qto::embedded::functions
