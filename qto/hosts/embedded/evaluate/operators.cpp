#include "qto/hosts/embedded/evaluate/operators.hpp"

#include <cmath>

#include "qto/hosts/embedded/evaluate/compare.hpp"

namespace qto::embedded {

namespace {

Variant compare(formula::Operator op, const ValueView& left, const ValueView& right) {
  if (left.is_error()) return left.error();
  if (right.is_error()) return right.error();
  const bool noise =
      left.is_number() && right.is_number() && nearly_equal(left.number(), right.number());
  if (op == formula::Operator::equal || op == formula::Operator::not_equal)
    return (noise || equal_values(left, right)) == (op == formula::Operator::equal);
  const int order = noise ? 0 : compare_values(left, right);
  switch (op) {
    case formula::Operator::less:
      return order < 0;
    case formula::Operator::less_equal:
      return order <= 0;
    case formula::Operator::greater:
      return order > 0;
    default:
      return order >= 0;
  }
}

Variant join(const ValueView& left, const ValueView& right) {
  auto a = to_text(left);
  if (!a) return a.error();
  const auto b = to_text(right);
  if (!b) return b.error();
  return *a + *b;
}

Variant arithmetic(formula::Operator op, double a, double b) {
  switch (op) {
    case formula::Operator::add:
      return finite(a + b);
    case formula::Operator::subtract:
      return finite(a - b);
    case formula::Operator::multiply:
      return finite(a * b);
    case formula::Operator::divide:
      if (b == 0) return ErrorValue::div0;
      return finite(a / b);
    default:
      return raise_to_power(a, b);
  }
}

}  // namespace

Variant finite(double number) {
  if (!std::isfinite(number)) return ErrorValue::num;
  return number + 0.0;  // -0.0 + 0.0 is 0.0
}

double snap_sum(double left, double right) noexcept {
  const double sum = left + right;
  return std::fabs(sum) < std::fabs(left) * 0x1p-48 ? 0.0 : sum;
}

Variant raise_to_power(double base, double exponent) {
  if (base == 0) {
    if (exponent == 0) return ErrorValue::num;
    if (exponent < 0) return ErrorValue::div0;
  }
  if (base < 0 && exponent != std::trunc(exponent)) {
    const double root = 1 / exponent;
    if (root == std::trunc(root) && std::fmod(std::fabs(root), 2) == 1)
      return finite(-std::pow(-base, exponent));
  }
  return finite(std::pow(base, exponent));
}

Variant apply_unary(formula::Operator op, const ValueView& value, const DateSettings& dates) {
  if (op == formula::Operator::plus) return value.is_empty() ? Variant(0.0) : value.to_variant();
  const auto number = to_number(value, dates);
  if (!number) return number.error();
  return finite(op == formula::Operator::percent ? *number / 100 : -*number);
}

Variant apply_binary(formula::Operator op, const ValueView& left, const ValueView& right,
                     const DateSettings& dates) {
  if (op == formula::Operator::join) return join(left, right);
  if (op >= formula::Operator::equal) return compare(op, left, right);
  const auto a = to_number(left, dates);
  if (!a) return a.error();
  const auto b = to_number(right, dates);
  if (!b) return b.error();
  return arithmetic(op, *a, *b);
}

}  // namespace qto::embedded
