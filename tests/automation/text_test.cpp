#include "qto/automation/text.hpp"

#include <gtest/gtest.h>

namespace qto::text {
namespace {

TEST(ToNumber, ReadsWhatTheGeneralConversionReads) {
  const struct {
    const char* text;
    double number;
  } rows[] = {{"5", 5},        {" 5 ", 5},       {"-1.5", -1.5}, {"1.5-", -1.5}, {"+3", 3},
              {"1,234", 1234}, {".5", .5},       {"5.", 5},      {"1e3", 1000},  {"1E-2", .01},
              {"1E+30", 1e30}, {"$1,000", 1000}, {"-$5", -5},    {"$-5", -5},    {"(5)", -5}};
  for (const auto& row : rows) {
    const auto read = to_number(row.text);
    ASSERT_TRUE(read) << row.text;
    EXPECT_DOUBLE_EQ(*read, row.number) << row.text;
  }
}

TEST(ToNumber, LeavesEverythingElseAlone) {
  for (const char* text :
       {"",  " ", "TRUE", "FALSE", "A1", "1A",   "1E",  "1e+", "1.2.3", "--1",  "-",
        "$", ".", "(5",   "5)",    ",5", "0x10", "inf", "nan", "1 2",   "(-5-)"})
    EXPECT_FALSE(is_numeric(text)) << text;
}

TEST(FoldCase, IgnoresCaseBeyondAscii) {
  EXPECT_TRUE(equal_fold("Stra\u00dfe \u00c9", "stra\u00dfe \u00e9"));
  EXPECT_FALSE(equal_fold("a", "\u00e4"));
  EXPECT_EQ(hash_fold("\u0410\u0411c"), hash_fold("\u0430\u0431C"));
  EXPECT_EQ(fold_case("\xff\x41"), "\xff\x61");  // bytes that are no UTF-8 stay
}

}  // namespace
}  // namespace qto::text
