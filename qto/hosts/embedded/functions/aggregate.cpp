#include "qto/hosts/embedded/functions/aggregate.hpp"

#include <algorithm>
#include <cmath>
#include <unordered_map>

#include "qto/hosts/embedded/functions/moments.hpp"
#include "qto/hosts/embedded/functions/quantiles.hpp"

namespace qto::embedded::functions {

namespace {

Operand variance(const std::vector<double>& numbers, bool sample, bool root) {
  const double degrees = static_cast<double>(numbers.size()) - (sample ? 1 : 0);
  if (degrees <= 0) return ErrorValue::div0;
  const double variance = squared_deviations(numbers) / degrees;
  return root ? std::sqrt(variance) : variance;
}

Operand quartile(std::vector<double>& numbers, double k, bool inclusive) {
  const double quarter = std::trunc(k);
  if (quarter < 0 || quarter > 4) return ErrorValue::num;
  return inclusive ? percentile_inclusive(numbers, quarter / 4)
                   : percentile_exclusive(numbers, quarter / 4);
}

}  // namespace

std::vector<double> most_frequent(const std::vector<double>& numbers) {
  std::unordered_map<double, int> counts;
  int most = 0;
  for (const double number : numbers) most = std::max(most, ++counts[number]);
  std::vector<double> result;
  if (most < 2) return result;
  for (const double number : numbers) {
    int& count = counts[number];
    if (count == most) result.push_back(number);
    count = 0;
  }
  return result;
}

Operand aggregate(Aggregate kind, Sample sample, double k) {
  std::vector<double>& numbers = sample.numbers;
  if (kind == Aggregate::median || kind > Aggregate::mode)
    std::sort(numbers.begin(), numbers.end());
  switch (kind) {
    case Aggregate::average:
      return numbers.empty() ? Operand(ErrorValue::div0) : Operand(mean(numbers));
    case Aggregate::count:
      return static_cast<double>(numbers.size());
    case Aggregate::counta:
      return static_cast<double>(sample.values);
    case Aggregate::max:
      return numbers.empty() ? 0.0 : *std::max_element(numbers.begin(), numbers.end());
    case Aggregate::min:
      return numbers.empty() ? 0.0 : *std::min_element(numbers.begin(), numbers.end());
    case Aggregate::product: {
      double product = numbers.empty() ? 0 : 1;
      for (const double number : numbers) product *= number;
      return product;
    }
    case Aggregate::stdev_s:
      return variance(numbers, true, true);
    case Aggregate::stdev_p:
      return variance(numbers, false, true);
    case Aggregate::sum: {
      double sum = 0;
      for (const double number : numbers) sum += number;
      return sum;
    }
    case Aggregate::var_s:
      return variance(numbers, true, false);
    case Aggregate::var_p:
      return variance(numbers, false, false);
    case Aggregate::median:
      return median_of(numbers);
    case Aggregate::mode: {
      const auto modes = most_frequent(numbers);
      return modes.empty() ? Operand(ErrorValue::na) : Operand(modes.front());
    }
    case Aggregate::large:
      return kth(numbers, k, true);
    case Aggregate::small:
      return kth(numbers, k, false);
    case Aggregate::percentile_inc:
      return percentile_inclusive(numbers, k);
    case Aggregate::quartile_inc:
      return quartile(numbers, k, true);
    case Aggregate::percentile_exc:
      return percentile_exclusive(numbers, k);
    case Aggregate::quartile_exc:
      return quartile(numbers, k, false);
  }
  return ErrorValue::value;
}

}  // namespace qto::embedded::functions
