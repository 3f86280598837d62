#pragma once

#include <optional>

#include "qto/hosts/embedded/formats/serial_date.hpp"

/// Counting days and years between dates, as dates and securities do.
namespace qto::embedded::functions {

/// Whole days of a serial with their place in the calendar.
struct Day {
  int serial = 0;
  formats::CivilDate date;
  bool last_of_february() const noexcept;
  bool last_of_month() const noexcept;
};

bool is_leap_year(int year) noexcept;
int days_in_month(int year, int month) noexcept;
/// The day of a serial number (its time cut off); nothing outside the date system.
std::optional<Day> to_day(double serial, bool date1904);
/// The same day some months on, or the last day of a shorter month; `to_end`: always the last day.
std::optional<int> add_months(const Day& day, double months, bool to_end, bool date1904);

/// Days of twelve months of 30 days; european: only 31st days become 30th.
int days360(const Day& start, const Day& end, bool european) noexcept;
/// The same as US securities count them: the end of February counts as the 30th on both sides.
int days360_us(const Day& start, const Day& end) noexcept;
/// The part of a year between two days by a basis of 0 to 4 (30/360, actual/actual, actual/360,
/// actual/365, European 30/360); the order of the days does not matter.
double year_fraction(Day start, Day end, int basis) noexcept;

}  // namespace qto::embedded::functions
