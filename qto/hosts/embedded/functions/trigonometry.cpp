#include <cmath>
#include <numbers>

#include "qto/hosts/embedded/functions/families.hpp"
#include "qto/hosts/embedded/functions/scalar_math.hpp"

namespace qto::embedded::functions {

namespace {

using enum Parameter;

/// Angles from here on give #NUM!: their place in the period is lost.
constexpr double largest_angle = 134217728;

template <double (*F)(double)>
Operand of_angle(Call& call) {
  const double angle = call.number(0);
  if (std::fabs(angle) >= largest_angle) return ErrorValue::num;
  return F(angle);
}

/// One over a function of a number; #DIV/0! where the function is zero.
template <double (*F)(double)>
Operand reciprocal_of(Call& call) {
  const double value = F(call.number(0));
  if (value == 0) return ErrorValue::div0;
  return 1 / value;
}

template <double (*F)(double)>
Operand reciprocal_of_angle(Call& call) {
  if (std::fabs(call.number(0)) >= largest_angle) return ErrorValue::num;
  return reciprocal_of<F>(call);
}

Operand fn_atan2(Call& call) {
  const double x = call.number(0);
  const double y = call.number(1);
  if (x == 0 && y == 0) return ErrorValue::div0;
  return std::atan2(y, x);
}

Operand fn_acot(Call& call) { return std::numbers::pi / 2 - std::atan(call.number(0)); }

Operand fn_acoth(Call& call) {
  const double x = call.number(0);
  if (std::fabs(x) <= 1) return ErrorValue::num;
  return std::atanh(1 / x);
}

Operand fn_degrees(Call& call) { return call.number(0) * (180 / std::numbers::pi); }
Operand fn_radians(Call& call) { return call.number(0) * (std::numbers::pi / 180); }

// clang-format off
constexpr FunctionSpec trigonometry_table[] = {
    {"ACOS", 1, 1, plain, {number}, of_number<std::acos>, "number", "the arccosine", "=ACOS(1)",
     "0"},
    {"ACOSH", 1, 1, plain, {number}, of_number<std::acosh>, "number",
     "the inverse hyperbolic cosine", "=ACOSH(1)", "0"},
    {"ACOT", 1, 1, plain, {number}, fn_acot, "number", "the arccotangent, between 0 and pi",
     "=ROUND(ACOT(-1),6)", "2.356194"},
    {"ACOTH", 1, 1, plain, {number}, fn_acoth, "number", "the inverse hyperbolic cotangent",
     "=ROUND(ACOTH(2),6)", "0.549306"},
    {"ASIN", 1, 1, plain, {number}, of_number<std::asin>, "number", "the arcsine", "=ASIN(0)", "0"},
    {"ASINH", 1, 1, plain, {number}, of_number<std::asinh>, "number", "the inverse hyperbolic sine",
     "=ROUND(ASINH(1),6)", "0.881374"},
    {"ATAN", 1, 1, plain, {number}, of_number<std::atan>, "number", "the arctangent",
     "=ROUND(ATAN(1)*4-PI(),12)", "0"},
    {"ATAN2", 2, 2, plain, {number}, fn_atan2, "x, y", "the angle of a point, between -pi and pi",
     "=ROUND(ATAN2(-1,0),6)", "3.141593"},
    {"ATANH", 1, 1, plain, {number}, of_number<std::atanh>, "number",
     "the inverse hyperbolic tangent", "=ATANH(1)", "#NUM!"},
    {"COS", 1, 1, plain, {number}, of_angle<std::cos>, "angle", "the cosine", "=COS(0)", "1"},
    {"COSH", 1, 1, plain, {number}, of_number<std::cosh>, "number", "the hyperbolic cosine",
     "=COSH(0)", "1"},
    {"COT", 1, 1, plain, {number}, reciprocal_of_angle<std::tan>, "angle", "the cotangent",
     "=COT(0)", "#DIV/0!"},
    {"COTH", 1, 1, plain, {number}, reciprocal_of<std::tanh>, "number", "the hyperbolic cotangent",
     "=ROUND(COTH(2),6)", "1.037315"},
    {"CSC", 1, 1, plain, {number}, reciprocal_of_angle<std::sin>, "angle", "the cosecant",
     "=ROUND(CSC(1),6)", "1.188395"},
    {"CSCH", 1, 1, plain, {number}, reciprocal_of<std::sinh>, "number", "the hyperbolic cosecant",
     "=ROUND(CSCH(1),6)", "0.850918"},
    {"DEGREES", 1, 1, plain, {number}, fn_degrees, "angle", "radians as degrees", "=DEGREES(PI())",
     "180"},
    {"RADIANS", 1, 1, plain, {number}, fn_radians, "angle", "degrees as radians",
     "=RADIANS(180)=PI()", "TRUE"},
    {"SEC", 1, 1, plain, {number}, reciprocal_of_angle<std::cos>, "angle", "the secant", "=SEC(0)",
     "1"},
    {"SECH", 1, 1, plain, {number}, reciprocal_of<std::cosh>, "number", "the hyperbolic secant",
     "=SECH(0)", "1"},
    {"SIN", 1, 1, plain, {number}, of_angle<std::sin>, "angle", "the sine", "=SIN(0)", "0"},
    {"SINH", 1, 1, plain, {number}, of_number<std::sinh>, "number", "the hyperbolic sine",
     "=SINH(0)", "0"},
    {"TAN", 1, 1, plain, {number}, of_angle<std::tan>, "angle", "the tangent", "=TAN(0)", "0"},
    {"TANH", 1, 1, plain, {number}, of_number<std::tanh>, "number", "the hyperbolic tangent",
     "=TANH(0)", "0"},
};
// clang-format on
static_assert(well_formed(trigonometry_table));

}  // namespace

std::span<const FunctionSpec> trigonometry_functions() { return trigonometry_table; }

}  // namespace qto::embedded::functions
