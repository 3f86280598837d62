#include <cmath>

#include "qto/hosts/embedded/functions/families.hpp"
#include "qto/hosts/embedded/functions/moments.hpp"
#include "qto/hosts/embedded/functions/numbers.hpp"

namespace qto::embedded::functions {

namespace {

using enum Parameter;

/// Sums over pairs of numbers, taken from their means.
struct PairMoments {
  double n = 0;
  double mean_x = 0, mean_y = 0;
  double xx = 0, yy = 0, xy = 0;

  double slope() const { return xy / xx; }
  double intercept() const { return mean_y - slope() * mean_x; }
};

Outcome<PairMoments> moments_of(Call& call, int x_position, int y_position) {
  const auto pairs = collect_pairs(call.context(), call[x_position], call[y_position]);
  if (!pairs) return pairs.error();
  PairMoments m;
  m.n = static_cast<double>(pairs->first.size());
  m.mean_x = mean(pairs->first);
  m.mean_y = mean(pairs->second);
  for (std::size_t i = 0; i < pairs->first.size(); ++i) {
    const double dx = pairs->first[i] - m.mean_x;
    const double dy = pairs->second[i] - m.mean_y;
    m.xx += dx * dx;
    m.yy += dy * dy;
    m.xy += dx * dy;
  }
  return m;
}

Operand correlation(Call& call, bool squared) {
  const auto m = moments_of(call, 0, 1);
  if (!m) return m.error();
  if (m->n < 1 || m->xx == 0 || m->yy == 0) return ErrorValue::div0;
  const double r = m->xy / std::sqrt(m->xx * m->yy);
  return squared ? r * r : r;
}

Operand fn_correl(Call& call) { return correlation(call, false); }
Operand fn_rsq(Call& call) { return correlation(call, true); }

template <bool sample>
Operand fn_covariance(Call& call) {
  const auto m = moments_of(call, 0, 1);
  if (!m) return m.error();
  const double degrees = m->n - (sample ? 1 : 0);
  if (degrees <= 0) return ErrorValue::div0;
  return m->xy / degrees;
}

// The y values come first in these.

Operand fn_slope(Call& call) {
  const auto m = moments_of(call, 1, 0);
  if (!m) return m.error();
  if (m->xx == 0) return ErrorValue::div0;
  return m->slope();
}

Operand fn_intercept(Call& call) {
  const auto m = moments_of(call, 1, 0);
  if (!m) return m.error();
  if (m->xx == 0) return ErrorValue::div0;
  return m->intercept();
}

Operand fn_steyx(Call& call) {
  const auto m = moments_of(call, 1, 0);
  if (!m) return m.error();
  if (m->n < 3 || m->xx == 0) return ErrorValue::div0;
  return std::sqrt((m->yy - m->xy * m->xy / m->xx) / (m->n - 2));
}

Operand fn_forecast(Call& call) {
  const auto m = moments_of(call, 2, 1);
  if (!m) return m.error();
  if (m->xx == 0) return ErrorValue::div0;
  return m->mean_y + m->slope() * (call.number(0) - m->mean_x);
}

Operand fn_fisher(Call& call) {
  const double x = call.number(0);
  if (x <= -1 || x >= 1) return ErrorValue::num;
  return std::atanh(x);
}

Operand fn_fisherinv(Call& call) { return std::tanh(call.number(0)); }

// clang-format off
constexpr FunctionSpec regression_table[] = {
    {"CORREL", 2, 2, plain, {values}, fn_correl, "array1, array2",
     "the correlation of two sets of numbers", "=CORREL({1,2,3},{2,4,6})", "1"},
    {"COVAR", 2, 2, plain, {values}, fn_covariance<false>, "array1, array2",
     "the covariance of a population", "=COVAR({1,2,3},{1,2,3})", "0.666666666666667"},
    {"COVARIANCE.P", 2, 2, plain, {values}, fn_covariance<false>, "array1, array2",
     "the covariance of a population", "=COVARIANCE.P({1,3},{1,3})", "1"},
    {"COVARIANCE.S", 2, 2, plain, {values}, fn_covariance<true>, "array1, array2",
     "the covariance of a sample", "=COVARIANCE.S({1,3},{1,3})", "2"},
    {"FISHER", 1, 1, plain, {number}, fn_fisher, "x", "the Fisher transformation",
     "=ROUND(FISHER(0.75),6)", "0.972955"},
    {"FISHERINV", 1, 1, plain, {number}, fn_fisherinv, "y",
     "the inverse of the Fisher transformation", "=ROUND(FISHERINV(0.972955),4)", "0.75"},
    {"FORECAST", 3, 3, plain, {number, values, values}, fn_forecast, "x, known_y, known_x",
     "a value on the line of best fit", "=FORECAST(4,{2,4,6},{1,2,3})", "8"},
    {"FORECAST.LINEAR", 3, 3, plain, {number, values, values}, fn_forecast, "x, known_y, known_x",
     "a value on the line of best fit", "=FORECAST.LINEAR(4,{2,4,6},{1,2,3})", "8"},
    {"INTERCEPT", 2, 2, plain, {values}, fn_intercept, "known_y, known_x",
     "where the line of best fit meets the axis", "=INTERCEPT({3,5,7},{1,2,3})", "1"},
    {"PEARSON", 2, 2, plain, {values}, fn_correl, "array1, array2",
     "the correlation of two sets of numbers", "=PEARSON({1,2,3},{3,2,1})", "-1"},
    {"RSQ", 2, 2, plain, {values}, fn_rsq, "known_y, known_x", "the square of the correlation",
     "=RSQ({1,2,3},{3,2,1})", "1"},
    {"SLOPE", 2, 2, plain, {values}, fn_slope, "known_y, known_x",
     "the slope of the line of best fit", "=SLOPE({3,5,7},{1,2,3})", "2"},
    {"STEYX", 2, 2, plain, {values}, fn_steyx, "known_y, known_x",
     "the standard error of the line of best fit", "=STEYX({3,5,7},{1,2,3})", "0"},
};
// clang-format on
static_assert(well_formed(regression_table));

}  // namespace

std::span<const FunctionSpec> regression_functions() { return regression_table; }

}  // namespace qto::embedded::functions
