#pragma once

#include <span>

namespace qto::embedded::functions {

/// The arithmetic mean; 0 of nothing.
double mean(std::span<const double> numbers) noexcept;
/// The sum of squared distances from the mean.
double squared_deviations(std::span<const double> numbers) noexcept;

}  // namespace qto::embedded::functions
