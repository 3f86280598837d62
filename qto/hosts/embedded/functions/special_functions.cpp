#include "qto/hosts/embedded/functions/special_functions.hpp"

#include <boost/math/distributions/fisher_f.hpp>
#include <boost/math/distributions/students_t.hpp>
#include <boost/math/special_functions/beta.hpp>
#include <boost/math/special_functions/erf.hpp>
#include <boost/math/special_functions/gamma.hpp>
#include <cmath>
#include <limits>
#include <numbers>

namespace qto::embedded::functions {

namespace {

namespace math = boost::math;

// Everything is reckoned in long double: with counts of 10^9 the last digits of the arguments
// decide about half of the digits of a result.
using Real = long double;

/// Failures come back as infinite and as no numbers. With no discrete quantiles to search, whole
/// numbers are looked for by who wants them.
using Quiet =
    math::policies::policy<math::policies::domain_error<math::policies::ignore_error>,
                           math::policies::pole_error<math::policies::ignore_error>,
                           math::policies::overflow_error<math::policies::ignore_error>,
                           math::policies::underflow_error<math::policies::ignore_error>,
                           math::policies::denorm_error<math::policies::ignore_error>,
                           math::policies::evaluation_error<math::policies::ignore_error>,
                           math::policies::rounding_error<math::policies::ignore_error>,
                           math::policies::indeterminate_result_error<math::policies::ignore_error>,
                           math::policies::promote_double<false>>;
constexpr Quiet quiet;

using Student = math::students_t_distribution<Real, Quiet>;
using Fisher = math::fisher_f_distribution<Real, Quiet>;

double to_double(Real value) { return static_cast<double>(value); }

Real poisson(Real k, Real mean) {
  if (mean == 0) return k == 0 ? 1 : 0;
  return math::gamma_p_derivative(k + 1, mean, quiet);
}

/// Independent Poisson counts whose sum is known are binomial; n p against k, which decides, is
/// looked at before anything large is taken from anything large.
Real binomial(Real k, Real n, Real p) {
  if (k < 0 || k > n) return 0;
  return poisson(k, n * p) * (poisson(n - k, n * (1 - p)) / poisson(n, n));
}

}  // namespace

double gamma_function(double x) { return to_double(math::tgamma(Real{x}, quiet)); }
double log_gamma(double x) { return to_double(math::lgamma(Real{x}, quiet)); }

double gamma_density(double x, double a) {
  return to_double(math::gamma_p_derivative(Real{a}, Real{x}, quiet));
}
double gamma_below(double x, double a) { return to_double(math::gamma_p(Real{a}, Real{x}, quiet)); }
double gamma_above(double x, double a) { return to_double(math::gamma_q(Real{a}, Real{x}, quiet)); }
double gamma_quantile(double p, double a) {
  return to_double(math::gamma_p_inv(Real{a}, Real{p}, quiet));
}
double gamma_quantile_above(double p, double a) {
  return to_double(math::gamma_q_inv(Real{a}, Real{p}, quiet));
}

double beta_density(double x, double a, double b) {
  return to_double(math::ibeta_derivative(Real{a}, Real{b}, Real{x}, quiet));
}
double beta_below(double x, double a, double b) {
  return to_double(math::ibeta(Real{a}, Real{b}, Real{x}, quiet));
}
double beta_quantile(double p, double a, double b) {
  return to_double(math::ibeta_inv(Real{a}, Real{b}, Real{p}, quiet));
}

double t_density(double t, double degrees) {
  return to_double(math::pdf(Student(degrees), Real{t}));
}
double t_above(double t, double degrees) {
  // Here the general way takes the rest to 1, which has no digits of a small t.
  if (degrees == 1) return to_double(std::atan2(Real{1}, Real{t}) / std::numbers::pi_v<Real>);
  return to_double(math::cdf(math::complement(Student(degrees), Real{t})));
}
double t_quantile(double p, double degrees) {
  return to_double(math::quantile(Student(degrees), Real{p}));
}

double f_density(double x, double d1, double d2) {
  return to_double(math::pdf(Fisher(d1, d2), Real{x}));
}
double f_below(double x, double d1, double d2) {
  return to_double(math::cdf(Fisher(d1, d2), Real{x}));
}
double f_above(double x, double d1, double d2) {
  return to_double(math::cdf(math::complement(Fisher(d1, d2), Real{x})));
}
double f_quantile(double p, double d1, double d2) {
  return to_double(math::quantile(Fisher(d1, d2), Real{p}));
}
double f_quantile_above(double p, double d1, double d2) {
  return to_double(1 / math::quantile(Fisher(d2, d1), Real{p}));
}

double normal_density(double x) { return std::exp(-x * x / 2) / std::sqrt(2 * std::numbers::pi); }
double normal_below(double x) { return std::erfc(-x / std::numbers::sqrt2) / 2; }
double normal_quantile(double p) {
  return to_double(-std::numbers::sqrt2_v<Real> * math::erfc_inv(2 * Real{p}, quiet));
}

double binomial_density(double k, double n, double p) { return to_double(binomial(k, n, p)); }
double binomial_below(double k, double n, double p) {
  if (k < 0) return 0;
  if (k >= n) return 1;
  return to_double(math::ibetac(Real{k} + 1, Real{n} - k, Real{p}, quiet));
}
double negative_binomial_density(double k, double n, double p) {
  if (p == 0 || p == 1) return p == 1 && k == 0 ? 1 : 0;
  return to_double(binomial(n, n + Real{k}, p) * n / (n + Real{k}));
}
double poisson_density(double k, double mean) { return to_double(poisson(k, mean)); }
double hypergeometric_density(double k, double drawn, double successes, double population) {
  const Real p = Real{drawn} / population;
  return to_double(binomial(k, successes, p) * (binomial(drawn - k, population - successes, p) /
                                                binomial(drawn, population, p)));
}

}  // namespace qto::embedded::functions
