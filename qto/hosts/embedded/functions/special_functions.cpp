#include "qto/hosts/embedded/functions/special_functions.hpp"

#include <cmath>
#include <limits>
#include <numbers>

namespace qto::embedded::functions {

namespace {

// Everything here is reckoned in long double: the logarithms of gamma functions are large, and what
// they lose the results would lose many times over.
using Real = long double;

constexpr Real tiny = 1e-300L;
constexpr Real precision = 1e-19L;
/// Enough for parameters up to 10^10.
constexpr int most_terms = 2'000'000;

/// x^a e^-x / Gamma(a).
Real gamma_front(Real a, Real x) { return std::exp(a * std::log(x) - x - std::lgamma(a)); }

/// P(a, x) by its series; converges fast for x < a + 1.
Real gamma_series(Real a, Real x) {
  Real term = 1 / a;
  Real sum = term;
  for (int n = 1; n < most_terms && term > sum * precision; ++n) {
    term *= x / (a + n);
    sum += term;
  }
  return sum * gamma_front(a, x);
}

Real away_from_zero(Real value) { return std::fabs(value) < tiny ? tiny : value; }

/// Q(a, x) by its continued fraction (Lentz); for x >= a + 1.
Real gamma_fraction(Real a, Real x) {
  Real b = x + 1 - a;
  Real c = 1 / tiny;
  Real d = 1 / b;
  Real h = d;
  for (int i = 1; i < most_terms; ++i) {
    const Real an = -i * (i - a);
    b += 2;
    d = 1 / away_from_zero(an * d + b);
    c = away_from_zero(b + an / c);
    const Real step = d * c;
    h *= step;
    if (std::fabs(step - 1) < precision) break;
  }
  return h * gamma_front(a, x);
}

/// The continued fraction of the incomplete beta function (Lentz).
Real beta_fraction(Real x, Real a, Real b) {
  Real c = 1;
  Real d = 1 / away_from_zero(1 - (a + b) * x / (a + 1));
  Real h = d;
  for (int m = 1; m < most_terms; ++m) {
    const Real even = m * (b - m) * x / ((a - 1 + 2 * m) * (a + 2 * m));
    d = 1 / away_from_zero(1 + even * d);
    c = away_from_zero(1 + even / c);
    h *= d * c;
    const Real odd = -(a + m) * (a + b + m) * x / ((a + 2 * m) * (a + 1 + 2 * m));
    d = 1 / away_from_zero(1 + odd * d);
    c = away_from_zero(1 + odd / c);
    const Real step = d * c;
    h *= step;
    if (std::fabs(step - 1) < precision) break;
  }
  return h;
}

double to_double(Real value) { return static_cast<double>(value); }

}  // namespace

double gamma_p(double a, double x) {
  if (x <= 0) return 0;
  return to_double(x < a + 1 ? gamma_series(a, x) : 1 - gamma_fraction(a, x));
}

double gamma_q(double a, double x) {
  if (x <= 0) return 1;
  return to_double(x < a + 1 ? 1 - gamma_series(a, x) : gamma_fraction(a, x));
}

long double log_beta(long double a, long double b) {
  return std::lgamma(a) + std::lgamma(b) - std::lgamma(a + b);
}

double beta_i(double x, double a, double b) { return beta_i(Split{x, 1 - Real{x}}, a, b); }

double beta_i(const Split& at, double a, double b) {
  if (at.x <= 0) return 0;
  if (at.y <= 0) return 1;
  const Real front = std::exp(a * std::log(at.x) + b * std::log(at.y) - log_beta(a, b));
  if (at.x < (a + 1) / (a + b + 2)) return to_double(front * beta_fraction(at.x, a, b) / a);
  return to_double(1 - front * beta_fraction(at.y, b, a) / b);
}

double gamma_inverse(double p, double a) {
  if (p > 0.5) return invert_positive([&](double x) { return -gamma_q(a, x); }, p - 1);
  return invert_positive([&](double x) { return gamma_p(a, x); }, p);
}

double normal_density(double x) { return std::exp(-x * x / 2) / std::sqrt(2 * std::numbers::pi); }

double normal_below(double x) { return std::erfc(-x / std::numbers::sqrt2) / 2; }

double normal_quantile(double p) {
  // A rough start by the tail's logarithm, then Halley steps, which treble the digits each time.
  const double tail = p < 0.5 ? p : 1 - p;
  const double t = std::sqrt(-2 * std::log(tail));
  double x = t - (2.515517 + 0.802853 * t + 0.010328 * t * t) /
                     (1 + 1.432788 * t + 0.189269 * t * t + 0.001308 * t * t * t);
  if (p < 0.5) x = -x;
  for (int step = 0; step < 4; ++step) {
    // Near the middle both sides are close to a half, which would hide the digits of x.
    const double error = tail > 0.25 ? std::erf(x / std::numbers::sqrt2) / 2 - (p - 0.5)
                         : p < 0.5   ? normal_below(x) - p
                                     : (1 - p) - normal_below(-x);
    const double u = error / normal_density(x);
    x -= u / (1 + x * u / 2);
  }
  return x;
}

}  // namespace qto::embedded::functions
