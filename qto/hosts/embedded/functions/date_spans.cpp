#include <algorithm>
#include <array>
#include <cmath>

#include "qto/automation/text.hpp"
#include "qto/hosts/embedded/functions/day_arguments.hpp"
#include "qto/hosts/embedded/functions/families.hpp"
#include "qto/hosts/embedded/functions/numbers.hpp"

namespace qto::embedded::functions {

namespace {

using enum Parameter;

Operand fn_days(Call& call) {
  const auto end = day_of(call, 0);
  const auto start = day_of(call, 1);
  if (!end || !start) return ErrorValue::num;
  return static_cast<double>(end->serial - start->serial);
}

Operand fn_days360(Call& call) {
  const auto start = day_of(call, 0);
  const auto end = day_of(call, 1);
  if (!end || !start) return ErrorValue::num;
  return static_cast<double>(days360(*start, *end, call.logical(2, false)));
}

Operand fn_yearfrac(Call& call) {
  const auto start = day_of(call, 0);
  const auto end = day_of(call, 1);
  const double basis = std::trunc(call.number(2, 0));
  if (!end || !start || basis < 0 || basis > 4) return ErrorValue::num;
  return year_fraction(*start, *end, static_cast<int>(basis));
}

/// Whole months from one day to a later one.
int whole_months(const Day& start, const Day& end) {
  const int months = (end.date.year - start.date.year) * 12 + end.date.month - start.date.month;
  return end.date.day < start.date.day ? months - 1 : months;
}

/// Days between two days when their years are left out ("YD"): counted in the start's year.
int days_within_year(const Day& start, const Day& end, bool date1904) {
  for (int year = start.date.year; year <= start.date.year + 1; ++year) {
    const auto moved = formats::date_serial(year, end.date.month, end.date.day, date1904);
    if (moved && *moved >= start.serial) return *moved - start.serial;
  }
  return 0;
}

/// Days from the last time the start's day of the month came round ("MD").
int days_beyond_months(const Day& start, const Day& end) {
  if (end.date.day >= start.date.day) return end.date.day - start.date.day;
  const int month = end.date.month == 1 ? 12 : end.date.month - 1;
  const int year = end.date.month == 1 ? end.date.year - 1 : end.date.year;
  return end.date.day - start.date.day + days_in_month(year, month);
}

Operand fn_datedif(Call& call) {
  const auto start = day_of(call, 0);
  const auto end = day_of(call, 1);
  if (!end || !start || start->serial > end->serial) return ErrorValue::num;
  const std::string unit = text::upper_ascii(call.text(2));
  const int months = whole_months(*start, *end);
  if (unit == "D") return static_cast<double>(end->serial - start->serial);
  if (unit == "M") return static_cast<double>(months);
  if (unit == "Y") return static_cast<double>(months / 12);
  if (unit == "YM") return static_cast<double>(months % 12);
  if (unit == "MD") return static_cast<double>(days_beyond_months(*start, *end));
  if (unit == "YD") return static_cast<double>(days_within_year(*start, *end, date1904(call)));
  return ErrorValue::num;
}

/// Which days are worked: a week with free days, and single days off.
class Calendar {
 public:
  std::array<bool, 7> free{};  ///< from Monday
  std::vector<int> holidays;   ///< sorted, each once
  bool date1904 = false;

  bool is_free_weekday(int serial) const {
    return free[static_cast<std::size_t>((formats::weekday(serial, date1904) + 5) % 7)];
  }
  bool works(int serial) const {
    return !is_free_weekday(serial) &&
           !std::binary_search(holidays.begin(), holidays.end(), serial);
  }
  bool never_works() const {
    return std::ranges::all_of(free, [](bool day) { return day; });
  }
  /// Working days from first to last, both included.
  int count(int first, int last) const {
    const int weeks = (last - first + 1) / 7;
    int days = weeks * static_cast<int>(std::ranges::count(free, false));
    for (int serial = first + weeks * 7; serial <= last; ++serial) days += !is_free_weekday(serial);
    for (const int holiday : holidays)
      days -= holiday >= first && holiday <= last && !is_free_weekday(holiday);
    return days;
  }
};

constexpr std::array<bool, 7> saturday_and_sunday = {false, false, false, false, false, true, true};

/// A weekend as a number (1 to 7 pairs of days, 11 to 17 single days) or seven digits from Monday.
Outcome<std::array<bool, 7>> weekend_of(const ValueView& value, const DateSettings& dates) {
  std::array<bool, 7> free{};
  if (value.is_text() && value.text().size() == 7) {
    for (std::size_t i = 0; i < 7; ++i) {
      if (value.text()[i] != '0' && value.text()[i] != '1') return ErrorValue::value;
      free[i] = value.text()[i] == '1';
    }
    return free;
  }
  if (value.is_text()) return ErrorValue::value;
  const auto number = to_number(value, dates);
  if (!number) return number.error();
  const double kind = std::trunc(*number);
  if (kind >= 1 && kind <= 7) {
    const auto second = static_cast<std::size_t>(kind + 5) % 7;
    free[second] = free[(second + 6) % 7] = true;
    return free;
  }
  if (kind < 11 || kind > 17) return ErrorValue::num;
  free[static_cast<std::size_t>(kind - 11 + 6) % 7] = true;
  return free;
}

Outcome<Calendar> calendar_of(Call& call, int holidays_at, int weekend_at) {
  Calendar calendar;
  calendar.date1904 = date1904(call);
  calendar.free = saturday_and_sunday;
  if (weekend_at > 0 && call.given(weekend_at)) {
    const auto weekend =
        weekend_of(call.context().single(call[weekend_at]), call.context().dates());
    if (!weekend) return weekend.error();
    calendar.free = *weekend;
  }
  if (!call.given(holidays_at)) return calendar;
  const auto days = collect_numbers(call.context(), call.from(holidays_at).first(1));
  if (!days) return days.error();
  for (const double day : *days)
    if (const auto known = to_day(day, calendar.date1904))
      calendar.holidays.push_back(known->serial);
  std::vector<int>& holidays = calendar.holidays;
  std::ranges::sort(holidays);
  holidays.erase(std::unique(holidays.begin(), holidays.end()), holidays.end());
  return calendar;
}

Operand count_workdays(Call& call, const Outcome<Calendar>& calendar) {
  if (!calendar) return calendar.error();
  const auto start = day_of(call, 0);
  const auto end = day_of(call, 1);
  if (!end || !start) return ErrorValue::num;
  if (start->serial <= end->serial)
    return static_cast<double>(calendar->count(start->serial, end->serial));
  return -static_cast<double>(calendar->count(end->serial, start->serial));
}

Operand move_workdays(Call& call, const Outcome<Calendar>& calendar) {
  if (!calendar) return calendar.error();
  const auto start = day_of(call, 0);
  if (!start) return ErrorValue::num;
  if (calendar->never_works()) return ErrorValue::value;
  const double days = std::trunc(call.number(1));
  const int step = days < 0 ? -1 : 1;
  const int last = formats::max_serial(date1904(call));
  int serial = start->serial;
  for (double left = std::fabs(days); left > 0;) {
    serial += step;
    if (serial < 0 || serial > last) return ErrorValue::num;
    if (calendar->works(serial)) --left;
  }
  return static_cast<double>(serial);
}

Operand fn_networkdays(Call& call) { return count_workdays(call, calendar_of(call, 2, 0)); }
Operand fn_networkdays_intl(Call& call) { return count_workdays(call, calendar_of(call, 3, 2)); }
Operand fn_workday(Call& call) { return move_workdays(call, calendar_of(call, 2, 0)); }
Operand fn_workday_intl(Call& call) { return move_workdays(call, calendar_of(call, 3, 2)); }

// clang-format off
constexpr FunctionSpec date_span_table[] = {
    {"DATEDIF", 3, 3, plain, {number, number, text}, fn_datedif, "start, end, unit",
     "the time between two dates in years, months or days",
     "=DATEDIF(DATE(2020,1,31),DATE(2021,3,1),\"M\")", "13"},
    {"DAYS", 2, 2, plain, {number}, fn_days, "end, start", "the days between two dates",
     "=DAYS(\"2024-03-01\",\"2024-02-01\")", "29"},
    {"DAYS360", 2, 3, plain, {number, number, logical}, fn_days360, "start, end, [european]",
     "the days between two dates in a year of 360 days",
     "=DAYS360(DATE(2024,1,31),DATE(2024,12,31))", "330"},
    {"NETWORKDAYS", 2, 3, plain, {strict_number, strict_number, values}, fn_networkdays,
     "start, end, [holidays]", "the working days between two dates",
     "=NETWORKDAYS(DATE(2024,3,1),DATE(2024,3,10))", "6"},
    {"NETWORKDAYS.INTL", 2, 4, plain, {strict_number, strict_number, value, values},
     fn_networkdays_intl, "start, end, [weekend], [holidays]",
     "the working days between two dates with a weekend of its own",
     "=NETWORKDAYS.INTL(DATE(2024,3,1),DATE(2024,3,10),\"0000001\")", "8"},
    {"WORKDAY", 2, 3, plain, {strict_number, strict_number, values}, fn_workday,
     "start, days, [holidays]", "the day some working days on", "=WORKDAY(DATE(2024,3,1),1)",
     "45355"},
    {"WORKDAY.INTL", 2, 4, plain, {strict_number, strict_number, value, values}, fn_workday_intl,
     "start, days, [weekend], [holidays]", "the day some working days on with a weekend of its own",
     "=WORKDAY.INTL(DATE(2024,3,1),1,11)", "45353"},
    {"YEARFRAC", 2, 3, plain, {strict_number}, fn_yearfrac, "start, end, [basis]",
     "the part of a year between two dates", "=YEARFRAC(DATE(2024,1,1),DATE(2024,7,1))", "0.5"},
};
// clang-format on
static_assert(well_formed(date_span_table));

}  // namespace

std::span<const FunctionSpec> date_span_functions() { return date_span_table; }

}  // namespace qto::embedded::functions
