#include "tests/formats/format_table.hpp"

namespace qto::embedded::formats {
namespace {

// 45352 is Friday, 2024-03-01.
constexpr double kFriday = 45352;
constexpr double kAfternoon = kFriday + (14 * 3600 + 5 * 60 + 9) / 86400.0;

TEST(DateCodes, Days) {
  expect_shown({{"m/d/yyyy", kFriday, "3/1/2024"},
                {"mm/dd/yy", kFriday, "03/01/24"},
                {"yyyy-mm-dd", kFriday, "2024-03-01"},
                {"yyyy\\-mm\\-dd", kFriday, "2024-03-01"},
                {"d-mmm-yy", kFriday, "1-Mar-24"},
                {"mmm", kFriday, "Mar"},
                {"mmmm", kFriday, "March"},
                {"mmmmm", kFriday, "M"},
                {"ddd", kFriday, "Fri"},
                {"dddd, mmmm d, yyyy", kFriday, "Friday, March 1, 2024"},
                {"[$-F800]dddd\\,\\ mmmm\\ dd\\,\\ yyyy", kFriday, "Friday, March 01, 2024"},
                {"YYYY\"y\" M\"m\"", kFriday, "2024y 3m"},
                {"y yyy", kFriday, "24 2024"},
                {"e", kFriday, "2024"},
                {"ee", kFriday, "2024"},
                {"bbbb bb", kFriday, "2567 67"},
                {"ggge", kFriday, "2024"},
                {"aaa aaaa", kFriday, "Fri Friday"},
                {"d.m.yyyy", kFriday, "1.3.2024"},
                {"yyyy", 45352.99, "2024"},
                {"m/d/yyyy;@", kFriday, "3/1/2024"}});
}

TEST(DateCodes, TheFirstDays) {
  expect_shown({{"yyyy-mm-dd", 0, "1900-01-00"},
                {"yyyy-mm-dd", 1, "1900-01-01"},
                {"yyyy-mm-dd", 59, "1900-02-28"},
                {"yyyy-mm-dd", 60, "1900-02-29"},
                {"yyyy-mm-dd", 61, "1900-03-01"},
                {"yyyy-mm-dd", 2958465, "9999-12-31"},
                {"dddd", 0, "Saturday"},
                {"dddd", 1, "Sunday"},
                {"dddd", 60, "Wednesday"},
                {"dddd", 61, "Thursday"}});
  const NumberFormat format = NumberFormat::parse("yyyy-mm-dd ddd");
  EXPECT_EQ(format.format(0, true), "1904-01-01 Fri");
  EXPECT_EQ(format.format(43890, true), "2024-03-01 Fri");
  EXPECT_EQ(format.format(2957003, true), "9999-12-31 Fri");
}

TEST(DateCodes, OutsideTheSystem) {
  for (const char* code : {"yyyy", "h:mm", "[h]:mm", "m/d/yyyy;-m/d/yyyy"}) {
    const NumberFormat format = NumberFormat::parse(code);
    EXPECT_EQ(format.format(-1, false), "########") << code;
    EXPECT_EQ(format.format(-0.5, true), "########") << code;
    EXPECT_EQ(format.format(2958466, false), "########") << code;
    EXPECT_EQ(format.format(2957004, true), "########") << code;
    EXPECT_EQ(format.format(1e300, false), "########") << code;
  }
  EXPECT_FALSE(NumberFormat::parse("h:mm:ss").try_format(2958465.999999, false));
}

TEST(DateCodes, Times) {
  expect_shown({{"h:mm", kAfternoon, "14:05"},
                {"hh:mm:ss", kAfternoon, "14:05:09"},
                {"h:mm AM/PM", kAfternoon, "2:05 PM"},
                {"h:mm am/pm", kAfternoon, "2:05 PM"},
                {"hh:mm A/P", kAfternoon, "02:05 P"},
                {"h a/p", kAfternoon, "2 p"},
                {"h AM/PM", 0, "12 AM"},
                {"h AM/PM", 0.5, "12 PM"},
                {"h:m:s", kAfternoon, "14:5:9"},
                {"m/d/yyyy h:mm", kAfternoon, "3/1/2024 14:05"},
                {"mm:ss", kAfternoon, "05:09"},
                {"mmss.0", kAfternoon, "0509.0"},
                {"ss", kAfternoon, "09"},
                {"AM/PM h:mm", 0.25, "AM 6:00"}});
}

TEST(DateCodes, MinutesAndMonths) {
  expect_shown({{"h:mm mm", kAfternoon, "14:05 03"},
                {"mm h:mm", kAfternoon, "03 14:05"},
                {"m:ss m", kAfternoon, "5:09 3"},
                {"h \"o'clock\" m", kAfternoon, "14 o'clock 5"},
                {"hh AM/PM mm", kAfternoon, "02 PM 05"},
                {"[h] m", 1.5, "36 0"},
                {"m [ss]", 0.001, "1 86"},
                {"h mmm", kAfternoon, "14 Mar"},
                {"ss mm", kAfternoon, "09 03"}});
}

TEST(DateCodes, Elapsed) {
  expect_shown({{"[h]:mm", 1.5, "36:00"},
                {"[hh]:mm:ss", 0.25, "06:00:00"},
                {"[h]:mm:ss", 100 + 1.0 / 86400, "2400:00:01"},
                {"[m]", 1, "1440"},
                {"[mm]:ss", 0.001, "01:26"},
                {"[s]", 1, "86400"},
                {"[ss].00", 1.5 / 86400, "01.50"},
                {"[h]", 0.99, "23"}});
}

TEST(DateCodes, FractionsOfSecondsAndCarries) {
  expect_shown({{"ss.00", 1.234 / 86400, "01.23"},
                {"s.000", 1.2345 / 86400, "1.235"},
                {"s.0000", 1.5 / 86400, "1.5000"},
                {"h:mm:ss", 0.9999999, "0:00:00"},
                {"d h:mm:ss", 1.9999999, "2 0:00:00"},
                {"d h:mm", 1.9999999, "2 0:00"},
                {"[h]:mm:ss", 0.9999999, "24:00:00"},
                {"h:mm:ss", 59.6 / 86400, "0:01:00"},
                {"h:mm:ss.0", 59.96 / 86400, "0:01:00.0"},
                {"h:mm", 59.4 / 86400, "0:00"},
                {"h:mm", 3599.4 / 86400, "0:59"},
                {"h:mm:ss", 0.5 / 86400, "0:00:01"},
                {"h:mm:ss.000", 45352.5 + 0.0005 / 86400, "12:00:00.001"},
                {"yyyy-mm-dd", 45351.99998, "2024-02-29"}});
}

}  // namespace
}  // namespace qto::embedded::formats
