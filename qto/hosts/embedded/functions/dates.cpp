#include <cmath>

#include "qto/hosts/embedded/evaluate/call.hpp"
#include "qto/hosts/embedded/formats/parse_number.hpp"
#include "qto/hosts/embedded/functions/day_arguments.hpp"
#include "qto/hosts/embedded/functions/families.hpp"

namespace qto::embedded::functions {

namespace {

using enum Parameter;

Operand serial_or_num(const std::optional<int>& serial) {
  return serial ? Operand(static_cast<double>(*serial)) : Operand(ErrorValue::num);
}

/// A part of a date that may run over, as a whole number; nothing when it is out of all bounds.
std::optional<int> whole(double number) {
  const double floor = std::floor(number);
  if (!(std::fabs(floor) < 1e7)) return std::nullopt;
  return static_cast<int>(floor);
}

Operand fn_date(Call& call) {
  const auto year = whole(call.number(0));
  const auto month = whole(call.number(1));
  const auto day = whole(call.number(2));
  if (!year || !month || !day || *year < 0 || *year > 9999) return ErrorValue::num;
  return serial_or_num(formats::date_serial(*year, *month, *day, date1904(call)));
}

Operand fn_year(Call& call) {
  const auto day = day_of(call, 0);
  return day ? Operand(static_cast<double>(day->date.year)) : Operand(ErrorValue::num);
}
Operand fn_month(Call& call) {
  const auto day = day_of(call, 0);
  return day ? Operand(static_cast<double>(day->date.month)) : Operand(ErrorValue::num);
}
Operand fn_day(Call& call) {
  const auto day = day_of(call, 0);
  return day ? Operand(static_cast<double>(day->date.day)) : Operand(ErrorValue::num);
}

template <int formats::TimeOfDay::*part>
Operand fn_time_part(Call& call) {
  const double serial = call.number(0);
  if (serial < 0 || serial >= formats::max_serial(date1904(call)) + 1.0) return ErrorValue::num;
  return static_cast<double>(formats::time_of_day(serial).*part);
}

Operand fn_time(Call& call) {
  double seconds = 0;
  constexpr double weights[] = {3600, 60, 1};
  for (int i = 0; i < 3; ++i) {
    const double part = std::trunc(call.number(i));
    if (part > 32767) return ErrorValue::num;
    seconds += part * weights[i];
  }
  if (seconds < 0) return ErrorValue::num;
  return std::fmod(seconds, 86400) / 86400;
}

Operand fn_now(Call& call) { return call.context().now(); }
Operand fn_today(Call& call) { return std::floor(call.context().now()); }

std::optional<formats::ParsedNumber> parse(Call& call) {
  const DateSettings dates = call.context().dates();
  const auto parsed = formats::parse_number(call.text(0), dates.date1904, dates.current_year);
  using Kind = formats::ParsedNumber::Kind;
  if (!parsed) return std::nullopt;
  const bool moment =
      parsed->kind == Kind::date || parsed->kind == Kind::time || parsed->kind == Kind::date_time;
  return moment ? parsed : std::nullopt;
}

Operand fn_datevalue(Call& call) {
  const auto parsed = parse(call);
  if (!parsed) return ErrorValue::value;
  return std::floor(parsed->value);
}

Operand fn_timevalue(Call& call) {
  const auto parsed = parse(call);
  if (!parsed) return ErrorValue::value;
  return parsed->value - std::floor(parsed->value);
}

/// The weekday on which a week of that type begins, 1 for Sunday; 0 for an unknown type.
int first_weekday(double type) {
  const int number = static_cast<int>(std::clamp(type, -1.0, 100.0));
  if (number == 1) return 1;
  if (number == 2) return 2;
  return number >= 11 && number <= 17 ? (number - 10) % 7 + 1 : 0;
}

Operand fn_weekday(Call& call) {
  const auto day = day_of(call, 0);
  const double type = std::trunc(call.number(1, 1));
  if (!day) return ErrorValue::num;
  const int weekday = formats::weekday(day->serial, date1904(call));
  if (type == 3) return static_cast<double>((weekday + 5) % 7);
  const int first = first_weekday(type);
  if (first == 0) return ErrorValue::num;
  return static_cast<double>((weekday - first + 7) % 7 + 1);
}

/// The week of the year that holds the first Thursday is the first one.
Operand iso_week(const Day& day, bool date1904) {
  const int weekday = (formats::weekday(day.serial, date1904) + 5) % 7;  // 0 for Monday
  const int thursday = day.serial - weekday + 3;
  const auto date = formats::civil_from_serial(std::max(thursday, 0), date1904);
  if (!date) return ErrorValue::num;
  const auto january = formats::date_serial(date->year, 1, 1, date1904);
  if (!january) return ErrorValue::num;
  return static_cast<double>((thursday - *january) / 7 + 1);
}

Operand fn_isoweeknum(Call& call) {
  const auto day = day_of(call, 0);
  return day ? iso_week(*day, date1904(call)) : Operand(ErrorValue::num);
}

Operand fn_weeknum(Call& call) {
  const auto day = day_of(call, 0);
  const double type = std::trunc(call.number(1, 1));
  if (!day) return ErrorValue::num;
  if (type == 21) return iso_week(*day, date1904(call));
  const int first = first_weekday(type);
  if (first == 0) return ErrorValue::num;
  const int january =
      day->serial == 0 ? 0 : formats::date_serial(day->date.year, 1, 1, date1904(call)).value_or(0);
  const int offset = (formats::weekday(january, date1904(call)) - first + 7) % 7;
  return static_cast<double>((day->serial - january + offset) / 7 + 1);
}

template <bool to_end>
Operand fn_add_months(Call& call) {
  const auto day = day_of(call, 0);
  if (!day) return ErrorValue::num;
  return serial_or_num(add_months(*day, std::trunc(call.number(1)), to_end, date1904(call)));
}

// clang-format off
constexpr FunctionSpec date_table[] = {
    {"DATE", 3, 3, plain, {number}, fn_date, "year, month, day", "the serial number of a date",
     "=DATE(2024,2,30)", "45352"},
    {"DATEVALUE", 1, 1, plain, {text}, fn_datevalue, "text", "the date that a text reads as",
     "=DATEVALUE(\"2024-03-01\")", "45352"},
    {"DAY", 1, 1, plain, {number}, fn_day, "date", "the day of the month", "=DAY(45352)", "1"},
    {"EDATE", 2, 2, plain, {strict_number}, fn_add_months<false>, "start, months",
     "the same day some months on", "=EDATE(DATE(2024,1,31),1)", "45351"},
    {"EOMONTH", 2, 2, plain, {strict_number}, fn_add_months<true>, "start, months",
     "the last day of the month some months on", "=EOMONTH(DATE(2024,1,1),1)", "45351"},
    {"HOUR", 1, 1, plain, {number}, fn_time_part<&formats::TimeOfDay::hour>, "time", "the hour",
     "=HOUR(0.75)", "18"},
    {"ISOWEEKNUM", 1, 1, plain, {number}, fn_isoweeknum, "date",
     "the number of the week by ISO 8601", "=ISOWEEKNUM(DATE(2021,1,1))", "53"},
    {"MINUTE", 1, 1, plain, {number}, fn_time_part<&formats::TimeOfDay::minute>, "time",
     "the minute", "=MINUTE(0.51)", "14"},
    {"MONTH", 1, 1, plain, {number}, fn_month, "date", "the month", "=MONTH(45352)", "3"},
    {"NOW", 0, 0, changes_always, {}, fn_now, "", "the moment of calculation",
     "=NOW()>DATE(2020,1,1)", "TRUE"},
    {"SECOND", 1, 1, plain, {number}, fn_time_part<&formats::TimeOfDay::second>, "time",
     "the second", "=SECOND(TIME(1,2,3))", "3"},
    {"TIME", 3, 3, plain, {number}, fn_time, "hour, minute, second", "a time as part of a day",
     "=TIME(18,0,0)", "0.75"},
    {"TIMEVALUE", 1, 1, plain, {text}, fn_timevalue, "text", "the time that a text reads as",
     "=TIMEVALUE(\"6:00 PM\")", "0.75"},
    {"TODAY", 0, 0, changes_always, {}, fn_today, "", "the date of calculation",
     "=TODAY()=INT(NOW())", "TRUE"},
    {"WEEKDAY", 1, 2, plain, {number}, fn_weekday, "date, [type]",
     "the day of the week as a number", "=WEEKDAY(DATE(2024,3,1))", "6"},
    {"WEEKNUM", 1, 2, plain, {strict_number}, fn_weeknum, "date, [type]",
     "the number of the week in its year", "=WEEKNUM(DATE(2024,3,1))", "9"},
    {"YEAR", 1, 1, plain, {number}, fn_year, "date", "the year", "=YEAR(45352)", "2024"},
};
// clang-format on
static_assert(well_formed(date_table));

}  // namespace

std::span<const FunctionSpec> date_functions() { return date_table; }

}  // namespace qto::embedded::functions
