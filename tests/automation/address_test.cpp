#include "qto/automation/address.hpp"

#include <gtest/gtest.h>

namespace qto {
namespace {

TEST(RangeText, DenotesCellsAreasLinesAndIntersections) {
  const struct {
    const char* text;
    const char* block;  // "" when it is no range
  } rows[] = {{"A1", "A1"},        {"$b$7", "B7"},
              {"B9:A2", "A2:B9"},  {"A:A", "A:A"},
              {"C:$A", "A:C"},     {"3:5", "3:5"},
              {" A1 ", "A1"},      {"A1:C3 B2:D9", "B2:C3"},
              {"A:A 3:3", "A3"},   {"XFD1048576", "XFD1048576"},
              {"XFE1", ""},        {"A1048577", ""},
              {"A0", ""},          {"A01", ""},
              {"A", ""},           {"1", ""},
              {"A1:B", ""},        {"A1 B2", ""},
              {"Total", ""},       {"", ""},
              {"A1B", ""},         {"A1:", ""},
              {"A99999999999", ""}};
  for (const auto& row : rows) {
    const auto block = parse_range_text(row.text);
    EXPECT_EQ(block ? address_of(*block) : "", row.block) << row.text;
  }
}

TEST(Address, WritesDollarsAndR1C1) {
  const Rect block{{2, 2}, {9, 4}};
  EXPECT_EQ(address_of(block, true, true), "$B$2:$D$9");
  EXPECT_EQ(address_of(block, true, false), "B$2:D$9");
  EXPECT_EQ(address_of(Rect{{1, 1}, {max_rows, 2}}, true, true), "$A:$B");
  EXPECT_EQ(r1c1_of(block, true, true, {1, 1}), "R2C2:R9C4");
  EXPECT_EQ(r1c1_of(Rect::cell({2, 2}), false, false, {3, 2}), "R[-1]C");
}

TEST(SheetName, IsQuotedWhereAFormulaNeedsIt) {
  const struct {
    const char* name;
    const char* written;
  } rows[] = {{"Data", "Data"},
              {"My Sheet", "'My Sheet'"},
              {"Bob's", "'Bob''s'"},
              {"2020", "'2020'"},
              {"A1", "'A1'"}};
  for (const auto& row : rows) {
    std::string out;
    append_sheet_name(out, row.name);
    EXPECT_EQ(out, row.written);
  }
}

}  // namespace
}  // namespace qto
