#include <array>
#include <cmath>

#include "qto/automation/text.hpp"
#include "qto/hosts/embedded/evaluate/call.hpp"
#include "qto/hosts/embedded/formats/number_format.hpp"
#include "qto/hosts/embedded/functions/families.hpp"
#include "qto/hosts/embedded/functions/scalar_math.hpp"

namespace qto::embedded::functions {

namespace {

using enum Parameter;

/// What the codes 128 to 159 stand for in Windows' Western code page.
constexpr std::array<char16_t, 32> western = {
    0x20AC, 0x81,   0x201A, 0x0192, 0x201E, 0x2026, 0x2020, 0x2021, 0x02C6, 0x2030, 0x0160,
    0x2039, 0x0152, 0x8D,   0x017D, 0x8F,   0x90,   0x2018, 0x2019, 0x201C, 0x201D, 0x2022,
    0x2013, 0x2014, 0x02DC, 0x2122, 0x0161, 0x203A, 0x0153, 0x9D,   0x017E, 0x0178};

Operand fn_char(Call& call) {
  const double code = std::trunc(call.number(0));
  if (code < 1 || code > 255) return ErrorValue::value;
  auto unit = static_cast<char16_t>(code);
  if (unit >= 128 && unit < 160) unit = western[unit - 128];
  return text::from_utf16({&unit, 1});
}

Operand fn_code(Call& call) {
  const std::u16string units = text::to_utf16(call.text(0));
  if (units.empty()) return ErrorValue::value;
  const char16_t unit = units.front();
  if (unit < 128 || (unit >= 160 && unit < 256)) return static_cast<double>(unit);
  for (std::size_t i = 0; i < western.size(); ++i)
    if (western[i] == unit) return static_cast<double>(128 + i);
  return static_cast<double>('?');
}

Operand fn_unichar(Call& call) {
  const double number = std::trunc(call.number(0));
  if (number < 1 || number > 0x10FFFF) return ErrorValue::value;
  const auto code = static_cast<char32_t>(number);
  if (code >= 0xD800 && code < 0xE000) return ErrorValue::na;
  std::u16string units;
  if (code < 0x10000) {
    units.push_back(static_cast<char16_t>(code));
  } else {
    units.push_back(static_cast<char16_t>(0xD800 + ((code - 0x10000) >> 10)));
    units.push_back(static_cast<char16_t>(0xDC00 + ((code - 0x10000) & 0x3FF)));
  }
  return text::from_utf16(units);
}

Operand fn_unicode(Call& call) {
  const std::u16string units = text::to_utf16(call.text(0));
  if (units.empty()) return ErrorValue::value;
  if (units.size() > 1 && units[0] >= 0xD800 && units[0] < 0xDC00)
    return static_cast<double>(0x10000 + ((units[0] - 0xD800) << 10) + (units[1] - 0xDC00));
  return static_cast<double>(units[0]);
}

Operand fn_value(Call& call) {
  const ValueView value = call.value(0);
  if (value.is_boolean()) return ErrorValue::value;
  const auto number = to_number(value, call.context().dates());
  return number ? Operand(*number) : Operand(number.error());
}

Operand fn_text(Call& call) {
  const ValueView value = call.value(0);
  const std::string& code = call.text(1);
  if (value.is_boolean()) return *to_text(value);
  const auto number = to_number(value, call.context().dates());
  if (code.empty()) return number ? Operand("") : Operand(value.to_variant());
  const auto format = formats::NumberFormat::parse(code);
  if (!format.is_valid()) return ErrorValue::value;
  if (!number) return format.format_text(value.text());
  auto shown = format.try_format(*number, call.context().book().date1904);
  if (!shown) return ErrorValue::value;
  return *std::move(shown);
}

/// A number with decimal places, after rounding; `head` goes before the digits.
Operand with_decimals(Call& call, std::string_view head, bool grouping, std::string_view tail) {
  const double places = std::trunc(call.number(1, 2));
  if (places > 127) return ErrorValue::value;
  const double rounded = round_to_places(call.number(0), places);
  std::string digits = grouping ? "#,##0" : "0";
  if (places > 0) digits += "." + std::string(static_cast<std::size_t>(places), '0');
  const std::string positive = std::string(head) + digits;
  const std::string code = tail.empty() ? positive : positive + ";(" + positive + ")";
  return formats::NumberFormat::parse(code).format(rounded, false);
}

Operand fn_fixed(Call& call) { return with_decimals(call, "", !call.logical(2, false), ""); }
Operand fn_dollar(Call& call) { return with_decimals(call, "$", true, "()"); }

/// The first character of an argument; nothing when it is empty.
char separator(Call& call, int position, char fallback) {
  if (position >= call.count()) return fallback;
  return call.text(position).empty() ? '\0' : call.text(position).front();
}

Operand fn_numbervalue(Call& call) {
  const char decimal = separator(call, 1, '.');
  const char group = separator(call, 2, ',');
  if (decimal == '\0' || group == '\0' || decimal == group) return ErrorValue::value;
  std::string digits;
  int percents = 0;
  bool fraction = false;
  for (const char c : call.text(0)) {
    if (c == ' ' || c == '\t' || c == '\n') continue;
    if (c == '%') {
      ++percents;
      continue;
    }
    // Signs of hundredths stand behind the number, inside brackets or outside.
    if (percents > 0 && c != ')') return ErrorValue::value;
    if (c == group && fraction) return ErrorValue::value;
    if (c == decimal && std::exchange(fraction, true)) return ErrorValue::value;
    if (c != group) digits += c == decimal ? '.' : c;
  }
  if (digits.empty()) return 0.0;
  const auto number = to_number(std::string_view(digits), call.context().dates());
  if (!number) return number.error();
  return *number / std::pow(100, percents);
}

// clang-format off
constexpr FunctionSpec text_conversion_table[] = {
    {"CHAR", 1, 1, plain, {number}, fn_char, "code", "the character of a code from 1 to 255",
     "=CHAR(65)", "A"},
    {"CODE", 1, 1, plain, {text}, fn_code, "text", "the code of the first character",
     "=CODE(\"A\")", "65"},
    {"DOLLAR", 1, 2, plain, {number}, fn_dollar, "number, [decimals]",
     "a number as an amount of money", "=DOLLAR(-1234.567,2)", "($1,234.57)"},
    {"FIXED", 1, 3, plain, {number, number, logical}, fn_fixed, "number, [decimals], [no_commas]",
     "a number with decimal places as text", "=FIXED(1234.567,1)", "1,234.6"},
    {"NUMBERVALUE", 1, 3, plain, {text}, fn_numbervalue,
     "text, [decimal_separator], [group_separator]", "a text read with given separators",
     "=NUMBERVALUE(\"1.234,5\",\",\",\".\")", "1234.5"},
    {"TEXT", 2, 2, plain, {value, text}, fn_text, "value, format",
     "a value shown in a number format", "=TEXT(1234.5,\"#,##0.00\")", "1,234.50"},
    {"UNICHAR", 1, 1, plain, {number}, fn_unichar, "number", "the character of a Unicode number",
     "=UNICHAR(8364)", "€"},
    {"UNICODE", 1, 1, plain, {text}, fn_unicode, "text",
     "the Unicode number of the first character", "=UNICODE(\"€\")", "8364"},
    {"VALUE", 1, 1, plain, {value}, fn_value, "text", "the number that a text reads as",
     "=VALUE(\"12.5%\")", "0.125"},
};
// clang-format on
static_assert(well_formed(text_conversion_table));

}  // namespace

std::span<const FunctionSpec> text_conversion_functions() { return text_conversion_table; }

}  // namespace qto::embedded::functions
