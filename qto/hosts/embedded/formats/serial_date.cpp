#include "qto/hosts/embedded/formats/serial_date.hpp"

#include <array>
#include <chrono>
#include <cmath>
#include <cstdio>

namespace qto::embedded::formats {
namespace {

constexpr int kMaxSerial1900 = 2958465;
constexpr int kOffset1904 = 1462;
constexpr int kPhantomSerial = 60;
constexpr int kSecondsPerDay = 86400;
constexpr CivilDate kPhantomDay{1900, 2, 29};

// Calendar days since 1899-12-31.
std::int64_t days_to_month_start(int year, int month) {
  using namespace std::chrono;
  const sys_days epoch = std::chrono::year{1899} / December / 31;
  const sys_days start =
      std::chrono::year{year} / std::chrono::month{static_cast<unsigned>(month)} / 1;
  return (start - epoch).count();
}

// Serials of the 1900 system count the phantom day from March 1900 on.
std::int64_t month_start_1900(int year, int month) {
  const std::int64_t days = days_to_month_start(year, month);
  return days >= kPhantomSerial ? days + 1 : days;
}

int days_in_month(int year, int month) {
  using namespace std::chrono;
  const auto last = year_month_day_last{
      std::chrono::year{year}, month_day_last{std::chrono::month{static_cast<unsigned>(month)}}};
  return static_cast<int>(static_cast<unsigned>(last.day()));
}

bool in_system(std::int64_t serial, bool date1904) {
  return serial >= 0 && serial <= max_serial(date1904);
}

std::int64_t floor_div(std::int64_t value, std::int64_t divisor) {
  return value >= 0 ? value / divisor : -((-value + divisor - 1) / divisor);
}

}  // namespace

int max_serial(bool date1904) { return date1904 ? kMaxSerial1900 - kOffset1904 : kMaxSerial1900; }

std::optional<CivilDate> civil_from_serial(int serial, bool date1904) {
  if (!in_system(serial, date1904)) return std::nullopt;
  const int serial1900 = date1904 ? serial + kOffset1904 : serial;
  if (serial1900 == 0) return CivilDate{1900, 1, 0};
  if (serial1900 == kPhantomSerial) return kPhantomDay;
  const int days = serial1900 > kPhantomSerial ? serial1900 - 1 : serial1900;
  using namespace std::chrono;
  const sys_days epoch = std::chrono::year{1899} / December / 31;
  const year_month_day date{epoch + std::chrono::days{days}};
  return CivilDate{static_cast<int>(date.year()),
                   static_cast<int>(static_cast<unsigned>(date.month())),
                   static_cast<int>(static_cast<unsigned>(date.day()))};
}

std::optional<int> serial_from_civil(const CivilDate& date, bool date1904) {
  if (date.year < 1900 || date.year > 9999 || date.month < 1 || date.month > 12) {
    return std::nullopt;
  }
  const bool zero_day = date == CivilDate{1900, 1, 0};
  const bool exists = date.day >= 1 && date.day <= days_in_month(date.year, date.month);
  if (!exists && !zero_day && !(date == kPhantomDay)) return std::nullopt;
  return date_serial(date.year, date.month, date.day, date1904);
}

std::optional<int> date_serial(int year, int month, int day, bool date1904) {
  if (year < 0 || year > 9999) return std::nullopt;
  if (year < 1900) year += 1900;
  const std::int64_t months = std::int64_t{year} * 12 + month - 1;
  const std::int64_t full_year = floor_div(months, 12);
  // Far outside no day count can bring the result back; std::chrono years are limited as well.
  if (full_year < -30000 || full_year > 30000) return std::nullopt;
  const int first_month = static_cast<int>(months - full_year * 12) + 1;
  std::int64_t serial = month_start_1900(static_cast<int>(full_year), first_month) + day - 1;
  if (date1904) serial -= kOffset1904;
  if (!in_system(serial, date1904)) return std::nullopt;
  return static_cast<int>(serial);
}

int weekday(int serial, bool date1904) {
  const std::int64_t serial1900 = std::int64_t{serial} + (date1904 ? kOffset1904 : 0);
  return static_cast<int>((serial1900 + 6) % 7) + 1;
}

std::optional<SerialParts> split_serial(double serial, int second_decimals, bool date1904) {
  const int last = max_serial(date1904);
  if (!(serial >= 0 && serial < last + 1.0)) return std::nullopt;
  std::int64_t scale = 1;
  for (int i = 0; i < second_decimals; ++i) scale *= 10;
  const double day = std::floor(serial);
  // A serial of today is exact to about a microsecond: what misses the half by less was meant so.
  constexpr double kSlackSeconds = 1e-6;
  const double seconds = (serial - day) * kSecondsPerDay;
  SerialParts parts{static_cast<int>(day),
                    static_cast<std::int64_t>(
                        std::floor((seconds + kSlackSeconds) * static_cast<double>(scale) + 0.5))};
  const std::int64_t ticks_per_day = kSecondsPerDay * scale;
  if (parts.ticks >= ticks_per_day) {
    parts.ticks -= ticks_per_day;
    if (++parts.day > last) return std::nullopt;
  }
  return parts;
}

TimeOfDay time_of_day(double serial) {
  if (!(serial >= 0) || std::isinf(serial)) return {};
  const auto parts = split_serial(serial - std::floor(serial), 0, false);
  if (!parts) return {};
  const int seconds = static_cast<int>(parts->ticks);
  return {seconds / 3600, seconds / 60 % 60, seconds % 60};
}

std::optional<std::string> iso_text(double serial, bool date1904) {
  const auto parts = split_serial(serial, 0, date1904);
  if (!parts) return std::nullopt;
  const auto date = civil_from_serial(parts->day, date1904);
  std::array<char, 80> text;
  int length =
      std::snprintf(text.data(), text.size(), "%04d-%02d-%02d", date->year, date->month, date->day);
  if (parts->ticks != 0) {
    const int seconds = static_cast<int>(parts->ticks);
    const auto start = static_cast<std::size_t>(length);
    length += std::snprintf(text.data() + start, text.size() - start, "T%02d:%02d:%02d",
                            seconds / 3600, seconds / 60 % 60, seconds % 60);
  }
  return std::string(text.data(), static_cast<std::size_t>(length));
}

}  // namespace qto::embedded::formats
