#include "qto/hosts/embedded/formats/serial_date.hpp"

#include <gtest/gtest.h>

#include <limits>

namespace qto::embedded::formats {
namespace {

bool is_leap(int year) { return year % 4 == 0 && (year % 100 != 0 || year % 400 == 0); }

int month_length(int year, int month) {
  constexpr int kLengths[] = {31, 28, 31, 30, 31, 30, 31, 31, 30, 31, 30, 31};
  // The 1900 system believes in 1900-02-29.
  return kLengths[month - 1] + (month == 2 && (is_leap(year) || year == 1900) ? 1 : 0);
}

CivilDate next_day(CivilDate date) {
  if (++date.day <= month_length(date.year, date.month)) return date;
  date.day = 1;
  if (++date.month <= 12) return date;
  return {date.year + 1, 1, 1};
}

TEST(SerialDate, EveryDayThereAndBack) {
  CivilDate expected{1900, 1, 0};
  for (int serial = 0; serial <= max_serial(false); ++serial) {
    const auto date = civil_from_serial(serial, false);
    ASSERT_TRUE(date && *date == expected) << serial;
    const bool sampled = serial < 2000 || serial % 97 == 0;
    if (sampled) {
      ASSERT_EQ(serial_from_civil(*date, false), serial);
    }
    expected = next_day(expected);
  }
  EXPECT_EQ(expected, (CivilDate{10000, 1, 1}));
}

TEST(SerialDate, The1904SystemIs1462DaysLater) {
  for (int serial = 0; serial <= max_serial(true); serial += 61) {
    const auto date = civil_from_serial(serial, true);
    ASSERT_EQ(date, civil_from_serial(serial + 1462, false));
    ASSERT_EQ(serial_from_civil(*date, true), serial);
    ASSERT_EQ(weekday(serial, true), weekday(serial + 1462, false));
  }
  EXPECT_EQ(civil_from_serial(0, true), (CivilDate{1904, 1, 1}));
}

TEST(SerialDate, OutOfRange) {
  EXPECT_FALSE(civil_from_serial(-1, false));
  EXPECT_FALSE(civil_from_serial(2958466, false));
  EXPECT_FALSE(civil_from_serial(2957004, true));
  EXPECT_FALSE(civil_from_serial(std::numeric_limits<int>::max(), true));
  for (const CivilDate& date :
       {CivilDate{2023, 2, 29}, CivilDate{2024, 13, 1}, CivilDate{2024, 0, 1},
        CivilDate{2024, 4, 31}, CivilDate{2024, 4, 0}, CivilDate{1899, 12, 31},
        CivilDate{10000, 1, 1}, CivilDate{2024, 1, -5}}) {
    EXPECT_FALSE(serial_from_civil(date, false)) << date.year << '-' << date.month;
  }
  EXPECT_FALSE(serial_from_civil({1903, 12, 31}, true));
  EXPECT_FALSE(serial_from_civil({1900, 2, 29}, true));
}

TEST(SerialDate, Weekdays) {
  EXPECT_EQ(weekday(0, false), 7);
  EXPECT_EQ(weekday(1, false), 1);
  EXPECT_EQ(weekday(60, false), 4);
  EXPECT_EQ(weekday(45352, false), 6);
  EXPECT_EQ(weekday(0, true), 6);
}

TEST(SerialDate, DatesRunOver) {
  constexpr int kNone = -1;
  constexpr int kMin = std::numeric_limits<int>::min();
  constexpr int kMax = std::numeric_limits<int>::max();
  const struct {
    int year, month, day;
    bool date1904;
    int serial;
  } kTable[] = {{2024, 3, 1, false, 45352},
                {2024, 2, 30, false, 45352},
                {2024, 15, 1, false, 45717},
                {2024, 0, 1, false, 45261},
                {2024, -11, 1, false, 44927},
                {2024, 3, 0, false, 45351},
                {2024, 3, -1, false, 45350},
                {2023, 12, 62, false, 45322},
                {124, 3, 1, false, 45352},
                {0, 1, 1, false, 1},
                {1900, 1, 0, false, 0},
                {1900, 2, 29, false, 60},
                {1900, 3, 0, false, 60},
                {1900, 3, 1, false, 61},
                {1900, 1, 61, false, 61},
                {1900, 1, -1, false, kNone},
                {1899, 12, 31, false, 693962},
                {9999, 12, 31, false, 2958465},
                {9999, 12, 32, false, kNone},
                {-1, 1, 1, false, kNone},
                {10000, 1, 1, false, kNone},
                {1904, 1, 1, true, 0},
                {4, 1, 1, true, 0},
                {1903, 12, 31, true, kNone},
                {3, 1, 1, true, kNone},
                {2024, 3, 1, true, 43890},
                {2024, kMax, 1, false, kNone},
                {2024, kMin, 1, false, kNone},
                {2024, 1, kMax, false, kNone},
                {2024, 1, kMin, false, kNone},
                {9999, -96000, 1, false, 36130}};
  for (const auto& row : kTable) {
    EXPECT_EQ(date_serial(row.year, row.month, row.day, row.date1904).value_or(kNone), row.serial)
        << row.year << ' ' << row.month << ' ' << row.day;
  }
}

TEST(SerialDate, TimesOfDay) {
  EXPECT_EQ(time_of_day(0.5), (TimeOfDay{12, 0, 0}));
  EXPECT_EQ(time_of_day(45352.75), (TimeOfDay{18, 0, 0}));
  EXPECT_EQ(time_of_day(0.999999), (TimeOfDay{0, 0, 0}));
  EXPECT_EQ(time_of_day(-0.5), (TimeOfDay{0, 0, 0}));
  EXPECT_EQ(time_of_day(std::numeric_limits<double>::infinity()), (TimeOfDay{}));
  EXPECT_EQ(time_of_day(std::numeric_limits<double>::quiet_NaN()), (TimeOfDay{}));
  for (int second = 0; second < 86400; second += 7) {
    const TimeOfDay time = time_of_day(45352 + second / 86400.0);
    ASSERT_EQ(time.hour * 3600 + time.minute * 60 + time.second, second);
  }
}

TEST(SerialDate, IsoText) {
  EXPECT_EQ(iso_text(45352, false), "2024-03-01");
  EXPECT_EQ(iso_text(45352 + 45000 / 86400.0, false), "2024-03-01T12:30:00");
  EXPECT_EQ(iso_text(45351.999999, false), "2024-03-01");
  EXPECT_EQ(iso_text(0.25, false), "1900-01-00T06:00:00");
  EXPECT_EQ(iso_text(60, false), "1900-02-29");
  EXPECT_EQ(iso_text(0, true), "1904-01-01");
  EXPECT_FALSE(iso_text(-0.1, false));
  EXPECT_FALSE(iso_text(2958466, false));
  EXPECT_FALSE(iso_text(2958465.9999999, false));
}

}  // namespace
}  // namespace qto::embedded::formats
