#include <charconv>
#include <cmath>
#include <complex>
#include <numbers>

#include "qto/hosts/embedded/evaluate/call.hpp"
#include "qto/hosts/embedded/evaluate/grid.hpp"
#include "qto/hosts/embedded/formats/number_format.hpp"
#include "qto/hosts/embedded/functions/families.hpp"

namespace qto::embedded::functions {

namespace {

using enum Parameter;
using Number = std::complex<double>;

/// A complex number with the letter that it was written with.
struct Written {
  Number value;
  char unit = 'i';
  bool has_unit = false;
};

/// Reads a real number at the start of `text` and moves past it; a bare sign is 1 before a unit.
std::optional<double> take_part(std::string_view& text) {
  std::string_view rest = text;
  double sign = 1;
  if (rest.starts_with('+') || rest.starts_with('-')) {
    sign = rest.front() == '-' ? -1 : 1;
    rest.remove_prefix(1);
  }
  if (rest == "i" || rest == "j") {
    text = rest;
    return sign;
  }
  if (rest.empty() || !(rest.front() == '.' || (rest.front() >= '0' && rest.front() <= '9')))
    return std::nullopt;
  double number = 0;
  const auto parsed = std::from_chars(rest.data(), rest.data() + rest.size(), number);
  if (parsed.ec != std::errc()) return std::nullopt;
  rest.remove_prefix(static_cast<std::size_t>(parsed.ptr - rest.data()));
  text = rest;
  return sign * number;
}

Outcome<Written> read(const ValueView& value) {
  if (value.is_error()) return value.error();
  if (value.is_boolean()) return ErrorValue::value;
  if (value.is_empty()) return Written{};
  if (value.is_number()) return Written{{value.number(), 0}, 'i', false};
  std::string_view text = value.text();
  const auto first = take_part(text);
  if (!first) return ErrorValue::num;
  if (text.empty()) return Written{{*first, 0}, 'i', false};
  if (text == "i" || text == "j") return Written{{0, *first}, text.front(), true};
  if (text.front() != '+' && text.front() != '-') return ErrorValue::num;
  const auto second = take_part(text);
  if (!second || (text != "i" && text != "j")) return ErrorValue::num;
  return Written{{*first, *second}, text.front(), true};
}

Operand write(const Number& value, char unit) {
  if (!std::isfinite(value.real()) || !std::isfinite(value.imag())) return ErrorValue::num;
  const double real = value.real() + 0.0;
  const double imaginary = value.imag() + 0.0;
  if (imaginary == 0) return formats::general_text(real);
  std::string text = real == 0 ? std::string() : formats::general_text(real);
  if (!text.empty() && imaginary > 0) text += '+';
  if (imaginary == -1)
    text += '-';
  else if (imaginary != 1)
    text += formats::general_text(imaginary);
  return text + unit;
}

template <Number (*F)(const Number&)>
Operand of_complex(Call& call) {
  const auto number = read(call.value(0));
  if (!number) return number.error();
  return write(F(number->value), number->unit);
}

template <double (*F)(const Number&)>
Operand real_of_complex(Call& call) {
  const auto number = read(call.value(0));
  if (!number) return number.error();
  return F(number->value);
}

Number one_over(const Number& z) { return Number(1, 0) / z; }

Number sine(const Number& z) { return std::sin(z); }
Number cosine(const Number& z) { return std::cos(z); }
Number tangent(const Number& z) { return std::tan(z); }
Number cotangent(const Number& z) { return one_over(std::tan(z)); }
Number secant(const Number& z) { return one_over(std::cos(z)); }
Number cosecant(const Number& z) { return one_over(std::sin(z)); }
Number hyperbolic_sine(const Number& z) { return std::sinh(z); }
Number hyperbolic_cosine(const Number& z) { return std::cosh(z); }
Number hyperbolic_secant(const Number& z) { return one_over(std::cosh(z)); }
Number hyperbolic_cosecant(const Number& z) { return one_over(std::sinh(z)); }
Number exponential(const Number& z) { return std::exp(z); }
Number square_root(const Number& z) { return std::sqrt(z); }
Number conjugate(const Number& z) { return std::conj(z); }
Number logarithm(const Number& z) { return std::log(z); }
Number logarithm2(const Number& z) { return std::log(z) / std::numbers::ln2; }
Number logarithm10(const Number& z) { return std::log(z) / std::numbers::ln10; }
double magnitude(const Number& z) { return std::abs(z); }
double real_part(const Number& z) { return z.real(); }
double imaginary_part(const Number& z) { return z.imag(); }

Operand fn_imargument(Call& call) {
  const auto number = read(call.value(0));
  if (!number) return number.error();
  if (number->value == Number()) return ErrorValue::div0;
  return std::arg(number->value);
}

Operand fn_complex(Call& call) {
  std::string unit = call.given(2) ? call.text(2) : "i";
  if (unit.empty()) unit.assign(1, 'i');
  if (unit != "i" && unit != "j") return ErrorValue::value;
  return write({call.number(0), call.number(1)}, unit.front());
}

Operand fn_impower(Call& call) {
  const auto base = read(call.value(0));
  if (!base) return base.error();
  const auto power = to_number(call.value(1), call.context().dates());
  if (!power) return power.error();
  if (base->value == Number()) {
    if (*power <= 0) return ErrorValue::num;
    return write({}, base->unit);
  }
  return write(std::polar(std::pow(std::abs(base->value), *power), std::arg(base->value) * *power),
               base->unit);
}

/// Two numbers and the unit they share; #VALUE! when one has i and the other j.
template <class Combine>
Operand combine(const Written& a, const Written& b, Combine&& f) {
  if (a.has_unit && b.has_unit && a.unit != b.unit) return ErrorValue::value;
  return write(f(a.value, b.value), a.has_unit ? a.unit : b.unit);
}

Operand fn_imdiv(Call& call) {
  const auto a = read(call.value(0));
  if (!a) return a.error();
  const auto b = read(call.value(1));
  if (!b) return b.error();
  if (b->value == Number()) return ErrorValue::num;
  return combine(*a, *b, [](const Number& x, const Number& y) { return x / y; });
}

Operand fn_imsub(Call& call) {
  const auto a = read(call.value(0));
  if (!a) return a.error();
  const auto b = read(call.value(1));
  if (!b) return b.error();
  return combine(*a, *b, [](const Number& x, const Number& y) { return x - y; });
}

template <bool product>
Operand fn_fold(Call& call) {
  Written total{{product ? 1.0 : 0.0, 0}, 'i', false};
  std::optional<ErrorValue> error;
  const auto take = [&](int, int, const ValueView& value) {
    const auto number = read(value);
    if (!number) {
      error = number.error();
    } else if (number->has_unit && total.has_unit && number->unit != total.unit) {
      error = ErrorValue::value;
    } else {
      total.value = product ? total.value * number->value : total.value + number->value;
      if (number->has_unit) {
        total.unit = number->unit;
        total.has_unit = true;
      }
    }
    return !error;
  };
  for (const Operand& argument : call.from(0)) {
    if (argument.areas().size() > 1) return ErrorValue::value;
    Grid(call.context(), argument).for_each_by_row(take);
    if (error) return *error;
  }
  return write(total.value, total.unit);
}

// clang-format off
constexpr FunctionSpec complex_table[] = {
    {"COMPLEX", 2, 3, plain, {strict_number, strict_number, text}, fn_complex,
     "real, imaginary, [unit]", "a complex number as text", "=COMPLEX(3,-1)", "3-i"},
    {"IMABS", 1, 1, plain, {strict_value}, real_of_complex<magnitude>, "number",
     "the absolute value of a complex number", "=IMABS(\"3+4i\")", "5"},
    {"IMAGINARY", 1, 1, plain, {strict_value}, real_of_complex<imaginary_part>, "number",
     "the imaginary part", "=IMAGINARY(\"3-4i\")", "-4"},
    {"IMARGUMENT", 1, 1, plain, {strict_value}, fn_imargument, "number",
     "the angle of a complex number", "=ROUND(IMARGUMENT(\"3+4i\"),6)", "0.927295"},
    {"IMCONJUGATE", 1, 1, plain, {strict_value}, of_complex<conjugate>, "number",
     "the complex conjugate", "=IMCONJUGATE(\"3+4i\")", "3-4i"},
    {"IMCOS", 1, 1, plain, {strict_value}, of_complex<cosine>, "number",
     "the cosine of a complex number", "=IMCOS(0)", "1"},
    {"IMCOSH", 1, 1, plain, {value}, of_complex<hyperbolic_cosine>, "number",
     "the hyperbolic cosine of a complex number", "=IMCOSH(0)", "1"},
    {"IMCOT", 1, 1, plain, {value}, of_complex<cotangent>, "number",
     "the cotangent of a complex number", "=IMCOT(0)", "#NUM!"},
    {"IMCSC", 1, 1, plain, {value}, of_complex<cosecant>, "number",
     "the cosecant of a complex number", "=IMCSC(0)", "#NUM!"},
    {"IMCSCH", 1, 1, plain, {value}, of_complex<hyperbolic_cosecant>, "number",
     "the hyperbolic cosecant of a complex number", "=IMCSCH(0)", "#NUM!"},
    {"IMDIV", 2, 2, plain, {strict_value}, fn_imdiv, "number1, number2",
     "the quotient of two complex numbers", "=IMDIV(\"-238+240i\",\"10+24i\")", "5+12i"},
    {"IMEXP", 1, 1, plain, {strict_value}, of_complex<exponential>, "number",
     "e raised to a complex power", "=IMEXP(0)", "1"},
    {"IMLN", 1, 1, plain, {strict_value}, of_complex<logarithm>, "number",
     "the natural logarithm of a complex number", "=IMLN(1)", "0"},
    {"IMLOG10", 1, 1, plain, {strict_value}, of_complex<logarithm10>, "number",
     "the logarithm to the base 10 of a complex number", "=IMLOG10(1)", "0"},
    {"IMLOG2", 1, 1, plain, {strict_value}, of_complex<logarithm2>, "number",
     "the logarithm to the base 2 of a complex number", "=IMLOG2(1)", "0"},
    {"IMPOWER", 2, 2, plain, {strict_value}, fn_impower, "number, power",
     "a complex number raised to a power", "=IMREAL(IMPOWER(\"4\",2))", "16"},
    {"IMPRODUCT", 1, any_count, plain, {values}, fn_fold<true>, "number1, ...",
     "the product of complex numbers", "=IMPRODUCT(\"3+4i\",\"5-3i\")", "27+11i"},
    {"IMREAL", 1, 1, plain, {strict_value}, real_of_complex<real_part>, "number", "the real part",
     "=IMREAL(\"6-9i\")", "6"},
    {"IMSEC", 1, 1, plain, {value}, of_complex<secant>, "number", "the secant of a complex number",
     "=IMSEC(0)", "1"},
    {"IMSECH", 1, 1, plain, {value}, of_complex<hyperbolic_secant>, "number",
     "the hyperbolic secant of a complex number", "=IMSECH(0)", "1"},
    {"IMSIN", 1, 1, plain, {strict_value}, of_complex<sine>, "number",
     "the sine of a complex number", "=IMSIN(0)", "0"},
    {"IMSINH", 1, 1, plain, {value}, of_complex<hyperbolic_sine>, "number",
     "the hyperbolic sine of a complex number", "=IMSINH(0)", "0"},
    {"IMSQRT", 1, 1, plain, {strict_value}, of_complex<square_root>, "number",
     "the square root of a complex number", "=IMSQRT(\"-4\")", "2i"},
    {"IMSUB", 2, 2, plain, {strict_value}, fn_imsub, "number1, number2",
     "the difference of two complex numbers", "=IMSUB(\"13+4i\",\"5+3i\")", "8+i"},
    {"IMSUM", 1, any_count, plain, {values}, fn_fold<false>, "number1, ...",
     "the sum of complex numbers", "=IMSUM(\"3+4i\",\"5-3i\")", "8+i"},
    {"IMTAN", 1, 1, plain, {value}, of_complex<tangent>, "number",
     "the tangent of a complex number", "=IMTAN(0)", "0"},
};
// clang-format on
static_assert(well_formed(complex_table));

}  // namespace

std::span<const FunctionSpec> complex_functions() { return complex_table; }

}  // namespace qto::embedded::functions
