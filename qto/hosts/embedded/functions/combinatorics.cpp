#include <cmath>

#include "qto/hosts/embedded/functions/families.hpp"
#include "qto/hosts/embedded/functions/numbers.hpp"
#include "qto/hosts/embedded/functions/scalar_math.hpp"

namespace qto::embedded::functions {

namespace {

using enum Parameter;

/// Whole numbers up to here are exact; GCD and LCM refuse larger ones.
constexpr double largest_whole = 0x1p53;

double factorial(double n) {
  double product = 1;
  for (int i = 2; i <= static_cast<int>(n); ++i) product *= i;
  return product;
}

/// n over k for whole numbers 0 <= k <= n.
double binomial(double n, double k) {
  k = std::min(k, n - k);
  double result = 1;
  for (double i = 1; i <= k && std::isfinite(result); ++i) result = result * (n - k + i) / i;
  return result < largest_whole ? std::round(result) : result;
}

Operand fn_fact(Call& call) {
  const double n = std::trunc(call.number(0));
  if (n < 0 || n > 170) return ErrorValue::num;
  return factorial(n);
}

Operand fn_factdouble(Call& call) {
  const double n = std::trunc(call.number(0));
  if (call.number(0) < -1 || n > 300) return ErrorValue::num;
  double product = 1;
  for (int i = static_cast<int>(n); i > 1; i -= 2) product *= i;
  return product;
}

Operand fn_combin(Call& call) {
  const double n = std::trunc(call.number(0));
  const double k = std::trunc(call.number(1));
  if (n < 0 || k < 0 || n < k) return ErrorValue::num;
  return binomial(n, k);
}

Operand fn_combina(Call& call) {
  const double n = std::trunc(call.number(0));
  const double k = std::trunc(call.number(1));
  if (n < 0 || k < 0 || (n == 0 && k > 0)) return ErrorValue::num;
  return k == 0 ? 1.0 : binomial(n + k - 1, k);
}

Operand fn_permut(Call& call) {
  const double n = std::trunc(call.number(0));
  const double k = std::trunc(call.number(1));
  if (n < 0 || k < 0 || n < k) return ErrorValue::num;
  double product = 1;
  for (double i = 0; i < k && std::isfinite(product); ++i) product *= n - i;
  return product;
}

Operand fn_permutationa(Call& call) {
  const double n = std::trunc(call.number(0));
  const double k = std::trunc(call.number(1));
  if (n < 0 || k < 0) return ErrorValue::num;
  return std::pow(n, k);
}

/// Adds one value to a list of whole numbers; gives the error that it is instead.
std::optional<ErrorValue> add_whole(std::vector<double>& whole, const ValueView& value,
                                    const DateSettings& dates) {
  if (value.is_boolean()) return ErrorValue::value;
  const auto number = to_number(value, dates);
  if (!number) return number.error();
  if (*number < 0 || *number >= largest_whole) return ErrorValue::num;
  whole.push_back(std::trunc(*number));
  return std::nullopt;
}

/// The whole numbers of the arguments, texts read as numbers; anything else is an error.
Outcome<std::vector<double>> whole_numbers(Call& call) {
  std::vector<double> whole;
  std::optional<ErrorValue> error;
  for (const Operand& argument : call.from(0)) {
    if (argument.is_missing()) return ErrorValue::na;
    if (argument.areas().size() > 1) return ErrorValue::value;
    Grid(call.context(), argument).for_each_by_row([&](int, int, const ValueView& value) {
      error = add_whole(whole, value, call.context().dates());
      return !error;
    });
    if (error) return *error;
  }
  return whole;
}

double common_divisor(double a, double b) {
  while (b != 0) a = std::exchange(b, std::fmod(a, b));
  return a;
}

Operand fn_gcd(Call& call) {
  const auto numbers = whole_numbers(call);
  if (!numbers) return numbers.error();
  double divisor = 0;
  for (const double number : *numbers) divisor = common_divisor(divisor, number);
  return divisor;
}

Operand fn_lcm(Call& call) {
  const auto numbers = whole_numbers(call);
  if (!numbers) return numbers.error();
  double multiple = 1;
  for (const double number : *numbers) {
    if (number == 0) return 0.0;
    multiple = multiple / common_divisor(multiple, number) * number;
    if (multiple >= largest_whole) return ErrorValue::num;
  }
  return multiple;
}

Operand fn_multinomial(Call& call) {
  const auto numbers = whole_numbers(call);
  if (!numbers) return numbers.error();
  double total = 0;
  double result = 1;
  for (const double number : *numbers) {
    total += number;
    if (total > 170) return ErrorValue::num;
    result *= binomial(total, number);
  }
  return result;
}

// clang-format off
constexpr FunctionSpec combinatorics_table[] = {
    {"COMBIN", 2, 2, plain, {number}, fn_combin, "number, chosen",
     "the number of choices without repetition", "=COMBIN(8,2)", "28"},
    {"COMBINA", 2, 2, plain, {number}, fn_combina, "number, chosen",
     "the number of choices with repetition", "=COMBINA(4,3)", "20"},
    {"FACT", 1, 1, plain, {number}, fn_fact, "number", "the factorial", "=FACT(5)", "120"},
    {"FACTDOUBLE", 1, 1, plain, {strict_number}, fn_factdouble, "number",
     "the product of every second number down to 1 or 2", "=FACTDOUBLE(7)", "105"},
    {"GCD", 1, any_count, plain, {values}, fn_gcd, "number1, ...", "the greatest common divisor",
     "=GCD(24,36)", "12"},
    {"LCM", 1, any_count, plain, {values}, fn_lcm, "number1, ...", "the least common multiple",
     "=LCM(24,36)", "72"},
    {"MULTINOMIAL", 1, any_count, plain, {values}, fn_multinomial, "number1, ...",
     "the number of ways to share out a set", "=MULTINOMIAL(2,3,4)", "1260"},
    {"PERMUT", 2, 2, plain, {number}, fn_permut, "number, chosen",
     "the number of ordered choices without repetition", "=PERMUT(100,3)", "970200"},
    {"PERMUTATIONA", 2, 2, plain, {number}, fn_permutationa, "number, chosen",
     "the number of ordered choices with repetition", "=PERMUTATIONA(3,2)", "9"},
};
// clang-format on
static_assert(well_formed(combinatorics_table));

}  // namespace

std::span<const FunctionSpec> combinatorics_functions() { return combinatorics_table; }

}  // namespace qto::embedded::functions
