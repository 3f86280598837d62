#include "qto/parser/argument_values.hpp"

#include <charconv>
#include <cmath>

#include "qto/automation/error.hpp"
#include "qto/automation/text.hpp"
#include "qto/model/display_format.hpp"

namespace qto {
namespace {

std::string shortest(double number) {
  char digits[32];
  const auto end =
      std::to_chars(digits, digits + sizeof digits, number, std::chars_format::general, 15);
  return std::string(digits, end.ptr);
}

}  // namespace

double number_behind(const Variant& value) {
  if (const auto* number = value.get_if<double>()) return *number;
  if (const auto* whole = value.get_if<std::int32_t>()) return *whole;
  if (const auto* flag = value.get_if<bool>()) return *flag ? -1 : 0;
  if (const auto* date = value.get_if<Date>()) return date->serial;
  if (value.is_empty()) return 0;
  if (value.is_text())
    if (const auto number = text::to_number(value.text())) return *number;
  throw NumberedFailure(13, "Type mismatch: an argument is no number");
}

std::int32_t whole_number_behind(const Variant& value) {
  const double rounded = std::nearbyint(number_behind(value));
  if (!(std::abs(rounded) < 2147483648.0)) throw NumberedFailure(6, "Overflow");
  return static_cast<std::int32_t>(rounded);
}

bool flag_behind(const Variant& value) {
  if (value.is_text()) {
    if (text::equal_ascii_nocase(value.text(), "TRUE")) return true;
    if (text::equal_ascii_nocase(value.text(), "FALSE")) return false;
  }
  return number_behind(value) != 0;
}

std::string text_behind(const Variant& value) {
  if (const auto* number = value.get_if<double>()) return shortest(*number);
  if (const auto* whole = value.get_if<std::int32_t>()) return std::to_string(*whole);
  if (const auto* flag = value.get_if<bool>()) return *flag ? "True" : "False";
  if (const auto* date = value.get_if<Date>()) return format_short_date(*date);
  // A form that is no reference and no constant, whatever the error.
  if (const auto* error = value.get_if<ErrorValue>())
    return "Error " + std::to_string(static_cast<std::int32_t>(*error));
  return value.text();
}

}  // namespace qto
