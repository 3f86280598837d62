#include <cmath>
#include <limits>
#include <string>

#include "tests/formats/format_table.hpp"

namespace qto::embedded::formats {
namespace {

TEST(NumberCodes, Decimals) {
  expect_shown({{"0", 0, "0"},
                {"0", 5.4, "5"},
                {"0", 5.5, "6"},
                {"0", -5.5, "-6"},
                {"0", 0.49999999999999994, "1"},  // 0.5 to 15 digits
                {"0.00", 0, "0.00"},
                {"0.00", 1234.5678, "1234.57"},
                {"0.00", -0.001, "-0.00"},
                {"0.00", 99.995, "100.00"},
                {"0.0000", 3, "3.0000"},
                {"000", 7, "007"},
                {"000", 12345, "12345"},
                {"#", 0, ""},
                {"#", 12, "12"},
                {"#.##", 0, "."},
                {"#.##", 0.5, ".5"},
                {"#.##", 12, "12."},
                {"0.##", 1.5, "1.5"},
                {"0.##", 1.256, "1.26"},
                {"0.##", 0.0001, "0."},
                {"0.##", 0, "0."},
                {"0.0#", 1, "1.0"},
                {"0.#0", 1, "1.00"},
                {"0.??", 1.5, "1.5 "},
                {"???", 5, "  5"},
                {"0#", 5, "05"},
                {".00", 12.5, "12.50"},
                {".00", 0.126, ".13"},
                {"0.", 5, "5."},
                {"0", 1e20, "100000000000000000000"},
                {"0", 1234567890123456789.0, "1234567890123460000"},
                {"0.00", 1e-300, "0.00"},
                {"0.00000000000000000000", 1.0 / 3, "0.33333333333333300000"}});
}

TEST(NumberCodes, RoundsTheDecimalValueHalfAwayFromZero) {
  expect_shown({{"0.00", 1.005, "1.01"},
                {"0.00", -1.005, "-1.01"},
                {"0.00", 0.285, "0.29"},
                {"0.00", 2.675, "2.68"},
                {"0.0", 0.25, "0.3"},
                {"0.0", 0.35, "0.4"},
                {"0", 2.5, "3"},
                {"0", 1.4999999999, "1"},
                {"0.00", 0.004999, "0.00"},
                {"0.000", 9.9995, "10.000"}});
}

TEST(NumberCodes, GroupingAndScaling) {
  expect_shown({{"#,##0", 0, "0"},
                {"#,##0", 999, "999"},
                {"#,##0", 1000, "1,000"},
                {"#,##0", 999999.5, "1,000,000"},
                {"#,##0", -1234567, "-1,234,567"},
                {"#,##0.00", 1234.5, "1,234.50"},
                {"#,###", 5, "5"},
                {"#,#", 1234567, "1,234,567"},
                {"0,000", 5, "0,005"},
                {"0000,000", 12, "0,000,012"},
                {"?,???", 5, "    5"},
                {"0,", 1500, "2"},
                {"0,", 499, "0"},
                {"#,##0,", 1234567, "1,235"},
                {"#,##0,,", 1234567890, "1,235"},
                {"0.0,", 1234, "1.2"},
                {"0.0,,\"M\"", 12345678, "12.3M"},
                {"#,##0,.0", 1234567, "1,234.6"},
                {"0\", \"0", 12, "1, 2"}});
}

TEST(NumberCodes, PercentAndLiterals) {
  expect_shown({{"0%", 0.5, "50%"},
                {"0%", -0.005, "-1%"},
                {"0.0%", 0.12345, "12.3%"},
                {"0.00%", 0.285, "28.50%"},
                {"%0", 0.5, "%50"},
                {"0%%", 0.5, "5000%%"},
                {"$0.00", -5, "-$5.00"},
                {"\"Total: \"0", 3, "Total: 3"},
                {"0 \\k\\g", 3, "3 kg"},
                {"0\"\"", 3, "3"},
                {"(000) 000-0000", 5551234567, "(555) 123-4567"},
                {"000-00-0000", 123456789, "123-45-6789"},
                {"0_)", 5, "5 "},
                {"_(* 0_)", 5, " 5 "},
                {"*-0", 5, "5"},
                {"0\\\xE2\x82\xAC", 5, "5\xE2\x82\xAC"},
                {"0_\xE2\x82\xAC|", 5, "5 |"},
                {"\xE2\x82\xAC 0", 5, "\xE2\x82\xAC 5"},
                {"[$\xE2\x82\xAC-407] 0.00", 5, "\xE2\x82\xAC 5.00"},
                {"[$-409]0.00", 5, "5.00"},
                {"[$USD] 0", 5, "USD 5"},
                {"[Red]0", 5, "5"},
                {"[Color12]0", 5, "5"},
                {"\"abc\"", 5, "abc"},
                {"\"abc\"", -5, "-abc"},
                {"0.0.0", 1.25, "1.2.5"},
                {"0/\"x\"", 5, "5/x"}});
}

TEST(NumberCodes, Scientific) {
  expect_shown({{"0.00E+00", 0, "0.00E+00"},
                {"0.00E+00", 12345, "1.23E+04"},
                {"0.00E+00", -0.00012345, "-1.23E-04"},
                {"0.00E+00", 9.999, "1.00E+01"},
                {"0.00E+00", 1e100, "1.00E+100"},
                {"0.00E-00", 12345, "1.23E04"},
                {"0.00e-0", 0.5, "5.00e-1"},
                {"0E+0", 1500, "2E+3"},
                {"0.###E+0", 1500, "1.5E+3"},
                {"##0.0E+0", 1, "1.0E+0"},
                {"##0.0E+0", 12345, "12.3E+3"},
                {"##0.0E+0", 123456, "123.5E+3"},
                {"##0.0E+0", 999960, "1.0E+6"},
                {"##0.0E+0", 0.00012, "120.0E-6"},
                {"##0.0E+0", 0.12, "120.0E-3"},
                {".00E+0", 12345, ".12E+5"},
                {".00E+0", 99999, ".10E+6"},
                {"0.0E+0\" units\"", 12345, "1.2E+4 units"}});
}

TEST(NumberCodes, Fractions) {
  expect_shown({{"# ?/?", 1.5, "1 1/2"},
                {"# ?/?", 0.5, " 1/2"},
                {"# ?/?", 5, "5    "},
                {"# ?/?", 0, "0    "},
                {"# ?/?", -1.25, "-1 1/4"},
                {"# ?/?", 0.3, " 2/7"},
                {"# ?/?", 3.14159265358979, "3 1/7"},
                {"# ?/?", 0.99, "1    "},
                {"# ?/?", 1.99, "2    "},
                {"0 ?/?", 0.75, "0 3/4"},
                {"# ?\?/??", 3.14159265358979, "3 14/99"},
                {"# ?\?/??", 0.34, " 17/50"},
                {"# ?\?/??", 1.01, "1  1/99"},
                {"# ??\?/???", 3.14159265358979, "3  16/113"},
                {"# ?/8", 1.5, "1 4/8"},
                {"# ?/8", 0.99, "1    "},
                {"# ?\?/16", 0.25, "  4/16"},
                {"# ?\?/100", 0.5, " 50/100"},
                {"?/?", 1.5, "3/2"},
                {"?/?", 0, "0/1"},
                {"?\?/??", 2.25, " 9/4 "},
                {"# #/#", 2.5, "2 1/2"},
                {"0 0/0", 5, "5 0/1"},
                {"#,##0 ?/?", 1234.5, "1,234 1/2"},
                {"# ?/2\" in\"", 1.5, "1 1/2 in"}});
}

TEST(NumberCodes, FractionsBeyondTheLargestNumberAreNotShowable) {
  const NumberFormat steep = NumberFormat::parse("# ?/?" + std::string(200, '%'));
  EXPECT_EQ(steep.try_format(0, false), std::nullopt);
  EXPECT_EQ(steep.try_format(1, false), std::nullopt);
  EXPECT_EQ(NumberFormat::parse("# ?/?%%%%%").try_format(1e300, false), std::nullopt);
  EXPECT_EQ(NumberFormat::parse("?/99999").try_format(1e306, false), std::nullopt);
}

TEST(NumberCodes, Sections) {
  expect_shown({{"0;(0)", 5, "5"},
                {"0;(0)", -5, "(5)"},
                {"0;(0)", 0, "0"},
                {"0;0", -5, "5"},
                {"0.0;-0.0;\"zero\"", 0, "zero"},
                {"0.0;-0.0;\"zero\"", -2, "-2.0"},
                {"0;-0;;@", 0, ""},
                {";;;", 5, ""},
                {";;;", -5, ""},
                {"0;;", -5, ""},
                {"0;@", -5, "-5"},
                {"[Red]0;[Blue]-0", -5, "-5"},
                {"\"a;b\"0", 5, "a;b5"},
                {"0;\"neg\"", -5, "neg"},
                {"General;\"minus \"General", -2.5, "minus 2.5"},
                {"@", 2.5, "2.5"},
                {"\"x\"@", 2.5, "x2.5"}});
}

TEST(NumberCodes, Conditions) {
  expect_shown({{"[>=100]0;0.00", 100, "100"},
                {"[>=100]0;0.00", 99, "99.00"},
                {"[>=100]0;0.00", -5, "-5.00"},
                {"[<0](0);0", -5, "(5)"},
                {"[<-10](0);0", -5, "-5"},
                {"[>0]0;0", -5, "5"},
                {"[<1]0.00;[<10]0.0;0", 0.5, "0.50"},
                {"[<1]0.00;[<10]0.0;0", 5, "5.0"},
                {"[<1]0.00;[<10]0.0;0", 50, "50"},
                {"[<1]0.00;[<10]0.0;0", -3, "-3.00"},
                {"[=1]\"one\";[=2]\"two\";0", 2, "two"},
                {"[=1]\"one\";[=2]\"two\";0", 3, "3"},
                {"[<>1]0;\"one\"", 1, "one"},
                {"[>1000000]0.0,,\"M\";[>1000]0.0,\"K\";0", 2500000, "2.5M"},
                {"[>1000000]0.0,,\"M\";[>1000]0.0,\"K\";0", 2500, "2.5K"},
                {"[>1000000]0.0,,\"M\";[>1000]0.0,\"K\";0", -7, "-7"},
                {"[Red][<=5.5]0.0;0", 5.5, "5.5"},
                {"[>5]0", 2.5, "2.5"}});
}

TEST(NumberCodes, General) {
  expect_shown({{"General", 0, "0"},
                {"GENERAL", -0.0, "0"},
                {"General", 0.1, "0.1"},
                {"General", -12.5, "-12.5"},
                {"General", 1.0 / 3, "0.333333333"},
                {"General", -1.0 / 3, "-0.333333333"},
                {"General", 2.0 / 3, "0.666666667"},
                {"General", 1234.56789012, "1234.56789"},
                {"General", 123456789.12345, "123456789.1"},
                {"General", 1234567890.5, "1234567891"},
                {"General", 12345678901, "12345678901"},
                {"General", 99999999999, "99999999999"},
                {"General", 99999999999.9, "1E+11"},
                {"General", 123456789012, "1.23457E+11"},
                {"General", 1e11, "1E+11"},
                {"General", 1e100, "1E+100"},
                {"General", 0.0001, "0.0001"},
                {"General", 0.00012345678, "0.000123457"},
                {"General", 0.00001, "0.00001"},
                {"General", 0.0000123456, "1.23456E-05"},
                {"General", 1e-10, "1E-10"},
                {"General", 1.23456789e-10, "1.23457E-10"},
                {"General", 9.9999999e-5, "0.0001"},
                {"\"n=\"General", 2.5, "n=2.5"}});
}

TEST(NumberCodes, GeneralTextKeepsFifteenDigits) {
  const struct {
    double value;
    const char* text;
  } kTable[] = {{0, "0"},
                {-0.0, "0"},
                {0.1, "0.1"},
                {0.1 + 0.2, "0.3"},
                {-1.5, "-1.5"},
                {1.0 / 3, "0.333333333333333"},
                {2.0 / 3, "0.666666666666667"},
                {123456789012345, "123456789012345"},
                {1e15, "1E+15"},
                {1e20, "1E+20"},
                {1234567890123456789.0, "1.23456789012346E+18"},
                {0.0001, "0.0001"},
                {1.0 / 7000, "0.000142857142857143"},
                {1.0 / 70000, "1.42857142857143E-05"},
                {1e-300, "1E-300"},
                {std::numeric_limits<double>::max(), "1.79769313486232E+308"}};
  for (const auto& row : kTable) EXPECT_EQ(general_text(row.value), row.text) << row.value;
}

TEST(NumberCodes, MalformedCodesBehaveAsGeneral) {
  for (const char* code :
       {"\"open",    "[Red",   "0\\",    "0_",           "0*",      "[nonsense]0",
        "0;0;0;0;0", "0E+",    "E+0",    "0E+0E+0",      "yyyy 0",  "General 0",
        "@0",        "[>x]0",  "[]0",    "# ?/12345678", "# ?/? 0", "0.0 ?/?",
        "[>1][<2]0", "yyyy #", "yyyy.#", "h E+0",        "@ yyyy"}) {
    const NumberFormat format = NumberFormat::parse(code);
    EXPECT_FALSE(format.is_valid()) << code;
    EXPECT_TRUE(format.is_general()) << code;
    EXPECT_FALSE(format.is_date()) << code;
    EXPECT_EQ(format.format(-1.5, false), "-1.5") << code;
    EXPECT_EQ(format.format_text("t"), "t") << code;
  }
  EXPECT_FALSE(NumberFormat::parse(std::string(5000, '0')).is_valid());
  EXPECT_TRUE(NumberFormat::parse("").is_general());
}

TEST(NumberCodes, NoFiniteNumberIsNotShowable) {
  const NumberFormat format = NumberFormat::parse("0.00");
  EXPECT_FALSE(format.try_format(std::nan(""), false));
  EXPECT_EQ(format.format(std::numeric_limits<double>::infinity(), false), "########");
}

TEST(NumberCodes, Texts) {
  const struct {
    const char* code;
    const char* text;
    const char* shown;
  } kTable[] = {{"General", "a", "a"},       {"0.00", "a", "a"},   {"@", "a", "a"},
                {"\"<\"@\">\"", "a", "<a>"}, {"@@", "a", "aa"},    {"0;-0;0;\"t:\"@", "a", "t:a"},
                {"0;@\"!\"", "a", "a!"},     {";;;", "a", ""},     {"0;0;0;\"x\"", "a", "x"},
                {"yyyy", "a", "a"},          {"_(@_)", "a", " a "}};
  for (const auto& row : kTable) {
    EXPECT_EQ(NumberFormat::parse(row.code).format_text(row.text), row.shown) << row.code;
  }
}

TEST(NumberCodes, Kinds) {
  const struct {
    const char* code;
    bool general, date, text;
  } kTable[] = {{"General", true, false, false},
                {"[Red]General", true, false, false},
                {"[>5]General", false, false, false},
                {"General;-General", false, false, false},
                {"\"x\"General", false, false, false},
                {"0.00", false, false, false},
                {"@", false, false, true},
                {"\"d\"@", false, false, false},
                {"0;@", false, false, false},
                {"m/d/yyyy", false, true, false},
                {"[h]:mm", false, true, false},
                {"AM/PM", false, true, false},
                {"[$-409]d-mmm", false, true, false},
                {"\"day\" 0", false, false, false},
                {"0.00E+00", false, false, false},
                {"[Red]0", false, false, false},
                {"[Magenta]0", false, false, false},
                {"\\d0", false, false, false},
                {"0_d", false, false, false},
                {"[=0]\"-\";yyyy", false, true, false},
                {"yyyy;@", false, true, false}};
  for (const auto& row : kTable) {
    const NumberFormat format = NumberFormat::parse(row.code);
    EXPECT_EQ(format.is_general(), row.general) << row.code;
    EXPECT_EQ(format.is_date(), row.date) << row.code;
    EXPECT_EQ(format.is_text(), row.text) << row.code;
  }
}

}  // namespace
}  // namespace qto::embedded::formats
