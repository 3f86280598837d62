#include <array>
#include <cmath>

#include "qto/automation/text.hpp"
#include "qto/hosts/embedded/evaluate/call.hpp"
#include "qto/hosts/embedded/functions/families.hpp"

namespace qto::embedded::functions {

namespace {

using enum Parameter;

constexpr std::string_view digits = "0123456789ABCDEFGHIJKLMNOPQRSTUVWXYZ";

/// Numbers of ten digits in two's complement: half of them are negative.
struct Base {
  int radix;
  double modulus;  ///< radix to the power of ten
};
constexpr Base binary{2, 1024};
constexpr Base octal{8, 1073741824};
constexpr Base hexadecimal{16, 1099511627776};

/// The number written in a base, or #NUM!.
Outcome<double> read(std::string_view text, const Base& base) {
  if (text.size() > 10) return ErrorValue::num;
  double number = 0;
  for (const char c : text::upper_ascii(text)) {
    const std::size_t digit = digits.find(c);
    if (digit >= static_cast<std::size_t>(base.radix)) return ErrorValue::num;
    number = number * base.radix + static_cast<double>(digit);
  }
  return number >= base.modulus / 2 ? number - base.modulus : number;
}

std::string write_digits(double number, int radix) {
  std::string text;
  do {
    text.insert(text.begin(), digits[static_cast<std::size_t>(std::fmod(number, radix))]);
    number = std::floor(number / radix);
  } while (number > 0);
  return text;
}

Operand write(Call& call, double number, const Base& base) {
  number = std::trunc(number);
  if (number < -base.modulus / 2 || number >= base.modulus / 2) return ErrorValue::num;
  const double places = call.given(1) ? std::trunc(call.number(1)) : 0;
  if (call.given(1) && (places < 1 || places > 10)) return ErrorValue::num;
  if (number < 0) return write_digits(number + base.modulus, base.radix);
  std::string text = write_digits(number, base.radix);
  if (!call.given(1)) return text;
  if (static_cast<double>(text.size()) > places) return ErrorValue::num;
  return std::string(static_cast<std::size_t>(places) - text.size(), '0') + text;
}

/// The text of a first argument that is to be read as digits.
Outcome<std::string> digits_of(Call& call) { return to_text(call.value(0)); }

template <const Base& from, const Base& to>
Operand fn_convert(Call& call) {
  const auto text = digits_of(call);
  if (!text) return text.error();
  const auto number = read(*text, from);
  return number ? write(call, *number, to) : Operand(number.error());
}

template <const Base& from>
Operand fn_to_decimal(Call& call) {
  const auto text = digits_of(call);
  if (!text) return text.error();
  const auto number = read(*text, from);
  return number ? Operand(*number) : Operand(number.error());
}

template <const Base& to>
Operand fn_from_decimal(Call& call) {
  return write(call, call.number(0), to);
}

Operand fn_base(Call& call) {
  const double number = std::trunc(call.number(0));
  const double radix = std::trunc(call.number(1));
  const double length = std::trunc(call.number(2, 0));
  if (number < 0 || number >= 0x1p53 || radix < 2 || radix > 36 || length < 0 || length > 255)
    return ErrorValue::num;
  std::string text = write_digits(number, static_cast<int>(radix));
  const auto wanted = static_cast<std::size_t>(length);
  if (text.size() < wanted) text.insert(0, wanted - text.size(), '0');
  return text;
}

Operand fn_decimal(Call& call) {
  const double radix = std::trunc(call.number(1));
  if (radix < 2 || radix > 36) return ErrorValue::num;
  const std::string& text = call.text(0);
  if (text.size() > 255) return ErrorValue::value;
  double number = 0;
  for (const char c : text::upper_ascii(text::trim(text))) {
    const std::size_t digit = digits.find(c);
    if (digit >= static_cast<std::size_t>(radix)) return ErrorValue::num;
    number = number * radix + static_cast<double>(digit);
  }
  return number;
}

struct RomanSign {
  int value;
  std::string_view text;
  int least_form;  ///< the simplification from which on the sign is used
};
constexpr RomanSign roman_signs[] = {
    {1000, "M", 0}, {999, "IM", 4}, {995, "VM", 3}, {990, "XM", 2}, {950, "LM", 1},
    {900, "CM", 0}, {500, "D", 0},  {499, "ID", 4}, {495, "VD", 3}, {490, "XD", 2},
    {450, "LD", 1}, {400, "CD", 0}, {100, "C", 0},  {99, "IC", 2},  {95, "VC", 1},
    {90, "XC", 0},  {50, "L", 0},   {49, "IL", 2},  {45, "VL", 1},  {40, "XL", 0},
    {10, "X", 0},   {9, "IX", 0},   {5, "V", 0},    {4, "IV", 0},   {1, "I", 0}};

Operand fn_roman(Call& call) {
  const double number = std::trunc(call.number(0));
  int form = 0;
  if (call.given(1)) {
    const ValueView value = call.value(1);
    const auto given = to_number(value, call.context().dates());
    if (!given) return given.error();
    if (*given < 0 || *given >= 5) return ErrorValue::value;
    form = value.is_boolean() ? (value.boolean() ? 0 : 4) : static_cast<int>(*given);
  }
  if (number < 0 || number > 3999) return ErrorValue::value;
  std::string text;
  int rest = static_cast<int>(number);
  for (const RomanSign& sign : roman_signs)
    while (sign.least_form <= form && rest >= sign.value) {
      text += sign.text;
      rest -= sign.value;
    }
  return text;
}

int roman_value(char c) {
  switch (c) {
    case 'M':
      return 1000;
    case 'D':
      return 500;
    case 'C':
      return 100;
    case 'L':
      return 50;
    case 'X':
      return 10;
    case 'V':
      return 5;
    case 'I':
      return 1;
    default:
      return 0;
  }
}

Operand fn_arabic(Call& call) {
  std::string text = text::upper_ascii(text::trim(call.text(0)));
  if (text.size() > 255) return ErrorValue::value;
  const bool negative = text.starts_with('-');
  if (negative) text.erase(0, 1);
  int sum = 0;
  for (std::size_t i = 0; i < text.size(); ++i) {
    const int value = roman_value(text[i]);
    if (value == 0) return ErrorValue::value;
    const int next = i + 1 < text.size() ? roman_value(text[i + 1]) : 0;
    sum += value < next ? -value : value;
  }
  return static_cast<double>(negative ? -sum : sum);
}

/// The largest number that bits are counted in.
constexpr double bit_limit = 0x1p48;

template <std::uint64_t (*F)(std::uint64_t, std::uint64_t)>
Operand fn_bits(Call& call) {
  for (const int i : {0, 1}) {
    const double number = call.number(i);
    if (number < 0 || number >= bit_limit || number != std::trunc(number)) return ErrorValue::num;
  }
  return static_cast<double>(
      F(static_cast<std::uint64_t>(call.number(0)), static_cast<std::uint64_t>(call.number(1))));
}
std::uint64_t bit_and(std::uint64_t a, std::uint64_t b) { return a & b; }
std::uint64_t bit_or(std::uint64_t a, std::uint64_t b) { return a | b; }
std::uint64_t bit_xor(std::uint64_t a, std::uint64_t b) { return a ^ b; }

template <int direction>
Operand fn_shift(Call& call) {
  const double number = call.number(0);
  const double shift = std::trunc(call.number(1)) * direction;
  if (number < 0 || number >= bit_limit || number != std::trunc(number) || std::fabs(shift) > 53)
    return ErrorValue::num;
  const double result = std::floor(std::ldexp(number, static_cast<int>(shift)));
  return result < bit_limit ? Operand(result) : Operand(ErrorValue::num);
}

Operand fn_delta(Call& call) { return call.number(0) == call.number(1, 0) ? 1.0 : 0.0; }
Operand fn_gestep(Call& call) { return call.number(0) >= call.number(1, 0) ? 1.0 : 0.0; }

// clang-format off
constexpr FunctionSpec number_base_table[] = {
    {"ARABIC", 1, 1, plain, {text}, fn_arabic, "text", "the number of a Roman numeral",
     "=ARABIC(\"MCMXII\")", "1912"},
    {"BASE", 2, 3, plain, {number}, fn_base, "number, radix, [length]", "a number in another base",
     "=BASE(7,2,4)", "0111"},
    {"BIN2DEC", 1, 1, plain, {strict_value}, fn_to_decimal<binary>, "number",
     "a binary number as decimal", "=BIN2DEC(\"1111111111\")", "-1"},
    {"BIN2HEX", 1, 2, plain, {strict_value, strict_number}, fn_convert<binary, hexadecimal>,
     "number, [places]", "a binary number as hexadecimal", "=BIN2HEX(1110,3)", "00E"},
    {"BIN2OCT", 1, 2, plain, {strict_value, strict_number}, fn_convert<binary, octal>,
     "number, [places]", "a binary number as octal", "=BIN2OCT(1001)", "11"},
    {"BITAND", 2, 2, plain, {number}, fn_bits<bit_and>, "number1, number2",
     "the bits that both numbers have", "=BITAND(13,25)", "9"},
    {"BITLSHIFT", 2, 2, plain, {number}, fn_shift<1>, "number, shift", "the bits moved to the left",
     "=BITLSHIFT(4,2)", "16"},
    {"BITOR", 2, 2, plain, {number}, fn_bits<bit_or>, "number1, number2",
     "the bits that either number has", "=BITOR(23,10)", "31"},
    {"BITRSHIFT", 2, 2, plain, {number}, fn_shift<-1>, "number, shift",
     "the bits moved to the right", "=BITRSHIFT(13,2)", "3"},
    {"BITXOR", 2, 2, plain, {number}, fn_bits<bit_xor>, "number1, number2",
     "the bits that one of the numbers has", "=BITXOR(5,3)", "6"},
    {"DEC2BIN", 1, 2, plain, {strict_number}, fn_from_decimal<binary>, "number, [places]",
     "a decimal number as binary", "=DEC2BIN(-2)", "1111111110"},
    {"DEC2HEX", 1, 2, plain, {strict_number}, fn_from_decimal<hexadecimal>, "number, [places]",
     "a decimal number as hexadecimal", "=DEC2HEX(100,4)", "0064"},
    {"DEC2OCT", 1, 2, plain, {strict_number}, fn_from_decimal<octal>, "number, [places]",
     "a decimal number as octal", "=DEC2OCT(58)", "72"},
    {"DECIMAL", 2, 2, plain, {text, number}, fn_decimal, "text, radix",
     "the number that a text denotes in a base", "=DECIMAL(\"FF\",16)", "255"},
    {"DELTA", 1, 2, plain, {strict_number}, fn_delta, "number1, [number2]",
     "1 when both numbers are equal, otherwise 0", "=DELTA(5,5)", "1"},
    {"GESTEP", 1, 2, plain, {strict_number}, fn_gestep, "number, [step]",
     "1 when the number is not below the step, otherwise 0", "=GESTEP(5,4)", "1"},
    {"HEX2BIN", 1, 2, plain, {strict_value, strict_number}, fn_convert<hexadecimal, binary>,
     "number, [places]", "a hexadecimal number as binary", "=HEX2BIN(\"F\",8)", "00001111"},
    {"HEX2DEC", 1, 1, plain, {strict_value}, fn_to_decimal<hexadecimal>, "number",
     "a hexadecimal number as decimal", "=HEX2DEC(\"A5\")", "165"},
    {"HEX2OCT", 1, 2, plain, {strict_value, strict_number}, fn_convert<hexadecimal, octal>,
     "number, [places]", "a hexadecimal number as octal", "=HEX2OCT(\"F\",3)", "017"},
    {"OCT2BIN", 1, 2, plain, {strict_value, strict_number}, fn_convert<octal, binary>,
     "number, [places]", "an octal number as binary", "=OCT2BIN(3,3)", "011"},
    {"OCT2DEC", 1, 1, plain, {strict_value}, fn_to_decimal<octal>, "number",
     "an octal number as decimal", "=OCT2DEC(54)", "44"},
    {"OCT2HEX", 1, 2, plain, {strict_value, strict_number}, fn_convert<octal, hexadecimal>,
     "number, [places]", "an octal number as hexadecimal", "=OCT2HEX(100,4)", "0040"},
    {"ROMAN", 1, 2, plain, {number, value}, fn_roman, "number, [form]", "a Roman numeral",
     "=ROMAN(499,4)", "ID"},
};
// clang-format on
static_assert(well_formed(number_base_table));

}  // namespace

std::span<const FunctionSpec> number_base_functions() { return number_base_table; }

}  // namespace qto::embedded::functions
