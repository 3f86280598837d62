#pragma once

#include <cstdint>
#include <optional>
#include <string>

namespace qto::embedded::formats {

/// A day of the calendar. The 1900 date system also has 1900-01-00 (serial 0) and the day
/// 1900-02-29 (serial 60) that never was.
struct CivilDate {
  int year = 0;
  int month = 0;  ///< 1..12
  int day = 0;    ///< 1..31, 0 only for serial 0 of the 1900 system

  friend bool operator==(const CivilDate&, const CivilDate&) = default;
};

struct TimeOfDay {
  int hour = 0;    ///< 0..23
  int minute = 0;  ///< 0..59
  int second = 0;  ///< 0..59

  friend bool operator==(const TimeOfDay&, const TimeOfDay&) = default;
};

/// A serial cut into its day and the time of that day.
struct SerialParts {
  int day = 0;
  std::int64_t ticks = 0;  ///< units of 10^-second_decimals seconds since midnight
};

/// The serial of 9999-12-31 in the given date system.
int max_serial(bool date1904);

/// The day of a serial; nothing outside 0..max_serial().
std::optional<CivilDate> civil_from_serial(int serial, bool date1904);

/// The serial of an existing day; nothing for days that do not exist or lie outside the system.
std::optional<int> serial_from_civil(const CivilDate& date, bool date1904);

/// The serial of a year, month and day where months and days may run over in both directions (day 0
/// is the last of the month before). Years 0..1899 count from 1900. Nothing when the year is
/// outside 0..9999 or the result outside the date system.
std::optional<int> date_serial(int year, int month, int day, bool date1904);

/// Day of the week, 1 for Sunday to 7 for Saturday, counted as spreadsheets do: before 1900-03-01
/// the phantom leap day shifts it. `serial` must not be negative.
int weekday(int serial, bool date1904);

/// Cuts a serial, rounding the time to `second_decimals` (0..6) places; a time that rounds up to
/// midnight belongs to the next day. Nothing outside the date system.
std::optional<SerialParts> split_serial(double serial, int second_decimals, bool date1904);

/// The time of day of a serial >= 0, rounded to full seconds; 23:59:59.7 is 0:00:00. Other values
/// give midnight.
TimeOfDay time_of_day(double serial);

/// "2024-03-01", or "2024-03-01T12:30:00" when the serial has a time. Nothing outside the system.
std::optional<std::string> iso_text(double serial, bool date1904);

}  // namespace qto::embedded::formats
