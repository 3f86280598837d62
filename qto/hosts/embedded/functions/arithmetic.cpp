#include <cmath>
#include <numbers>

#include "qto/hosts/embedded/evaluate/operators.hpp"
#include "qto/hosts/embedded/functions/families.hpp"
#include "qto/hosts/embedded/functions/scalar_math.hpp"

namespace qto::embedded::functions {

namespace {

using enum Parameter;

Operand fn_abs(Call& call) { return std::fabs(call.number(0)); }
Operand fn_pi(Call&) { return std::numbers::pi; }
Operand fn_power(Call& call) { return raise_to_power(call.number(0), call.number(1)); }

Operand fn_sign(Call& call) {
  const double number = call.number(0);
  return number > 0 ? 1.0 : number < 0 ? -1.0 : 0.0;
}

Operand fn_sqrtpi(Call& call) { return std::sqrt(call.number(0) * std::numbers::pi); }

Operand fn_mod(Call& call) {
  const double number = call.number(0);
  const double divisor = call.number(1);
  if (divisor == 0) return ErrorValue::div0;
  const double quotient = number / divisor;
  if (std::fabs(quotient) >= 0x1p50) return ErrorValue::num;
  const double rest = number - divisor * std::floor(quotient);
  // The rest takes the divisor's sign; anything else is noise of the product.
  return (rest < 0) != (divisor < 0) ? 0.0 : rest;
}

Operand fn_quotient(Call& call) {
  if (call.number(1) == 0) return ErrorValue::div0;
  return std::trunc(call.number(0) / call.number(1));
}

Operand fn_ln(Call& call) {
  return call.number(0) > 0 ? Operand(std::log(call.number(0))) : Operand(ErrorValue::num);
}

Operand fn_log10(Call& call) {
  return call.number(0) > 0 ? Operand(std::log10(call.number(0))) : Operand(ErrorValue::num);
}

Operand fn_log(Call& call) {
  const double number = call.number(0);
  const double base = call.number(1, 10);
  if (number <= 0 || base <= 0) return ErrorValue::num;
  if (base == 1) return ErrorValue::div0;
  if (base == 10) return std::log10(number);
  if (base == 2) return std::log2(number);
  return std::log(number) / std::log(base);
}

Operand fn_rand(Call& call) { return call.context().environment().random(); }

Operand fn_randbetween(Call& call) {
  const double low = std::ceil(call.number(0));
  const double high = std::floor(call.number(1));
  if (high < low) return ErrorValue::num;
  return low + std::floor(call.context().environment().random() * (high - low + 1));
}

// clang-format off
constexpr FunctionSpec arithmetic_table[] = {
    {"ABS", 1, 1, plain, {number}, fn_abs, "number", "the value without its sign", "=ABS(-2)", "2"},
    {"EXP", 1, 1, plain, {number}, of_number<std::exp>, "number", "e raised to a power", "=EXP(0)",
     "1"},
    {"LN", 1, 1, plain, {number}, fn_ln, "number", "the natural logarithm", "=LN(EXP(3))", "3"},
    {"LOG", 1, 2, plain, {number}, fn_log, "number, [base]", "the logarithm to a base, 10 if none",
     "=LOG(8,2)", "3"},
    {"LOG10", 1, 1, plain, {number}, fn_log10, "number", "the logarithm to the base 10",
     "=LOG10(1000)", "3"},
    {"MOD", 2, 2, plain, {number}, fn_mod, "number, divisor",
     "what a division leaves, with the divisor's sign", "=MOD(-3,2)", "1"},
    {"PI", 0, 0, plain, {}, fn_pi, "", "the ratio of a circle's circumference to its diameter",
     "=ROUND(PI(),4)", "3.1416"},
    {"POWER", 2, 2, plain, {number}, fn_power, "number, power", "a number raised to a power",
     "=POWER(2,10)", "1024"},
    {"QUOTIENT", 2, 2, plain, {strict_number}, fn_quotient, "numerator, denominator",
     "the whole part of a division", "=QUOTIENT(-10,3)", "-3"},
    {"RAND", 0, 0, changes_always, {}, fn_rand, "", "a random number from 0 to below 1",
     "=RAND()<1", "TRUE"},
    {"RANDBETWEEN", 2, 2, changes_always, {strict_number}, fn_randbetween, "bottom, top",
     "a random whole number between two", "=RANDBETWEEN(3,3)", "3"},
    {"SIGN", 1, 1, plain, {number}, fn_sign, "number", "1, 0 or -1 as the number's sign",
     "=SIGN(-0.1)", "-1"},
    {"SQRT", 1, 1, plain, {number}, of_number<std::sqrt>, "number", "the square root", "=SQRT(16)",
     "4"},
    {"SQRTPI", 1, 1, plain, {strict_number}, fn_sqrtpi, "number",
     "the square root of a number times pi", "=ROUND(SQRTPI(1),6)", "1.772454"},
};
// clang-format on
static_assert(well_formed(arithmetic_table));

}  // namespace

std::span<const FunctionSpec> arithmetic_functions() { return arithmetic_table; }

}  // namespace qto::embedded::functions
