#pragma once

#include <cstdint>
#include <vector>

#include "qto/hosts/embedded/evaluate/operand.hpp"

namespace qto::embedded::functions {

/// The aggregates by the codes that SUBTOTAL and AGGREGATE give them.
enum class Aggregate : std::uint8_t {
  average = 1,
  count,
  counta,
  max,
  min,
  product,
  stdev_s,
  stdev_p,
  sum,
  var_s,
  var_p,
  median,
  mode,
  large,
  small,
  percentile_inc,
  quartile_inc,
  percentile_exc,
  quartile_exc,
};

/// What an aggregate works on: the numbers, and how many values of any type there were.
struct Sample {
  std::vector<double> numbers;
  std::int64_t values = 0;
};

/// The aggregate of a sample; `k` is the second argument of the last six.
Operand aggregate(Aggregate kind, Sample sample, double k = 0);

/// The values that occur most often, in the order in which they first occur; none when nothing
/// occurs twice.
std::vector<double> most_frequent(const std::vector<double>& numbers);

}  // namespace qto::embedded::functions
