#include <gtest/gtest.h>

#include <cmath>
#include <random>
#include <string>
#include <vector>

#include "qto/hosts/embedded/formats/number_format.hpp"
#include "qto/hosts/embedded/formats/parse_number.hpp"

namespace qto::embedded::formats {
namespace {

std::string random_text(std::mt19937& random, const std::vector<std::string>& pieces) {
  std::string text;
  for (auto count = random() % 9; count > 0; --count) text += pieces[random() % pieces.size()];
  return text;
}

// What users and damaged files may hold must neither crash nor give endless texts.
TEST(RandomInput, FormatCodes) {
  const std::vector<std::string> pieces = {
      "0",        "#",     "?",    ".",      ",",       ";",       "%",  "/",    "@",
      "E+",       "e-",    "\"",   "\\",     "_",       "*",       "[",  "]",    "[h]",
      "[mm]",     "[s]",   "[>1]", "[$x-1]", "h",       "mm",      "ss", "yyyy", "d",
      "AM/PM",    "a/p",   "8",    "10",     " ",       "General", "b1", "ggg",  "mmmmm",
      "[<=-3.5]", "[Red]", "aaaa", ".000",   "\xC3\xA9"};
  const double values[] = {0,        1,     -1,     0.5,    -0.001, 59.9999999,      1234.5678,
                           45352.75, 1e300, -1e300, 1e-300, 1e15,   2958465.9999999, 123456789012};
  std::mt19937 random(20240301);
  int valid = 0;
  for (int round = 0; round < 20000; ++round) {
    const std::string code = random_text(random, pieces);
    const NumberFormat format = NumberFormat::parse(code);
    valid += format.is_valid() ? 1 : 0;
    for (const double value : values) {
      ASSERT_LE(format.format(value, round % 2 == 0).size(), 1000U) << code;
      const std::string shown = cell_text(format, value, false, 8.43);
      ASSERT_LE(shown.size(), 80U) << code;
    }
    format.format_text("text");
  }
  EXPECT_GT(valid, 2000);
}

TEST(RandomInput, Numbers) {
  const std::vector<std::string> pieces = {
      "1",   "23",  "456", "2024", "0",  ".",           ",",       "/", "-",
      "+",   "$",   "%",   "(",    ")",  " ",           ":",       "e", "E5",
      "Mar", "May", " AM", " PM",  "99", "99999999999", "\xC3\xA9"};
  std::mt19937 random(19000229);
  int accepted = 0;
  for (int round = 0; round < 200000; ++round) {
    const std::string text = random_text(random, pieces);
    const auto number = parse_number(text, round % 2 == 0, 2024);
    if (!number) continue;
    ++accepted;
    ASSERT_TRUE(std::isfinite(number->value)) << text;
  }
  EXPECT_GT(accepted, 2000);
}

}  // namespace
}  // namespace qto::embedded::formats
