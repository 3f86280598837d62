#pragma once

#include <cmath>
#include <optional>

namespace qto::embedded::functions {

/// A root of f near `guess` by the secant method, kept above `lower`; nothing when it does not
/// settle within 100 steps.
template <class F>
std::optional<double> find_root(F&& f, double guess, double lower) {
  double x0 = guess;
  double y0 = f(x0);
  double x1 = guess + (guess == 0 ? 0.001 : std::fabs(guess) * 0.01);
  for (int step = 0; step < 100; ++step) {
    const double y1 = f(x1);
    if (!std::isfinite(y1) || !std::isfinite(y0)) return std::nullopt;
    if (y1 == 0 || std::fabs(x1 - x0) < 1e-15 * (1 + std::fabs(x1))) return x1;
    if (y1 == y0) return std::fabs(y1) < 1e-7 ? std::optional(x1) : std::nullopt;
    double next = x1 - y1 * (x1 - x0) / (y1 - y0);
    if (next <= lower) next = (x1 + lower) / 2;
    x0 = x1;
    y0 = y1;
    x1 = next;
  }
  return std::nullopt;
}

}  // namespace qto::embedded::functions
