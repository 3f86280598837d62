#include <algorithm>
#include <cmath>

#include "qto/hosts/embedded/evaluate/call.hpp"
#include "qto/hosts/embedded/functions/families.hpp"
#include "qto/hosts/embedded/functions/special_functions.hpp"

namespace qto::embedded::functions {

namespace {

using enum Parameter;

/// Counts beyond this are not whole numbers any more.
constexpr double largest_count = 9007199254740992;

bool is_probability(double p) { return p >= 0 && p <= 1; }

// Normal and log-normal.

Operand fn_norm_dist(Call& call) {
  const double deviation = call.number(2);
  if (deviation <= 0) return ErrorValue::num;
  const double z = (call.number(0) - call.number(1)) / deviation;
  return call.logical(3) ? normal_below(z) : normal_density(z) / deviation;
}

Operand fn_norm_inv(Call& call) {
  const double p = call.number(0);
  if (p <= 0 || p >= 1 || call.number(2) <= 0) return ErrorValue::num;
  return call.number(1) + call.number(2) * normal_quantile(p);
}

Operand fn_norm_s_dist(Call& call) {
  return call.logical(1) ? normal_below(call.number(0)) : normal_density(call.number(0));
}
Operand fn_normsdist(Call& call) { return normal_below(call.number(0)); }

Operand fn_norm_s_inv(Call& call) {
  const double p = call.number(0);
  if (p <= 0 || p >= 1) return ErrorValue::num;
  return normal_quantile(p);
}

Operand fn_phi(Call& call) { return normal_density(call.number(0)); }
Operand fn_gauss(Call& call) { return std::erf(call.number(0) / std::sqrt(2.0)) / 2; }

Operand log_normal(Call& call, bool cumulative) {
  const double x = call.number(0);
  const double deviation = call.number(2);
  if (x <= 0 || deviation <= 0) return ErrorValue::num;
  const double z = (std::log(x) - call.number(1)) / deviation;
  return cumulative ? normal_below(z) : normal_density(z) / (x * deviation);
}
Operand fn_lognorm_dist(Call& call) { return log_normal(call, call.logical(3)); }
Operand fn_lognormdist(Call& call) { return log_normal(call, true); }

Operand fn_lognorm_inv(Call& call) {
  const double p = call.number(0);
  if (p <= 0 || p >= 1 || call.number(2) <= 0) return ErrorValue::num;
  return std::exp(call.number(1) + call.number(2) * normal_quantile(p));
}

// Exponential, Weibull, gamma, beta.

Operand fn_expon_dist(Call& call) {
  const double x = call.number(0);
  const double rate = call.number(1);
  if (x < 0 || rate <= 0) return ErrorValue::num;
  return call.logical(2) ? -std::expm1(-rate * x) : rate * std::exp(-rate * x);
}

Operand fn_weibull_dist(Call& call) {
  const double x = call.number(0);
  const double shape = call.number(1);
  const double scale = call.number(2);
  if (x < 0 || shape <= 0 || scale <= 0) return ErrorValue::num;
  const double power = std::pow(x / scale, shape);
  if (call.logical(3)) return -std::expm1(-power);
  return shape / std::pow(scale, shape) * std::pow(x, shape - 1) * std::exp(-power);
}

Operand fn_gamma_dist(Call& call) {
  const double x = call.number(0);
  const double shape = call.number(1);
  const double scale = call.number(2);
  if (x < 0 || shape <= 0 || scale <= 0) return ErrorValue::num;
  if (call.logical(3)) return gamma_below(x / scale, shape);
  if (x == 0)
    return shape == 1 ? Operand(1 / scale) : shape < 1 ? Operand(ErrorValue::num) : Operand(0.0);
  return gamma_density(x / scale, shape) / scale;
}

Operand fn_gamma_inv(Call& call) {
  const double p = call.number(0);
  const double shape = call.number(1);
  const double scale = call.number(2);
  if (!(p >= 0 && p < 1) || shape <= 0 || scale <= 0) return ErrorValue::num;
  if (p == 0) return 0.0;
  return scale * gamma_quantile(p, shape);
}

Operand fn_gamma(Call& call) {
  const double x = call.number(0);
  if (x == 0 || (x < 0 && x == std::trunc(x))) return ErrorValue::num;
  return gamma_function(x);
}

Operand fn_gammaln(Call& call) {
  if (call.number(0) <= 0) return ErrorValue::num;
  return log_gamma(call.number(0));
}

/// A beta distribution stretched over an interval.
struct Beta {
  double a, b, low, high;
  bool valid() const { return a > 0 && b > 0 && low < high; }
};
Beta beta_of(Call& call, int first_bound) {
  return {call.number(1), call.number(2), call.given(first_bound) ? call.number(first_bound) : 0,
          call.given(first_bound + 1) ? call.number(first_bound + 1) : 1};
}

Operand beta_value(Call& call, const Beta& beta, bool cumulative) {
  const double x = call.number(0);
  if (!beta.valid() || x < beta.low || x > beta.high) return ErrorValue::num;
  const double t = (x - beta.low) / (beta.high - beta.low);
  if (cumulative) return beta_below(t, beta.a, beta.b);
  if ((t == 0 && beta.a < 1) || (t == 1 && beta.b < 1)) return ErrorValue::num;
  return beta_density(t, beta.a, beta.b) / (beta.high - beta.low);
}
Operand fn_beta_dist(Call& call) { return beta_value(call, beta_of(call, 4), call.logical(3)); }
Operand fn_betadist(Call& call) { return beta_value(call, beta_of(call, 3), true); }

Operand fn_beta_inv(Call& call) {
  const Beta beta = beta_of(call, 3);
  const double p = call.number(0);
  if (!beta.valid() || p <= 0 || p >= 1) return ErrorValue::num;
  return beta.low + beta_quantile(p, beta.a, beta.b) * (beta.high - beta.low);
}

// Counting.

Operand fn_binom_dist(Call& call) {
  const double k = std::trunc(call.number(0));
  const double n = std::trunc(call.number(1));
  const double p = call.number(2);
  if (k < 0 || n < k || !is_probability(p)) return ErrorValue::num;
  return call.logical(3) ? binomial_below(k, n, p) : binomial_density(k, n, p);
}

Operand fn_binom_dist_range(Call& call) {
  const double n = std::trunc(call.number(0));
  const double p = call.number(1);
  const double low = std::trunc(call.number(2));
  const double high = call.given(3) ? std::trunc(call.number(3)) : low;
  if (n < 0 || n > largest_count || !is_probability(p) || low < 0 || low > n || high < low ||
      high > n)
    return ErrorValue::num;
  double sum = 0;
  if (high - low > 10000) return binomial_below(high, n, p) - binomial_below(low - 1, n, p);
  for (double k = low; k <= high; ++k) sum += binomial_density(k, n, p);
  return sum;
}

Operand fn_binom_inv(Call& call) {
  const double n = std::trunc(call.number(0));
  const double p = call.number(1);
  const double alpha = call.number(2);
  if (n < 0 || n > largest_count || p <= 0 || p >= 1 || alpha <= 0 || alpha >= 1)
    return ErrorValue::num;
  double low = 0;
  double high = n;
  while (low < high) {
    const double middle = std::floor((low + high) / 2);
    if (binomial_below(middle, n, p) >= alpha)
      high = middle;
    else
      low = middle + 1;
  }
  return low;
}

Operand negative_binomial(Call& call, bool cumulative) {
  const double failures = std::trunc(call.number(0));
  const double successes = std::trunc(call.number(1));
  const double p = call.number(2);
  if (failures < 0 || successes < 1 || !is_probability(p)) return ErrorValue::num;
  return cumulative ? beta_below(p, successes, failures + 1)
                    : negative_binomial_density(failures, successes, p);
}
Operand fn_negbinom_dist(Call& call) { return negative_binomial(call, call.logical(3)); }
Operand fn_negbinomdist(Call& call) { return negative_binomial(call, false); }

Operand fn_poisson_dist(Call& call) {
  const double k = std::trunc(call.number(0));
  const double mean = call.number(1);
  if (k < 0 || mean < 0) return ErrorValue::num;
  return call.logical(2) ? gamma_above(mean, k + 1) : poisson_density(k, mean);
}

Operand hypergeometric(Call& call, bool cumulative) {
  const double k = std::trunc(call.number(0));
  const double drawn = std::trunc(call.number(1));
  const double successes = std::trunc(call.number(2));
  const double population = std::trunc(call.number(3));
  if (population > 1e10) return ErrorValue::num;
  if (k < 0 || drawn <= 0 || drawn > population || successes <= 0 || successes > population ||
      population <= 0 || k > std::min(drawn, successes))
    return ErrorValue::num;
  const double least = std::max(0.0, drawn - population + successes);
  if (k < least && !cumulative) return ErrorValue::num;
  const auto density = [&](double i) {
    return hypergeometric_density(i, drawn, successes, population);
  };
  if (!cumulative) return density(k);
  // Away from the mean the terms soon vanish.
  constexpr double negligible = 1e-20;
  double sum = 0;
  if (k <= drawn * successes / population) {
    for (double i = k; i >= least; --i) {
      const double term = density(i);
      sum += term;
      if (term <= sum * negligible) break;
    }
    return sum;
  }
  for (double i = k + 1; i <= std::min(drawn, successes); ++i) {
    const double term = density(i);
    sum += term;
    if (term <= sum * negligible) break;
  }
  return std::clamp(1 - sum, 0.0, 1.0);
}
Operand fn_hypgeom_dist(Call& call) { return hypergeometric(call, call.logical(4)); }
Operand fn_hypgeomdist(Call& call) { return hypergeometric(call, false); }

Operand fn_erf(Call& call) {
  if (!call.given(1)) return std::erf(call.number(0));
  return std::erf(call.number(1)) - std::erf(call.number(0));
}
Operand fn_erfc(Call& call) { return std::erfc(call.number(0)); }

// clang-format off
constexpr FunctionSpec distribution_table[] = {
    {"BETA.DIST", 4, 6, plain, {number, number, number, logical, number, number}, fn_beta_dist,
     "x, alpha, beta, cumulative, [low], [high]", "the beta distribution",
     "=ROUND(BETA.DIST(2,8,10,TRUE,1,3),6)", "0.685471"},
    {"BETA.INV", 3, 5, plain, {number}, fn_beta_inv, "probability, alpha, beta, [low], [high]",
     "the inverse of the beta distribution", "=ROUND(BETA.INV(0.685470581,8,10,1,3),6)", "2"},
    {"BETADIST", 3, 5, plain, {number}, fn_betadist, "x, alpha, beta, [low], [high]",
     "the cumulative beta distribution", "=ROUND(BETADIST(2,8,10,1,3),6)", "0.685471"},
    {"BETAINV", 3, 5, plain, {number}, fn_beta_inv, "probability, alpha, beta, [low], [high]",
     "the inverse of the beta distribution", "=ROUND(BETAINV(0.685470581,8,10,1,3),6)", "2"},
    {"BINOM.DIST", 4, 4, plain, {number, number, number, logical}, fn_binom_dist,
     "successes, trials, probability, cumulative", "the binomial distribution",
     "=ROUND(BINOM.DIST(6,10,0.5,FALSE),6)", "0.205078"},
    {"BINOM.DIST.RANGE", 3, 4, plain, {number}, fn_binom_dist_range,
     "trials, probability, successes, [successes2]", "the probability of a number of successes",
     "=ROUND(BINOM.DIST.RANGE(60,0.75,48),6)", "0.083975"},
    {"BINOM.INV", 3, 3, plain, {number}, fn_binom_inv, "trials, probability, alpha",
     "the smallest number of successes that reaches a probability", "=BINOM.INV(6,0.5,0.75)", "4"},
    {"BINOMDIST", 4, 4, plain, {number, number, number, logical}, fn_binom_dist,
     "successes, trials, probability, cumulative", "the binomial distribution",
     "=ROUND(BINOMDIST(6,10,0.5,FALSE),6)", "0.205078"},
    {"CRITBINOM", 3, 3, plain, {number}, fn_binom_inv, "trials, probability, alpha",
     "the smallest number of successes that reaches a probability", "=CRITBINOM(6,0.5,0.75)", "4"},
    {"ERF", 1, 2, plain, {strict_number}, fn_erf, "lower, [upper]", "the error function",
     "=ROUND(ERF(0.745),6)", "0.707929"},
    {"ERF.PRECISE", 1, 1, plain, {number}, fn_erf, "x", "the error function",
     "=ROUND(ERF.PRECISE(1),6)", "0.842701"},
    {"ERFC", 1, 1, plain, {strict_number}, fn_erfc, "x", "one less the error function",
     "=ROUND(ERFC(1),6)", "0.157299"},
    {"ERFC.PRECISE", 1, 1, plain, {number}, fn_erfc, "x", "one less the error function",
     "=ROUND(ERFC.PRECISE(1),6)", "0.157299"},
    {"EXPON.DIST", 3, 3, plain, {number, number, logical}, fn_expon_dist, "x, rate, cumulative",
     "the exponential distribution", "=ROUND(EXPON.DIST(0.2,10,TRUE),6)", "0.864665"},
    {"EXPONDIST", 3, 3, plain, {number, number, logical}, fn_expon_dist, "x, rate, cumulative",
     "the exponential distribution", "=ROUND(EXPONDIST(0.2,10,TRUE),6)", "0.864665"},
    {"GAMMA", 1, 1, plain, {number}, fn_gamma, "x", "the gamma function", "=GAMMA(5)", "24"},
    {"GAMMA.DIST", 4, 4, plain, {number, number, number, logical}, fn_gamma_dist,
     "x, alpha, beta, cumulative", "the gamma distribution",
     "=ROUND(GAMMA.DIST(10.00001131,9,2,TRUE),6)", "0.068094"},
    {"GAMMA.INV", 3, 3, plain, {number}, fn_gamma_inv, "probability, alpha, beta",
     "the inverse of the gamma distribution", "=ROUND(GAMMA.INV(0.068094,9,2),4)", "10"},
    {"GAMMADIST", 4, 4, plain, {number, number, number, logical}, fn_gamma_dist,
     "x, alpha, beta, cumulative", "the gamma distribution",
     "=ROUND(GAMMADIST(10.00001131,9,2,TRUE),6)", "0.068094"},
    {"GAMMAINV", 3, 3, plain, {number}, fn_gamma_inv, "probability, alpha, beta",
     "the inverse of the gamma distribution", "=ROUND(GAMMAINV(0.068094,9,2),4)", "10"},
    {"GAMMALN", 1, 1, plain, {number}, fn_gammaln, "x", "the logarithm of the gamma function",
     "=ROUND(GAMMALN(4),6)", "1.791759"},
    {"GAMMALN.PRECISE", 1, 1, plain, {number}, fn_gammaln, "x",
     "the logarithm of the gamma function", "=ROUND(GAMMALN.PRECISE(4),6)", "1.791759"},
    {"GAUSS", 1, 1, plain, {number}, fn_gauss, "z",
     "the probability between the mean and z deviations", "=ROUND(GAUSS(2),6)", "0.47725"},
    {"HYPGEOM.DIST", 5, 5, plain, {number, number, number, number, logical}, fn_hypgeom_dist,
     "successes, drawn, successes_in_all, population, cumulative",
     "the hypergeometric distribution", "=ROUND(HYPGEOM.DIST(1,4,8,20,TRUE),6)", "0.465428"},
    {"HYPGEOMDIST", 4, 4, plain, {number}, fn_hypgeomdist,
     "successes, drawn, successes_in_all, population", "the hypergeometric distribution",
     "=ROUND(HYPGEOMDIST(1,4,8,20),6)", "0.363261"},
    {"LOGINV", 3, 3, plain, {number}, fn_lognorm_inv, "probability, mean, deviation",
     "the inverse of the log-normal distribution", "=ROUND(LOGINV(0.039084,3.5,1.2),4)", "4"},
    {"LOGNORM.DIST", 4, 4, plain, {number, number, number, logical}, fn_lognorm_dist,
     "x, mean, deviation, cumulative", "the log-normal distribution",
     "=ROUND(LOGNORM.DIST(4,3.5,1.2,TRUE),6)", "0.039084"},
    {"LOGNORM.INV", 3, 3, plain, {number}, fn_lognorm_inv, "probability, mean, deviation",
     "the inverse of the log-normal distribution", "=ROUND(LOGNORM.INV(0.039084,3.5,1.2),4)", "4"},
    {"LOGNORMDIST", 3, 3, plain, {number}, fn_lognormdist, "x, mean, deviation",
     "the cumulative log-normal distribution", "=ROUND(LOGNORMDIST(4,3.5,1.2),6)", "0.039084"},
    {"NEGBINOM.DIST", 4, 4, plain, {number, number, number, logical}, fn_negbinom_dist,
     "failures, successes, probability, cumulative", "the negative binomial distribution",
     "=ROUND(NEGBINOM.DIST(10,5,0.25,FALSE),6)", "0.055049"},
    {"NEGBINOMDIST", 3, 3, plain, {number}, fn_negbinomdist, "failures, successes, probability",
     "the negative binomial distribution", "=ROUND(NEGBINOMDIST(10,5,0.25),6)", "0.055049"},
    {"NORM.DIST", 4, 4, plain, {number, number, number, logical}, fn_norm_dist,
     "x, mean, deviation, cumulative", "the normal distribution",
     "=ROUND(NORM.DIST(42,40,1.5,TRUE),6)", "0.908789"},
    {"NORM.INV", 3, 3, plain, {number}, fn_norm_inv, "probability, mean, deviation",
     "the inverse of the normal distribution", "=ROUND(NORM.INV(0.908789,40,1.5),4)", "42"},
    {"NORM.S.DIST", 2, 2, plain, {number, logical}, fn_norm_s_dist, "z, cumulative",
     "the standard normal distribution", "=ROUND(NORM.S.DIST(1.333333,TRUE),6)", "0.908789"},
    {"NORM.S.INV", 1, 1, plain, {number}, fn_norm_s_inv, "probability",
     "the inverse of the standard normal distribution", "=ROUND(NORM.S.INV(0.975),6)", "1.959964"},
    {"NORMDIST", 4, 4, plain, {number, number, number, logical}, fn_norm_dist,
     "x, mean, deviation, cumulative", "the normal distribution",
     "=ROUND(NORMDIST(42,40,1.5,TRUE),6)", "0.908789"},
    {"NORMINV", 3, 3, plain, {number}, fn_norm_inv, "probability, mean, deviation",
     "the inverse of the normal distribution", "=ROUND(NORMINV(0.908789,40,1.5),4)", "42"},
    {"NORMSDIST", 1, 1, plain, {number}, fn_normsdist, "z",
     "the cumulative standard normal distribution", "=NORMSDIST(0)", "0.5"},
    {"NORMSINV", 1, 1, plain, {number}, fn_norm_s_inv, "probability",
     "the inverse of the standard normal distribution", "=ROUND(NORMSINV(0.975),6)", "1.959964"},
    {"PHI", 1, 1, plain, {number}, fn_phi, "x", "the density of the standard normal distribution",
     "=ROUND(PHI(0.75),6)", "0.301137"},
    {"POISSON", 3, 3, plain, {number, number, logical}, fn_poisson_dist, "x, mean, cumulative",
     "the Poisson distribution", "=ROUND(POISSON(2,5,TRUE),6)", "0.124652"},
    {"POISSON.DIST", 3, 3, plain, {number, number, logical}, fn_poisson_dist, "x, mean, cumulative",
     "the Poisson distribution", "=ROUND(POISSON.DIST(2,5,FALSE),6)", "0.084224"},
    {"WEIBULL", 4, 4, plain, {number, number, number, logical}, fn_weibull_dist,
     "x, alpha, beta, cumulative", "the Weibull distribution", "=ROUND(WEIBULL(105,20,100,TRUE),6)",
     "0.929581"},
    {"WEIBULL.DIST", 4, 4, plain, {number, number, number, logical}, fn_weibull_dist,
     "x, alpha, beta, cumulative", "the Weibull distribution",
     "=ROUND(WEIBULL.DIST(105,20,100,FALSE),6)", "0.035589"},
};
// clang-format on
static_assert(well_formed(distribution_table));

}  // namespace

std::span<const FunctionSpec> distribution_functions() { return distribution_table; }

}  // namespace qto::embedded::functions
