#include <algorithm>
#include <cmath>

#include "qto/hosts/embedded/functions/families.hpp"
#include "qto/hosts/embedded/functions/moments.hpp"
#include "qto/hosts/embedded/functions/numbers.hpp"
#include "qto/hosts/embedded/functions/special_functions.hpp"

namespace qto::embedded::functions {

namespace {

using enum Parameter;

double chi_above(double x, double degrees) { return gamma_above(x / 2, degrees / 2); }

/// Degrees of freedom as the functions take them: whole, at least 1 and not beyond 10^10.
Outcome<double> degrees(Call& call, int i) {
  const double number = std::trunc(call.number(i));
  if (number < 1 || number > 1e10) return ErrorValue::num;
  return number;
}

// Chi-squared.

Operand fn_chisq_dist(Call& call) {
  const double x = call.number(0);
  const auto d = degrees(call, 1);
  if (!d) return d.error();
  if (x < 0) return ErrorValue::num;
  if (call.logical(2)) return gamma_below(x / 2, *d / 2);
  if (x == 0) return *d < 2 ? Operand(ErrorValue::num) : Operand(*d == 2 ? 0.5 : 0.0);
  return gamma_density(x / 2, *d / 2) / 2;
}

Operand fn_chisq_dist_rt(Call& call) {
  const auto d = degrees(call, 1);
  if (!d) return d.error();
  if (call.number(0) < 0) return ErrorValue::num;
  return chi_above(call.number(0), *d);
}

Operand fn_chisq_inv(Call& call) {
  const double p = call.number(0);
  const auto d = degrees(call, 1);
  if (!d) return d.error();
  if (p < 0 || p >= 1) return ErrorValue::num;
  if (p == 0) return 0.0;
  return 2 * gamma_quantile(p, *d / 2);
}

Operand fn_chisq_inv_rt(Call& call) {
  const double p = call.number(0);
  const auto d = degrees(call, 1);
  if (!d) return d.error();
  if (p <= 0 || p > 1) return ErrorValue::num;
  if (p == 1) return 0.0;
  return 2 * gamma_quantile_above(p, *d / 2);
}

Operand fn_chisq_test(Call& call) {
  const Grid actual(call.context(), call[0]);
  const Grid expected(call.context(), call[1]);
  if (call.context().gave_up()) return ErrorValue::na;
  if (actual.rows() != expected.rows() || actual.columns() != expected.columns() ||
      actual.size() == 1)
    return ErrorValue::na;
  double statistic = 0;
  bool any = false;
  for (std::int64_t i = 0; i < actual.size(); ++i) {
    const ValueView a = actual.nth(i);
    const ValueView e = expected.nth(i);
    if (a.is_error()) return a.error();
    if (e.is_error()) return e.error();
    if (!a.is_number() || !e.is_number()) continue;
    any = true;
    if (e.number() == 0) return ErrorValue::div0;
    if (e.number() < 0) return ErrorValue::num;
    statistic += (a.number() - e.number()) * (a.number() - e.number()) / e.number();
  }
  if (!any) return ErrorValue::div0;
  const double rows = actual.rows();
  const double columns = actual.columns();
  const bool vector = rows == 1 || columns == 1;
  return chi_above(statistic, vector ? rows * columns - 1 : (rows - 1) * (columns - 1));
}

// Student's t.

Operand fn_t_dist(Call& call) {
  if (!call.logical(2) && std::trunc(call.number(1)) == 0) return ErrorValue::div0;
  const auto d = degrees(call, 1);
  if (!d) return d.error();
  const double t = call.number(0);
  return call.logical(2) ? t_above(-t, *d) : t_density(t, *d);
}

Operand fn_t_dist_2t(Call& call) {
  const auto d = degrees(call, 1);
  if (!d) return d.error();
  if (call.number(0) < 0) return ErrorValue::num;
  return 2 * t_above(call.number(0), *d);
}

Operand fn_t_dist_rt(Call& call) {
  const auto d = degrees(call, 1);
  if (!d) return d.error();
  return t_above(call.number(0), *d);
}

Operand fn_tdist(Call& call) {
  const auto d = degrees(call, 1);
  if (!d) return d.error();
  const double tails = std::trunc(call.number(2));
  if (call.number(0) < 0 || (tails != 1 && tails != 2)) return ErrorValue::num;
  return tails * t_above(call.number(0), *d);
}

Operand fn_t_inv(Call& call) {
  const double p = call.number(0);
  const auto d = degrees(call, 1);
  if (!d) return d.error();
  if (p <= 0 || p >= 1) return ErrorValue::num;
  return t_quantile(p, *d);
}

Operand fn_t_inv_2t(Call& call) {
  const double p = call.number(0);
  const auto d = degrees(call, 1);
  if (!d) return d.error();
  if (p <= 0 || p > 1) return ErrorValue::num;
  return -t_quantile(p / 2, *d);
}

/// The t and degrees of freedom of two samples.
struct TStatistic {
  double t = 0;
  double degrees = 0;
};

Outcome<TStatistic> paired_statistic(Call& call) {
  const auto pairs = collect_pairs(call.context(), call[0], call[1]);
  if (!pairs) return pairs.error();
  std::vector<double> differences;
  for (std::size_t i = 0; i < pairs->first.size(); ++i)
    differences.push_back(pairs->first[i] - pairs->second[i]);
  const double n = static_cast<double>(differences.size());
  if (n < 2) return ErrorValue::div0;
  const double variance = squared_deviations(differences) / (n - 1);
  if (variance == 0) return ErrorValue::div0;
  return TStatistic{mean(differences) / std::sqrt(variance / n), n - 1};
}

Outcome<TStatistic> unpaired_statistic(Call& call, bool equal_variances) {
  const auto a = collect_numbers(call.context(), call.from(0).first(1));
  if (!a) return a.error();
  const auto b = collect_numbers(call.context(), call.from(1).first(1));
  if (!b) return b.error();
  const double n1 = static_cast<double>(a->size());
  const double n2 = static_cast<double>(b->size());
  if (n1 < 2 || n2 < 2) return ErrorValue::div0;
  const double s1 = squared_deviations(*a);
  const double s2 = squared_deviations(*b);
  const double difference = mean(*a) - mean(*b);
  if (s1 + s2 == 0) return ErrorValue::div0;
  if (equal_variances) {
    const double pooled = (s1 + s2) / (n1 + n2 - 2);
    return TStatistic{difference / std::sqrt(pooled * (1 / n1 + 1 / n2)), n1 + n2 - 2};
  }
  const double v1 = s1 / (n1 - 1) / n1;
  const double v2 = s2 / (n2 - 1) / n2;
  const double welch = (v1 + v2) * (v1 + v2) / (v1 * v1 / (n1 - 1) + v2 * v2 / (n2 - 1));
  return TStatistic{difference / std::sqrt(v1 + v2), welch};
}

Operand fn_t_test(Call& call) {
  const double tails = std::trunc(call.number(2));
  const double type = std::trunc(call.number(3));
  if ((tails != 1 && tails != 2) || type < 1 || type > 3) return ErrorValue::num;
  const auto statistic = type == 1 ? paired_statistic(call) : unpaired_statistic(call, type == 2);
  if (!statistic) return statistic.error();
  return tails * t_above(std::fabs(statistic->t), statistic->degrees);
}

// F.

Operand fn_f_dist(Call& call) {
  const double x = call.number(0);
  const auto d1 = degrees(call, 1);
  const auto d2 = degrees(call, 2);
  if (!d1) return d1.error();
  if (!d2) return d2.error();
  if (x < 0) return ErrorValue::num;
  if (call.logical(3)) return f_below(x, *d1, *d2);
  if (x == 0) return *d1 < 2 ? Operand(ErrorValue::num) : Operand(*d1 == 2 ? 1.0 : 0.0);
  return f_density(x, *d1, *d2);
}

Operand fn_f_dist_rt(Call& call) {
  const auto d1 = degrees(call, 1);
  const auto d2 = degrees(call, 2);
  if (!d1) return d1.error();
  if (!d2) return d2.error();
  if (call.number(0) < 0) return ErrorValue::num;
  return f_above(call.number(0), *d1, *d2);
}

Operand fn_f_inv(Call& call) {
  const double p = call.number(0);
  const auto d1 = degrees(call, 1);
  const auto d2 = degrees(call, 2);
  if (!d1) return d1.error();
  if (!d2) return d2.error();
  if (p < 0 || p >= 1) return ErrorValue::num;
  if (p == 0) return 0.0;
  return f_quantile(p, *d1, *d2);
}

Operand fn_f_inv_rt(Call& call) {
  const double p = call.number(0);
  const auto d1 = degrees(call, 1);
  const auto d2 = degrees(call, 2);
  if (!d1) return d1.error();
  if (!d2) return d2.error();
  if (p <= 0 || p > 1) return ErrorValue::num;
  if (p == 1) return 0.0;
  return f_quantile_above(p, *d1, *d2);
}

Operand fn_f_test(Call& call) {
  const auto a = collect_numbers(call.context(), call.from(0).first(1));
  if (!a) return a.error();
  const auto b = collect_numbers(call.context(), call.from(1).first(1));
  if (!b) return b.error();
  const double d1 = static_cast<double>(a->size()) - 1;
  const double d2 = static_cast<double>(b->size()) - 1;
  if (d1 < 1 || d2 < 1) return ErrorValue::div0;
  const double v1 = squared_deviations(*a) / d1;
  const double v2 = squared_deviations(*b) / d2;
  if (v1 == 0 || v2 == 0) return ErrorValue::div0;
  return 2 * std::min(f_above(v1 / v2, d1, d2), f_below(v1 / v2, d1, d2));
}

// Normal.

Operand fn_z_test(Call& call) {
  const auto numbers = collect_numbers(call.context(), call.from(0).first(1));
  if (!numbers) return numbers.error();
  if (numbers->empty()) return ErrorValue::na;
  const double n = static_cast<double>(numbers->size());
  double deviation = 0;
  if (call.given(2)) {
    deviation = call.number(2);
    if (deviation <= 0) return ErrorValue::num;
  } else {
    if (n < 2) return ErrorValue::div0;
    deviation = std::sqrt(squared_deviations(*numbers) / (n - 1));
    if (deviation == 0) return ErrorValue::div0;
  }
  return normal_below(-(mean(*numbers) - call.number(1)) / (deviation / std::sqrt(n)));
}

Operand fn_confidence_norm(Call& call) {
  const double alpha = call.number(0);
  const double size = std::trunc(call.number(2));
  if (alpha <= 0 || alpha >= 1 || call.number(1) <= 0 || size < 1) return ErrorValue::num;
  return -normal_quantile(alpha / 2) * call.number(1) / std::sqrt(size);
}

Operand fn_confidence_t(Call& call) {
  const double alpha = call.number(0);
  const double size = std::trunc(call.number(2));
  if (alpha <= 0 || alpha >= 1 || call.number(1) <= 0 || size < 1) return ErrorValue::num;
  if (size == 1) return ErrorValue::div0;
  return -t_quantile(alpha / 2, size - 1) * call.number(1) / std::sqrt(size);
}

Operand fn_prob(Call& call) {
  const auto pairs = collect_pairs(call.context(), call[0], call[1]);
  if (!pairs) return pairs.error();
  const double low = call.number(2);
  const double high = call.given(3) ? call.number(3) : low;
  double total = 0;
  double inside = 0;
  for (std::size_t i = 0; i < pairs->first.size(); ++i) {
    const double p = pairs->second[i];
    if (p <= 0 || p > 1) return ErrorValue::num;
    total += p;
    if (pairs->first[i] >= low && pairs->first[i] <= high) inside += p;
  }
  if (std::fabs(total - 1) > 1e-9) return ErrorValue::num;
  return inside;
}

// clang-format off
constexpr FunctionSpec sample_test_table[] = {
    {"CHIDIST", 2, 2, plain, {number}, fn_chisq_dist_rt, "x, degrees",
     "what lies above in the chi-squared distribution", "=ROUND(CHIDIST(18.307,10),4)", "0.05"},
    {"CHIINV", 2, 2, plain, {number}, fn_chisq_inv_rt, "probability, degrees",
     "the inverse of CHIDIST", "=ROUND(CHIINV(0.05,10),3)", "18.307"},
    {"CHISQ.DIST", 3, 3, plain, {number, number, logical}, fn_chisq_dist, "x, degrees, cumulative",
     "the chi-squared distribution", "=ROUND(CHISQ.DIST(0.5,1,TRUE),6)", "0.5205"},
    {"CHISQ.DIST.RT", 2, 2, plain, {number}, fn_chisq_dist_rt, "x, degrees",
     "what lies above in the chi-squared distribution", "=ROUND(CHISQ.DIST.RT(18.307,10),4)",
     "0.05"},
    {"CHISQ.INV", 2, 2, plain, {number}, fn_chisq_inv, "probability, degrees",
     "the inverse of the chi-squared distribution", "=ROUND(CHISQ.INV(0.93,1),6)", "3.28302"},
    {"CHISQ.INV.RT", 2, 2, plain, {number}, fn_chisq_inv_rt, "probability, degrees",
     "the inverse of CHISQ.DIST.RT", "=ROUND(CHISQ.INV.RT(0.05,10),3)", "18.307"},
    {"CHISQ.TEST", 2, 2, plain, {Parameter::array}, fn_chisq_test, "actual, expected",
     "the test for independence", "=ROUND(CHISQ.TEST({58,35},{45.35,47.65}),6)", "0.008683"},
    {"CHITEST", 2, 2, plain, {Parameter::array}, fn_chisq_test, "actual, expected",
     "the test for independence", "=ROUND(CHITEST({58,35},{45.35,47.65}),6)", "0.008683"},
    {"CONFIDENCE", 3, 3, plain, {number}, fn_confidence_norm, "alpha, deviation, size",
     "half the confidence interval of a mean", "=ROUND(CONFIDENCE(0.05,2.5,50),6)", "0.692952"},
    {"CONFIDENCE.NORM", 3, 3, plain, {number}, fn_confidence_norm, "alpha, deviation, size",
     "half the confidence interval of a mean", "=ROUND(CONFIDENCE.NORM(0.05,2.5,50),6)",
     "0.692952"},
    {"CONFIDENCE.T", 3, 3, plain, {number}, fn_confidence_t, "alpha, deviation, size",
     "half the confidence interval by Student's distribution", "=ROUND(CONFIDENCE.T(0.05,1,50),6)",
     "0.284197"},
    {"F.DIST", 4, 4, plain, {number, number, number, logical}, fn_f_dist,
     "x, degrees1, degrees2, cumulative", "the F distribution",
     "=ROUND(F.DIST(15.2069,6,4,TRUE),4)", "0.99"},
    {"F.DIST.RT", 3, 3, plain, {number}, fn_f_dist_rt, "x, degrees1, degrees2",
     "what lies above in the F distribution", "=ROUND(F.DIST.RT(15.2069,6,4),4)", "0.01"},
    {"F.INV", 3, 3, plain, {number}, fn_f_inv, "probability, degrees1, degrees2",
     "the inverse of the F distribution", "=ROUND(F.INV(0.01,6,4),4)", "0.1093"},
    {"F.INV.RT", 3, 3, plain, {number}, fn_f_inv_rt, "probability, degrees1, degrees2",
     "the inverse of F.DIST.RT", "=ROUND(F.INV.RT(0.01,6,4),4)", "15.2069"},
    {"F.TEST", 2, 2, plain, {values}, fn_f_test, "array1, array2", "the test for equal variances",
     "=ROUND(F.TEST({6,7,9,15,21},{20,28,31,38,40}),6)", "0.648318"},
    {"FDIST", 3, 3, plain, {number}, fn_f_dist_rt, "x, degrees1, degrees2",
     "what lies above in the F distribution", "=ROUND(FDIST(15.2069,6,4),4)", "0.01"},
    {"FINV", 3, 3, plain, {number}, fn_f_inv_rt, "probability, degrees1, degrees2",
     "the inverse of FDIST", "=ROUND(FINV(0.01,6,4),4)", "15.2069"},
    {"FTEST", 2, 2, plain, {values}, fn_f_test, "array1, array2", "the test for equal variances",
     "=ROUND(FTEST({6,7,9,15,21},{20,28,31,38,40}),6)", "0.648318"},
    {"PROB", 3, 4, plain, {values, values, number, number}, fn_prob,
     "values, probabilities, low, [high]", "the probability of values between limits",
     "=PROB({0,1,2},{0.2,0.5,0.3},1,2)", "0.8"},
    {"T.DIST", 3, 3, plain, {number, number, logical}, fn_t_dist, "x, degrees, cumulative",
     "Student's distribution", "=ROUND(T.DIST(60,1,TRUE),6)", "0.994695"},
    {"T.DIST.2T", 2, 2, plain, {number}, fn_t_dist_2t, "x, degrees",
     "both tails of Student's distribution", "=ROUND(T.DIST.2T(1.959999998,60),6)", "0.054645"},
    {"T.DIST.RT", 2, 2, plain, {number}, fn_t_dist_rt, "x, degrees",
     "the upper tail of Student's distribution", "=ROUND(T.DIST.RT(1.959999998,60),6)", "0.027322"},
    {"T.INV", 2, 2, plain, {number}, fn_t_inv, "probability, degrees",
     "the inverse of Student's distribution", "=ROUND(T.INV(0.75,2),6)", "0.816497"},
    {"T.INV.2T", 2, 2, plain, {number}, fn_t_inv_2t, "probability, degrees",
     "the inverse of T.DIST.2T", "=ROUND(T.INV.2T(0.546449,60),6)", "0.606533"},
    {"T.TEST", 4, 4, plain, {values, values, number, number}, fn_t_test,
     "array1, array2, tails, type", "the test for equal means",
     "=ROUND(T.TEST({3,4,5,8,9,1,2,4,5},{6,19,3,2,14,4,5,17,1},2,1),6)", "0.196016"},
    {"TDIST", 3, 3, plain, {number}, fn_tdist, "x, degrees, tails",
     "one or both tails of Student's distribution", "=ROUND(TDIST(1.959999998,60,2),6)",
     "0.054645"},
    {"TINV", 2, 2, plain, {number}, fn_t_inv_2t, "probability, degrees",
     "the inverse of both tails of Student's distribution", "=ROUND(TINV(0.054645,60),4)", "1.96"},
    {"TTEST", 4, 4, plain, {values, values, number, number}, fn_t_test,
     "array1, array2, tails, type", "the test for equal means",
     "=ROUND(TTEST({3,4,5,8,9,1,2,4,5},{6,19,3,2,14,4,5,17,1},2,1),6)", "0.196016"},
    {"Z.TEST", 2, 3, plain, {values, number, number}, fn_z_test, "array, x, [deviation]",
     "the test of a mean", "=ROUND(Z.TEST({3,6,7,8,6,5,4,2,1,9},4),6)", "0.090574"},
    {"ZTEST", 2, 3, plain, {values, number, number}, fn_z_test, "array, x, [deviation]",
     "the test of a mean", "=ROUND(ZTEST({3,6,7,8,6,5,4,2,1,9},4),6)", "0.090574"},
};
// clang-format on
static_assert(well_formed(sample_test_table));

}  // namespace

std::span<const FunctionSpec> sample_test_functions() { return sample_test_table; }

}  // namespace qto::embedded::functions
