#include "qto/hosts/embedded/formats/parse_number.hpp"

#include <gtest/gtest.h>

#include <string>

#include "qto/hosts/embedded/formats/number_format.hpp"
#include "qto/hosts/embedded/formats/serial_date.hpp"

namespace qto::embedded::formats {
namespace {

using Kind = ParsedNumber::Kind;

constexpr int kYear = 2025;

struct ParseCase {
  const char* text;
  double value;
  Kind kind;
};

template <std::size_t N>
void expect_parsed(const ParseCase (&table)[N]) {
  for (const ParseCase& row : table) {
    const auto parsed = parse_number(row.text, false, kYear);
    ASSERT_TRUE(parsed) << row.text;
    EXPECT_DOUBLE_EQ(parsed->value, row.value) << row.text;
    EXPECT_EQ(parsed->kind, row.kind) << row.text;
  }
}

double day(int year, int month, int day) { return *serial_from_civil({year, month, day}, false); }

TEST(ParseNumber, Numbers) {
  expect_parsed({{"0", 0, Kind::number},
                 {"12", 12, Kind::number},
                 {"  12  ", 12, Kind::number},
                 {"-12.5", -12.5, Kind::number},
                 {"- 12", -12, Kind::number},
                 {"+.5", 0.5, Kind::number},
                 {"5.", 5, Kind::number},
                 {"007", 7, Kind::number},
                 {"(12)", -12, Kind::number},
                 {"( 12.5 )", -12.5, Kind::number},
                 {"1,234", 1234, Kind::number},
                 {"1,234,567.89", 1234567.89, Kind::number},
                 {"-12,345", -12345, Kind::number},
                 {"$5", 5, Kind::currency},
                 {"-$5.50", -5.5, Kind::currency},
                 {"$-5", -5, Kind::currency},
                 {"($1,234.50)", -1234.5, Kind::currency},
                 {"50%", 0.5, Kind::percent},
                 {"-5 %", -0.05, Kind::percent},
                 {"(5%)", -0.05, Kind::percent},
                 {"1e5", 1e5, Kind::scientific},
                 {"1.5E+3", 1500, Kind::scientific},
                 {"-2E-2", -0.02, Kind::scientific},
                 {"1e-400", 0, Kind::scientific},
                 {"1 1/2", 1.5, Kind::fraction},
                 {"-2 3/4", -2.75, Kind::fraction},
                 {"0 1/8", 0.125, Kind::fraction},
                 {"12345678901234567890", 12345678901234567890.0, Kind::number}});
}

TEST(ParseNumber, Dates) {
  expect_parsed({{"3/1/2024", day(2024, 3, 1), Kind::date},
                 {"03/01/2024", day(2024, 3, 1), Kind::date},
                 {" 3/1/24 ", day(2024, 3, 1), Kind::date},
                 {"3/1/29", day(2029, 3, 1), Kind::date},
                 {"3/1/30", day(1930, 3, 1), Kind::date},
                 {"3/1/00", day(2000, 3, 1), Kind::date},
                 {"3-1-2024", day(2024, 3, 1), Kind::date},
                 {"3/1", day(2025, 3, 1), Kind::date},
                 {"1/2", day(2025, 1, 2), Kind::date},
                 {"12/99", day(1999, 12, 1), Kind::date},
                 {"2024-03-01", day(2024, 3, 1), Kind::date},
                 {"2024-3-1", day(2024, 3, 1), Kind::date},
                 {"2024/03/01", day(2024, 3, 1), Kind::date},
                 {"1-Mar-2024", day(2024, 3, 1), Kind::date},
                 {"1-mar-24", day(2024, 3, 1), Kind::date},
                 {"1 March 2024", day(2024, 3, 1), Kind::date},
                 {"1-Mar", day(2025, 3, 1), Kind::date},
                 {"Mar-5", day(2025, 3, 5), Kind::date},
                 {"Mar-45", day(1945, 3, 1), Kind::date},
                 {"Mar-2024", day(2024, 3, 1), Kind::date},
                 {"February 30", day(1930, 2, 1), Kind::date},
                 {"March 1, 2024", day(2024, 3, 1), Kind::date},
                 {"MAR 1 2024", day(2024, 3, 1), Kind::date},
                 {"2/29/1900", 60, Kind::date},
                 {"1/1/1900", 1, Kind::date},
                 {"12/31/9999", 2958465, Kind::date}});
}

TEST(ParseNumber, Times) {
  expect_parsed({{"12:30", 0.5 + 30 / 1440.0, Kind::time},
                 {"0:00", 0, Kind::time},
                 {"6:00:00", 0.25, Kind::time},
                 {"12:30:15.5", (12 * 3600 + 30 * 60 + 15.5) / 86400, Kind::time},
                 {"12:30.5", (12 * 60 + 30.5) / 86400, Kind::time},
                 {"25:00", 25 / 24.0, Kind::time},
                 {"9999:59", (9999 * 60 + 59) / 1440.0, Kind::time},
                 {"6:00 AM", 0.25, Kind::time},
                 {"6:00 pm", 0.75, Kind::time},
                 {"12:00 AM", 0, Kind::time},
                 {"12:00 PM", 0.5, Kind::time},
                 {"6 PM", 0.75, Kind::time},
                 {"6:00 P", 0.75, Kind::time},
                 {"3/1/2024 6:00", day(2024, 3, 1) + 0.25, Kind::date_time},
                 {"2024-03-01 18:00:00", day(2024, 3, 1) + 0.75, Kind::date_time},
                 {"1-Mar-24 6:00 PM", day(2024, 3, 1) + 0.75, Kind::date_time},
                 {"March 1, 2024  6 AM", day(2024, 3, 1) + 0.25, Kind::date_time},
                 {"1 Mar 6:00", day(2025, 3, 1) + 0.25, Kind::date_time},
                 {"3/1 12:00", day(2025, 3, 1) + 0.5, Kind::date_time}});
}

TEST(ParseNumber, RejectsEverythingElse) {
  for (const char* text : {"",
                           " ",
                           "abc",
                           "1,5",
                           "1,23",
                           "12,34,567",
                           "1234,567",
                           ",123",
                           "1,234,",
                           "1e",
                           "1e+",
                           "e5",
                           "1.2.3",
                           "1.2,345",
                           ".",
                           "-",
                           "$",
                           "%",
                           "0x10",
                           "inf",
                           "nan",
                           "INFINITY",
                           "1e400",
                           "1e5e5",
                           "--5",
                           "+-5",
                           "(5",
                           "5)",
                           "(-5)",
                           "5-",
                           "5$",
                           "$$5",
                           "5%%",
                           "$5%",
                           "1 2",
                           "1 1/0",
                           "1 1/",
                           "1.5 1/2",
                           "1 /2",
                           "12 34",
                           "TRUE",
                           "#N/A",
                           "1d5",
                           "1f",
                           "1_000",
                           "1'000",
                           "\xC2\xA0"
                           "5",
                           "5\t",
                           "13/1/2024",
                           "2/29/2023",
                           "2/30/2024",
                           "0/1/2024",
                           "1/0/2024",
                           "1/2/3/4",
                           "1/2-2024",
                           "3/1/202",
                           "3/1/20245",
                           "12/31/1899",
                           "1/1/10000",
                           "1//2",
                           "/1/2",
                           "1/2/",
                           "2024-13-01",
                           "2024-03-01T12:30:00",
                           "20240-1-1",
                           "Mar",
                           "Marc 1",
                           "1-Foo-2024",
                           "Mar 1,",
                           "31-Feb-2024",
                           "Mar-Apr",
                           "1 2 2024",
                           "2024 Mar 1",
                           "March, 2024 1",
                           "1:60",
                           "1:00:60",
                           "10000:00",
                           ":30",
                           "1:",
                           "1:2:3:4",
                           "1:00PM",
                           "13:00 PM",
                           "1:00 XM",
                           "-1:30",
                           "1:00 AM PM",
                           "3/1/2024 25:00",
                           "3/1/2024x",
                           "3/1/2024 x",
                           "5 PMX",
                           "1:00.5.5",
                           "-3/1/2024",
                           "$3/1/2024",
                           "99/99",
                           "2/31/9"}) {
    EXPECT_FALSE(parse_number(text, false, kYear)) << '"' << text << '"';
  }
  EXPECT_FALSE(parse_number(std::string(300, '1'), false, kYear));
  EXPECT_FALSE(parse_number(std::string_view("1\0", 2), false, kYear));
}

TEST(ParseNumber, The1904System) {
  EXPECT_EQ(parse_number("3/1/2024", true, kYear)->value, 43890);
  EXPECT_FALSE(parse_number("12/31/1903", true, kYear));
  EXPECT_FALSE(parse_number("2/29/1900", true, kYear));
}

TEST(ParseNumber, LeapDayDependsOnTheCurrentYear) {
  EXPECT_EQ(parse_number("2/29", false, 2024)->value, day(2024, 2, 29));
  // No such day in 2025: month and year, then.
  EXPECT_EQ(parse_number("2/29", false, 2025)->value, day(2029, 2, 1));
}

TEST(ParseNumber, ReadsBackWhatFormatsShow) {
  for (const char* code : {"m/d/yyyy", "yyyy-mm-dd", "d-mmm-yyyy", "mmmm d, yyyy",
                           "m/d/yyyy h:mm:ss", "yyyy-mm-dd h:mm:ss AM/PM"}) {
    const NumberFormat format = NumberFormat::parse(code);
    const double time = std::string(code).find('h') == std::string::npos ? 0 : 0.78125;
    for (int serial = 1; serial <= max_serial(false); serial += 997) {
      const std::string text = format.format(serial + time, false);
      const auto parsed = parse_number(text, false, kYear);
      ASSERT_TRUE(parsed) << text;
      ASSERT_DOUBLE_EQ(parsed->value, serial + time) << text;
    }
  }
  for (const double value : {0.1, -1.5, 1e20, 1.0 / 3, 12345678.9, -2.5e-7}) {
    const auto parsed = parse_number(general_text(value), false, kYear);
    ASSERT_TRUE(parsed);
    EXPECT_EQ(general_text(parsed->value), general_text(value));
  }
}

}  // namespace
}  // namespace qto::embedded::formats
