#include "qto/hosts/embedded/functions/day_count.hpp"

#include <cmath>
#include <utility>

namespace qto::embedded::functions {

namespace {

int months_apart(const Day& start, const Day& end) noexcept {
  return (end.date.year - start.date.year) * 12 + end.date.month - start.date.month;
}

bool at_most_a_year(const Day& start, const Day& end) noexcept {
  const auto& a = start.date;
  const auto& b = end.date;
  if (a.year == b.year) return true;
  return a.year + 1 == b.year && (a.month > b.month || (a.month == b.month && a.day >= b.day));
}

/// Days of the year that a period of at most a year is measured by.
double length_of_year(const Day& start, const Day& end) noexcept {
  const auto& a = start.date;
  const auto& b = end.date;
  if (a.year == b.year) return is_leap_year(a.year) ? 366 : 365;
  const bool from_leap = is_leap_year(a.year) && a.month <= 2;
  const bool to_leap = is_leap_year(b.year) && (b.month > 2 || (b.month == 2 && b.day == 29));
  return from_leap || to_leap ? 366 : 365;
}

double actual_years(const Day& start, const Day& end) noexcept {
  const double days = end.serial - start.serial;
  if (at_most_a_year(start, end)) return days / length_of_year(start, end);
  double total = 0;
  for (int year = start.date.year; year <= end.date.year; ++year)
    total += is_leap_year(year) ? 366 : 365;
  return days / (total / (end.date.year - start.date.year + 1));
}

}  // namespace

bool is_leap_year(int year) noexcept {
  return (year % 4 == 0 && year % 100 != 0) || year % 400 == 0;
}

int days_in_month(int year, int month) noexcept {
  constexpr int days[] = {31, 28, 31, 30, 31, 30, 31, 31, 30, 31, 30, 31};
  return month == 2 && is_leap_year(year) ? 29 : days[month - 1];
}

bool Day::last_of_month() const noexcept {
  return date.day >= days_in_month(date.year, date.month);
}
bool Day::last_of_february() const noexcept { return date.month == 2 && last_of_month(); }

std::optional<Day> to_day(double serial, bool date1904) {
  const double whole = std::floor(serial);
  if (!(whole >= 0 && whole <= formats::max_serial(date1904))) return std::nullopt;
  Day day{static_cast<int>(whole), {}};
  const auto date = formats::civil_from_serial(day.serial, date1904);
  if (!date) return std::nullopt;
  day.date = *date;
  return day;
}

std::optional<int> add_months(const Day& day, double months, bool to_end, bool date1904) {
  if (!(std::fabs(months) < 200000)) return std::nullopt;
  const int index = day.date.year * 12 + day.date.month - 1 + static_cast<int>(months);
  if (index < 0) return std::nullopt;
  const int year = index / 12;
  const int month = index % 12 + 1;
  if (year < 1900 || year > 9999) return std::nullopt;
  const int last = days_in_month(year, month);
  return formats::date_serial(year, month, to_end ? last : std::min(day.date.day, last), date1904);
}

int days360(const Day& start, const Day& end, bool european) noexcept {
  int first = start.date.day;
  int last = end.date.day;
  if (european) {
    first = std::min(first, 30);
    last = std::min(last, 30);
  } else {
    if (start.last_of_month()) first = 30;
    if (last == 31 && first >= 30) last = 30;
  }
  return months_apart(start, end) * 30 + last - first;
}

int days360_us(const Day& start, const Day& end) noexcept {
  int first = start.date.day;
  int last = end.date.day;
  if (start.last_of_february() && end.last_of_february()) last = 30;
  if (start.last_of_february()) first = 30;
  if (last == 31 && first >= 30) last = 30;
  first = std::min(first, 30);
  return months_apart(start, end) * 30 + last - first;
}

double year_fraction(Day start, Day end, int basis) noexcept {
  if (start.serial > end.serial) std::swap(start, end);
  const double days = end.serial - start.serial;
  switch (basis) {
    case 1:
      return days == 0 ? 0 : actual_years(start, end);
    case 2:
      return days / 360;
    case 3:
      return days / 365;
    case 4:
      return days360(start, end, true) / 360.0;
    default:
      return days360_us(start, end) / 360.0;
  }
}

}  // namespace qto::embedded::functions
