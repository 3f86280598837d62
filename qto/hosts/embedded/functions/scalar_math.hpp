#pragma once

#include "qto/hosts/embedded/evaluate/call.hpp"

/// Functions of numbers that need nothing else.
namespace qto::embedded::functions {

/// A function of one number; a result that is not finite becomes #NUM! in the call.
template <double (*F)(double)>
Operand of_number(Call& call) {
  return F(call.number(0));
}

/// x * 10^digits rounded to a whole number, seen with the 15 digits that people see: 1.005 * 100
/// counts as 100.5 although the binary product lies below it.
double round_half_away(double value) noexcept;
double round_down(double value) noexcept;  ///< towards negative infinity
double round_up(double value) noexcept;    ///< towards positive infinity

/// Rounds half away from zero to decimal places; negative places round tens, hundreds, ...
double round_to_places(double value, double places) noexcept;

}  // namespace qto::embedded::functions
