#include "qto/hosts/embedded/functions/special_functions.hpp"

#include <cmath>
#include <limits>
#include <numbers>

namespace qto::embedded::functions {

namespace {

constexpr double tiny = 1e-300;
constexpr double precision = 1e-16;
constexpr int most_terms = 100000;

/// P(a, x) by its series; converges fast for x < a + 1.
double gamma_series(double a, double x) {
  double term = 1 / a;
  double sum = term;
  for (int n = 1; n < most_terms && std::fabs(term) > std::fabs(sum) * precision; ++n) {
    term *= x / (a + n);
    sum += term;
  }
  return sum * std::exp(a * std::log(x) - x - std::lgamma(a));
}

/// Q(a, x) by its continued fraction (Lentz); for x >= a + 1.
double gamma_fraction(double a, double x) {
  double b = x + 1 - a;
  double c = 1 / tiny;
  double d = 1 / b;
  double h = d;
  for (int i = 1; i < most_terms; ++i) {
    const double an = -i * (i - a);
    b += 2;
    d = an * d + b;
    if (std::fabs(d) < tiny) d = tiny;
    c = b + an / c;
    if (std::fabs(c) < tiny) c = tiny;
    d = 1 / d;
    const double step = d * c;
    h *= step;
    if (std::fabs(step - 1) < precision) break;
  }
  return h * std::exp(a * std::log(x) - x - std::lgamma(a));
}

/// The continued fraction of the incomplete beta function (Lentz).
double beta_fraction(double x, double a, double b) {
  double c = 1;
  double d = 1 - (a + b) * x / (a + 1);
  if (std::fabs(d) < tiny) d = tiny;
  d = 1 / d;
  double h = d;
  for (int m = 1; m < most_terms; ++m) {
    const double even = m * (b - m) * x / ((a - 1 + 2 * m) * (a + 2 * m));
    d = 1 + even * d;
    if (std::fabs(d) < tiny) d = tiny;
    c = 1 + even / c;
    if (std::fabs(c) < tiny) c = tiny;
    d = 1 / d;
    h *= d * c;
    const double odd = -(a + m) * (a + b + m) * x / ((a + 2 * m) * (a + 1 + 2 * m));
    d = 1 + odd * d;
    if (std::fabs(d) < tiny) d = tiny;
    c = 1 + odd / c;
    if (std::fabs(c) < tiny) c = tiny;
    d = 1 / d;
    const double step = d * c;
    h *= step;
    if (std::fabs(step - 1) < precision) break;
  }
  return h;
}

}  // namespace

double gamma_p(double a, double x) {
  if (x <= 0) return 0;
  return x < a + 1 ? gamma_series(a, x) : 1 - gamma_fraction(a, x);
}

double gamma_q(double a, double x) {
  if (x <= 0) return 1;
  return x < a + 1 ? 1 - gamma_series(a, x) : gamma_fraction(a, x);
}

double log_beta(double a, double b) { return std::lgamma(a) + std::lgamma(b) - std::lgamma(a + b); }

double beta_i(double x, double a, double b) {
  if (x <= 0) return 0;
  if (x >= 1) return 1;
  const double front = std::exp(a * std::log(x) + b * std::log1p(-x) - log_beta(a, b));
  if (x < (a + 1) / (a + b + 2)) return front * beta_fraction(x, a, b) / a;
  return 1 - front * beta_fraction(1 - x, b, a) / b;
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
    const double error = p < 0.5 ? normal_below(x) - p : (1 - p) - normal_below(-x);
    const double u = error / normal_density(x);
    x -= u / (1 + x * u / 2);
  }
  return x;
}

}  // namespace qto::embedded::functions
