#pragma once

/// What worksheet functions rest on of the special functions and distributions of mathematics.
///
/// Nothing here throws: outside a function's domain the result is not a number, beyond the largest
/// number it is infinite, and both are worksheet errors as the result of a formula. Where what lies
/// below and what lies above a value have a function each, each has its digits also where it is
/// small.
namespace qto::embedded::functions {

/// The gamma function and the logarithm of its size.
double gamma_function(double x);
double log_gamma(double x);

/// The gamma distribution with scale 1, a > 0, x >= 0: its density, what lies below and above x,
/// and the x below and above which p lies.
double gamma_density(double x, double a);
double gamma_below(double x, double a);
double gamma_above(double x, double a);
double gamma_quantile(double p, double a);
double gamma_quantile_above(double p, double a);

/// The beta distribution, a, b > 0, 0 <= x <= 1.
double beta_density(double x, double a, double b);
double beta_below(double x, double a, double b);
double beta_quantile(double p, double a, double b);

/// Student's distribution with `degrees` of freedom, a fraction too. By symmetry what lies below t
/// is what lies above -t.
double t_density(double t, double degrees);
double t_above(double t, double degrees);
double t_quantile(double p, double degrees);

/// The F distribution, x >= 0. What lies above is what lies below 1 / x with the degrees exchanged.
double f_density(double x, double d1, double d2);
double f_below(double x, double d1, double d2);
double f_above(double x, double d1, double d2);
double f_quantile(double p, double d1, double d2);
double f_quantile_above(double p, double d1, double d2);

/// The standard normal distribution: its density, what lies below x, and the x below which p lies.
double normal_density(double x);
double normal_below(double x);
double normal_quantile(double p);

/// Counts, all of them whole: k successes in n trials, each a success with probability p; k
/// failures before the n-th success; k events where `mean` are expected; k successes in `drawn` of
/// `population`, which holds `successes`.
double binomial_density(double k, double n, double p);
double binomial_below(double k, double n, double p);
double negative_binomial_density(double k, double n, double p);
double poisson_density(double k, double mean);
double hypergeometric_density(double k, double drawn, double successes, double population);

}  // namespace qto::embedded::functions
