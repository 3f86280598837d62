#pragma once

/// Special functions of mathematics that distributions rest on.
namespace qto::embedded::functions {

/// The regularised lower incomplete gamma function P(a, x), a > 0, x >= 0.
double gamma_p(double a, double x);
/// 1 - P(a, x), exact where that is small.
double gamma_q(double a, double x);
/// The x at which P(a, x) is p, 0 <= p < 1.
double gamma_inverse(double p, double a);

/// A number between 0 and 1 and what is missing to 1, each with all its digits.
struct Split {
  long double x, y;
  Split other() const { return {y, x}; }
};
/// `part` of `part + rest`.
inline Split split(long double part, long double rest) {
  return {part / (part + rest), rest / (part + rest)};
}
/// The regularised incomplete beta function I_x(a, b), 0 <= x <= 1.
double beta_i(double x, double a, double b);
double beta_i(const Split& at, double a, double b);
/// The logarithm of the beta function.
long double log_beta(long double a, long double b);
/// The standard normal distribution: its density, what lies below x, and the x below which p lies.
double normal_density(double x);
double normal_below(double x);
double normal_quantile(double p);

/// The x between `low` and `high` at which a rising function reaches p.
template <class F>
double invert_rising(F&& f, double p, double low, double high) {
  for (int step = 0; step < 2000; ++step) {
    const double middle = low + (high - low) / 2;
    if (middle <= low || middle >= high) break;
    (f(middle) < p ? low : high) = middle;
  }
  return low + (high - low) / 2;
}
/// The same over all of x >= 0.
template <class F>
double invert_positive(F&& f, double p) {
  double high = 1;
  while (f(high) < p && high < 1e300) high *= 2;
  return invert_rising(f, p, 0, high);
}

}  // namespace qto::embedded::functions
