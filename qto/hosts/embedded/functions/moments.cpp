#include "qto/hosts/embedded/functions/moments.hpp"

namespace qto::embedded::functions {

double mean(std::span<const double> numbers) noexcept {
  double sum = 0;
  for (const double number : numbers) sum += number;
  return numbers.empty() ? 0 : sum / static_cast<double>(numbers.size());
}

double squared_deviations(std::span<const double> numbers) noexcept {
  const double center = mean(numbers);
  double sum = 0;
  for (const double number : numbers) sum += (number - center) * (number - center);
  return sum;
}

}  // namespace qto::embedded::functions
