#include "qto/model/display_format.hpp"

#include <charconv>
#include <chrono>
#include <cmath>
#include <optional>

#include "qto/automation/text.hpp"
#include "qto/diagnostics/procedure.hpp"

namespace qto {
namespace {

/// The number that a value reads as, texts included; TRUE is -1.
std::optional<double> numeric(const Variant& value) {
  if (const auto* number = value.get_if<double>()) return *number;
  if (const auto* whole = value.get_if<std::int32_t>()) return *whole;
  if (const auto* flag = value.get_if<bool>()) return *flag ? -1 : 0;
  if (value.is_text()) return text::to_number(value.text());
  return std::nullopt;
}

}  // namespace

std::string format_two_decimals(double value) {
  if (!std::isfinite(value)) return "";
  // 15 significant digits first: what the user sees of 1.005 is not 1.00499….
  char digits[400];
  auto end = std::to_chars(digits, digits + sizeof digits, value, std::chars_format::general, 15);
  double seen = value;
  std::from_chars(digits, end.ptr, seen);
  const double nudged =
      std::abs(seen) < 1e13 ? seen + std::copysign(std::abs(seen) * 1e-15, seen) : seen;
  end = std::to_chars(digits, digits + sizeof digits, nudged, std::chars_format::fixed, 2);
  return std::string(digits, end.ptr);
}

std::string format_short_date(Date date) {
  using namespace std::chrono;
  // Automation dates cover the years 100 to 9999.
  if (!(date.serial > -657435 && date.serial < 2958466)) return format_two_decimals(date.serial);
  const sys_days epoch = year{1899} / December / 30;
  const year_month_day day(epoch + days(static_cast<int>(std::floor(date.serial))));
  return std::to_string(static_cast<unsigned>(day.month())) + "/" +
         std::to_string(static_cast<unsigned>(day.day())) + "/" +
         std::to_string(static_cast<int>(day.year()));
}

std::string format_value(const Variant& value) {
  Procedure proc("ModelPart", "format_value");
  if (const auto* date = value.get_if<Date>()) return format_short_date(*date);
  if (const auto number = numeric(value)) return format_two_decimals(*number);
  if (const auto* error = value.get_if<ErrorValue>()) return std::string(error_text(*error));
  return value.text();
}

std::string format_hidden_number(const Variant& value) {
  return value.is_text() && !numeric(value) ? value.text() : format_value(value);
}

}  // namespace qto
