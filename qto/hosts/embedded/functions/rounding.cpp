#include <cmath>

#include "qto/hosts/embedded/functions/families.hpp"
#include "qto/hosts/embedded/functions/scalar_math.hpp"

namespace qto::embedded::functions {

namespace {

using enum Parameter;

/// Relative noise of a product of two rounded factors.
constexpr double noise = 0x1p-51;

enum class Direction { half_away, up, down };

double round_magnitude(double magnitude, Direction direction) {
  switch (direction) {
    case Direction::half_away:
      return round_half_away(magnitude);
    case Direction::up:
      return round_up(magnitude);
    default:
      return round_down(magnitude);
  }
}

/// Rounds by magnitude: up is away from zero, down towards it.
double round_places(double value, double places, Direction direction) noexcept {
  if (value == 0 || !std::isfinite(value)) return value;
  places = std::trunc(places);
  // Beyond these, nothing is left to round, or nothing is left at all.
  if (places > 300) return value;
  if (places < -308) return direction == Direction::up ? HUGE_VAL : 0.0;
  const double magnitude = std::fabs(value);
  const double power = std::pow(10, std::fabs(places));
  const double scaled = places < 0 ? magnitude / power : magnitude * power;
  if (scaled >= 0x1p52) return value;
  const double whole = round_magnitude(scaled, direction);
  const double result = places < 0 ? whole * power : whole / power;
  return std::copysign(result, value);
}

Operand fn_round(Call& call) {
  return round_places(call.number(0), call.number(1), Direction::half_away);
}
Operand fn_roundup(Call& call) {
  return round_places(call.number(0), call.number(1), Direction::up);
}
Operand fn_rounddown(Call& call) {
  return round_places(call.number(0), call.number(1, 0), Direction::down);
}

Operand fn_mround(Call& call) {
  const double number = call.number(0);
  const double multiple = call.number(1);
  if (number == 0 || multiple == 0) return 0.0;
  if ((number < 0) != (multiple < 0)) return ErrorValue::num;
  return round_half_away(number / multiple) * multiple;
}

Operand fn_ceiling(Call& call) {
  const double number = call.number(0);
  const double step = call.number(1);
  if (number == 0 || step == 0) return 0.0;
  if (number > 0 && step < 0) return ErrorValue::num;
  return round_up(number / step) * step;
}

Operand fn_floor(Call& call) {
  const double number = call.number(0);
  const double step = call.number(1);
  if (number == 0) return 0.0;
  if (step == 0) return ErrorValue::div0;
  if (number > 0 && step < 0) return ErrorValue::num;
  return round_down(number / step) * step;
}

/// The multiple of |step| at or above the number; `away` sends negative numbers down.
Operand ceiling_of(double number, double step, bool away) {
  step = std::fabs(step);
  if (number == 0 || step == 0) return 0.0;
  const double quotient = number / step;
  return (number < 0 && away ? round_down(quotient) : round_up(quotient)) * step;
}

Operand floor_of(double number, double step, bool towards_zero) {
  step = std::fabs(step);
  if (number == 0 || step == 0) return 0.0;
  const double quotient = number / step;
  return (number < 0 && towards_zero ? round_up(quotient) : round_down(quotient)) * step;
}

double step_of(Call& call) { return call.given(1) ? call.number(1) : 1.0; }

Operand fn_ceiling_math(Call& call) {
  return ceiling_of(call.number(0), step_of(call), call.number(2, 0) != 0);
}
Operand fn_floor_math(Call& call) {
  return floor_of(call.number(0), step_of(call), call.number(2, 0) != 0);
}
Operand fn_ceiling_precise(Call& call) { return ceiling_of(call.number(0), step_of(call), false); }
Operand fn_floor_precise(Call& call) { return floor_of(call.number(0), step_of(call), false); }

Operand fn_even(Call& call) {
  const double number = call.number(0);
  return std::copysign(std::ceil(std::fabs(number) / 2) * 2, number);
}

Operand fn_odd(Call& call) {
  const double number = call.number(0);
  return std::copysign(std::ceil((std::fabs(number) - 1) / 2) * 2 + 1, number);
}

// clang-format off
constexpr FunctionSpec rounding_table[] = {
    {"CEILING", 2, 2, plain, {number}, fn_ceiling, "number, significance",
     "rounded away from zero to a multiple", "=CEILING(2.5,1)", "3"},
    {"CEILING.MATH", 1, 3, plain, {number}, fn_ceiling_math, "number, [significance], [mode]",
     "rounded up to a multiple; with a mode, negative numbers away from zero",
     "=CEILING.MATH(-5.5,2)", "-4"},
    {"CEILING.PRECISE", 1, 2, plain, {number}, fn_ceiling_precise, "number, [significance]",
     "rounded up to a multiple, whatever the signs", "=CEILING.PRECISE(-4.1,2)", "-4"},
    {"ECMA.CEILING", 1, 2, plain, {number}, fn_ceiling_precise, "number, [significance]",
     "rounded up to a multiple, whatever the signs", "=ECMA.CEILING(4.3,2)", "6"},
    {"EVEN", 1, 1, plain, {number}, fn_even, "number", "rounded away from zero to an even number",
     "=EVEN(1.5)", "2"},
    {"FLOOR", 2, 2, plain, {number}, fn_floor, "number, significance",
     "rounded towards zero to a multiple", "=FLOOR(3.7,2)", "2"},
    {"FLOOR.MATH", 1, 3, plain, {number}, fn_floor_math, "number, [significance], [mode]",
     "rounded down to a multiple; with a mode, negative numbers towards zero",
     "=FLOOR.MATH(-8.1,2)", "-10"},
    {"FLOOR.PRECISE", 1, 2, plain, {number}, fn_floor_precise, "number, [significance]",
     "rounded down to a multiple, whatever the signs", "=FLOOR.PRECISE(-3.2,-1)", "-4"},
    {"INT", 1, 1, plain, {number}, of_number<std::floor>, "number",
     "rounded down to a whole number", "=INT(-8.9)", "-9"},
    {"ISO.CEILING", 1, 2, plain, {number}, fn_ceiling_precise, "number, [significance]",
     "rounded up to a multiple, whatever the signs", "=ISO.CEILING(4.3,2)", "6"},
    {"MROUND", 2, 2, plain, {strict_number}, fn_mround, "number, multiple",
     "rounded to the nearest multiple", "=MROUND(10,3)", "9"},
    {"ODD", 1, 1, plain, {number}, fn_odd, "number", "rounded away from zero to an odd number",
     "=ODD(1.5)", "3"},
    {"ROUND", 2, 2, plain, {number}, fn_round, "number, digits",
     "rounded to decimal places, halves away from zero", "=ROUND(2.675,2)", "2.68"},
    {"ROUNDDOWN", 2, 2, plain, {number}, fn_rounddown, "number, digits",
     "rounded to decimal places towards zero", "=ROUNDDOWN(-3.19,1)", "-3.1"},
    {"ROUNDUP", 2, 2, plain, {number}, fn_roundup, "number, digits",
     "rounded to decimal places away from zero", "=ROUNDUP(3.1,0)", "4"},
    {"TRUNC", 1, 2, plain, {number}, fn_rounddown, "number, [digits]",
     "cut off after decimal places", "=TRUNC(-8.9)", "-8"},
};
// clang-format on
static_assert(well_formed(rounding_table));

}  // namespace

double round_half_away(double value) noexcept {
  const double magnitude = std::fabs(value);
  return std::copysign(std::floor(magnitude + magnitude * noise + 0.5), value);
}

double round_down(double value) noexcept {
  const double nearest = std::round(value);
  return std::fabs(value - nearest) <= std::fabs(value) * noise ? nearest : std::floor(value);
}

double round_up(double value) noexcept { return -round_down(-value); }

double round_to_places(double value, double places) noexcept {
  return round_places(value, places, Direction::half_away);
}

std::span<const FunctionSpec> rounding_functions() { return rounding_table; }

}  // namespace qto::embedded::functions
