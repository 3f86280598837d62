#include <cmath>
#include <string>

#include "qto/hosts/embedded/formats/number_format.hpp"
#include "tests/formats/format_table.hpp"

namespace qto::embedded::formats {
namespace {

struct WidthCase {
  const char* code;
  double value;
  double width;
  const char* shown;
};

TEST(CellText, FitsTheColumn) {
  const WidthCase kTable[] = {
      {"General", 1.0 / 3, 8.43, "0.333333"},
      {"General", 1.0 / 3, 30, "0.333333333"},
      {"General", -1.0 / 3, 8.43, "-0.33333"},
      {"General", 12345678, 8.43, "12345678"},
      {"General", 123456789, 8.43, "1.23E+08"},
      {"General", 123456.789, 8.43, "123456.8"},
      {"General", 99999999.9, 8.43, "1E+08"},
      {"General", 123456789, 5, "1E+08"},
      {"General", 123456789, 4, "####"},
      {"General", 1234.56, 4, "1235"},
      {"General", 0.00012345, 6, "0.0001"},
      {"General", 0.00012345, 5, "1E-04"},
      {"General", 0.00012345, 4, "0"},
      {"General", -0.00012345, 4, "0"},
      {"General", 1e-10, 3, "0"},
      {"General", 5, 0, "5"},
      {"General", 55, 0, "#"},
      {"@", 123456789, 8.43, "1.23E+08"},
      {"0", 12345678, 8.43, "12345678"},
      {"0", 123456789, 8.43, "########"},
      {"0.00", 1234567.5, 8, "########"},
      {"yyyy-mm-dd", 45352, 8.43, "########"},
      {"yyyy-mm-dd", 45352, 10, "2024-03-01"},
      {"yyyy-mm-dd", -1, 12.9, "############"},
      {"0", 12, 0.5, "#"},
      {"\xE2\x82\xAC 0", 12, 4, "\xE2\x82\xAC 12"},
      {";;;", 12, 1, ""},
  };
  for (const WidthCase& row : kTable) {
    EXPECT_EQ(cell_text(NumberFormat::parse(row.code), row.value, false, row.width), row.shown)
        << row.code << " of " << row.value << " in " << row.width;
  }
}

TEST(CellText, HashesAreBounded) {
  const NumberFormat date = NumberFormat::parse("yyyy");
  EXPECT_EQ(cell_text(date, -1, false, 1e9), std::string(255, '#'));
  EXPECT_EQ(cell_text(date, -1, false, -3), "#");
  EXPECT_EQ(cell_text(date, -1, false, std::nan("")), "#");
  EXPECT_EQ(cell_text(NumberFormat(), INFINITY, false, 3), "###");
}

// Whatever General does to fit, it never takes more room than there is.
TEST(CellText, GeneralNeverExceedsTheColumn) {
  const NumberFormat general;
  for (int exponent = -20; exponent <= 20; ++exponent) {
    for (const double lead : {1.0, 1.5, 9.99999999999, 1.23456789012345, -7.77777777}) {
      const double value = lead * std::pow(10.0, exponent);
      for (int width = 1; width <= 14; ++width) {
        const std::string text = cell_text(general, value, false, width);
        EXPECT_LE(text.size(), static_cast<std::size_t>(width)) << value;
        EXPECT_FALSE(text.empty());
      }
    }
  }
}

TEST(BuiltinFormats, EveryCodeIsWellFormed) {
  for (int id = 0; id <= 49; ++id) {
    const auto code = builtin_format(id);
    EXPECT_EQ(code.empty(), id >= 23 && id <= 36) << id;
    const NumberFormat format = NumberFormat::parse(code);
    EXPECT_TRUE(format.is_valid()) << id;
    EXPECT_EQ(format.is_date(), (id >= 14 && id <= 22) || (id >= 45 && id <= 47)) << id;
  }
  EXPECT_EQ(builtin_format(-1), "");
  EXPECT_EQ(builtin_format(50), "");
  EXPECT_EQ(builtin_format(164), "");
}

TEST(BuiltinFormats, Shown) {
  const struct {
    int id;
    double value;
    const char* shown;
  } kTable[] = {{3, 1234.5, "1,235"},          {5, -1234.5, "($1,235)"},
                {7, 1234.5, "$1,234.50 "},     {10, 0.125, "12.50%"},
                {11, 1234, "1.23E+03"},        {12, 2.5, "2 1/2"},
                {14, 45352, "3/1/2024"},       {17, 45352, "Mar-24"},
                {18, 45352.75, "6:00 PM"},     {37, -5, "(5)"},
                {41, 1234, " 1,234 "},         {43, 0, " -   "},
                {44, -1234.5, " $(1,234.50)"}, {46, 1.5, "36:00:00"},
                {47, 0.5, "00:00.0"},          {48, 12345, "12.3E+3"}};
  for (const auto& row : kTable) {
    EXPECT_EQ(NumberFormat::parse(builtin_format(row.id)).format(row.value, false), row.shown)
        << row.id;
  }
}

}  // namespace
}  // namespace qto::embedded::formats
