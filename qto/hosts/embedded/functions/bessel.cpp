#include <cmath>
#include <limits>
#include <stdexcept>

#include "qto/hosts/embedded/evaluate/call.hpp"
#include "qto/hosts/embedded/functions/families.hpp"

#ifdef _WIN32  // the run-time has them, its header keeps them from standard C++
extern "C" double _jn(int order, double x);
extern "C" double _yn(int order, double x);
#endif

namespace qto::embedded::functions {

namespace {

using enum Parameter;

/// Orders beyond this are not calculated: the functions are 0 or infinite there unless x is as
/// large.
constexpr double largest_order = 1e5;

template <double (*F)(int, double), bool second_kind>
Operand fn_bessel(Call& call) {
  const double order = std::trunc(call.number(1));
  const double x = call.number(0);
  if (order < 0 || (second_kind && x <= 0)) return ErrorValue::num;
  if (order > largest_order) {
    if (second_kind || std::fabs(x) > order / 2) return ErrorValue::num;
    return 0.0;
  }
  return F(static_cast<int>(order), x);
}

#ifdef _WIN32
double first_kind(int order, double x) { return ::_jn(order, x); }
double second_kind(int order, double x) { return ::_yn(order, x); }
#else
double first_kind(int order, double x) { return ::jn(order, x); }
double second_kind(int order, double x) { return ::yn(order, x); }
#endif

constexpr double infinite = std::numeric_limits<double>::infinity();
/// Beyond this e^x is infinite and e^-x is 0.
constexpr double largest_exponent = 750;

/// The library gives up by exceptions where an order is far above x: the first kind is 0 there and
/// the second infinite.
double modified_first_kind(int order, double x) {
  if (std::fabs(x) > largest_exponent) return infinite;
  try {
    const double value = std::cyl_bessel_i(order, std::fabs(x));
    return x < 0 && order % 2 == 1 ? -value : value;
  } catch (const std::runtime_error&) {
    return 0;
  }
}

double modified_second_kind(int order, double x) {
  if (x > largest_exponent + order) return 0;
  try {
    return std::cyl_bessel_k(order, x);
  } catch (const std::runtime_error&) {
    return infinite;
  }
}

// clang-format off
constexpr FunctionSpec bessel_table[] = {
    {"BESSELI", 2, 2, plain, {strict_number}, fn_bessel<modified_first_kind, false>, "x, order",
     "the modified Bessel function of the first kind", "=ROUND(BESSELI(1.5,1),6)", "0.981666"},
    {"BESSELJ", 2, 2, plain, {strict_number}, fn_bessel<first_kind, false>, "x, order",
     "the Bessel function of the first kind", "=ROUND(BESSELJ(1.9,2),6)", "0.329926"},
    {"BESSELK", 2, 2, plain, {strict_number}, fn_bessel<modified_second_kind, true>, "x, order",
     "the modified Bessel function of the second kind", "=ROUND(BESSELK(1.5,1),6)", "0.277388"},
    {"BESSELY", 2, 2, plain, {strict_number}, fn_bessel<second_kind, true>, "x, order",
     "the Bessel function of the second kind", "=ROUND(BESSELY(2.5,1),6)", "0.145918"},
};
// clang-format on
static_assert(well_formed(bessel_table));

}  // namespace

std::span<const FunctionSpec> bessel_functions() { return bessel_table; }

}  // namespace qto::embedded::functions
