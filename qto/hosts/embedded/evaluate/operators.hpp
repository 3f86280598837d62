#pragma once

#include "qto/formula/syntax_tree.hpp"
#include "qto/hosts/embedded/evaluate/coercion.hpp"

/// The operators of formulas over single values. Errors pass through, the left one first.
namespace qto::embedded {

/// plus, minus, percent.
Variant apply_unary(formula::Operator op, const ValueView& value, const DateSettings& dates);
/// Arithmetic, "&" and comparisons.
Variant apply_binary(formula::Operator op, const ValueView& left, const ValueView& right,
                     const DateSettings& dates);
/// A base raised to an exponent: 0^0 is #NUM!, 0 to a negative power #DIV/0!; odd roots of negative
/// numbers exist.
Variant raise_to_power(double base, double exponent);
/// The number, or #NUM! when it is not finite. A negative zero becomes zero.
Variant finite(double number);
/// True for the operators that apply_binary() takes.
constexpr bool is_value_operator(formula::Operator op) {
  return op >= formula::Operator::add && op <= formula::Operator::greater_equal;
}
/// The sum of two numbers (their difference when the second is negated) as a cell shows it: what
/// remains of operands that cancel out but for binary noise is zero.
double snap_sum(double left, double right) noexcept;

}  // namespace qto::embedded
