#include "tests/objects/desk.hpp"

namespace qto::embedded {
namespace {

struct AddressCase {
  const char* range;
  bool row_absolute;
  bool column_absolute;
  std::int32_t style;
  bool external;
  const char* expected;
};

TEST(Address, EveryForm) {
  const Desk desk;
  desk.at("C4")->Select();
  const AddressCase cases[] = {
      {"B2:B9", true, true, host::xlA1, false, "$B$2:$B$9"},
      {"B2", false, false, host::xlA1, false, "B2"},
      {"B2:C3", true, false, host::xlA1, false, "B$2:C$3"},
      {"B2", false, true, host::xlA1, false, "$B2"},
      {"B:C", true, true, host::xlA1, false, "$B:$C"},
      {"3:3", true, true, host::xlA1, false, "$3:$3"},
      {"A:XFD", true, true, host::xlA1, false, "$A:$XFD"},
      {"B2", true, true, host::xlR1C1, false, "R2C2"},
      // Relative to the active cell, C4.
      {"B2:D5", false, false, host::xlR1C1, false, "R[-2]C[-1]:R[1]C[1]"},
      {"C4", false, false, host::xlR1C1, false, "RC"},
      {"B2", true, true, host::xlA1, true, "[Book1]Sheet1!$B$2"},
      {"$B$2", false, false, host::xlR1C1, true, "[Book1]Sheet1!R[-2]C[-1]"},
  };
  for (const AddressCase& c : cases) {
    EXPECT_EQ(desk.at(c.range)->Address(c.row_absolute, c.column_absolute, c.style, c.external),
              c.expected)
        << c.range;
    EXPECT_EQ(
        desk.at(c.range)->AddressLocal(c.row_absolute, c.column_absolute, c.style, c.external),
        c.expected);
  }
}

TEST(Address, ExternalAddressesTakeApostrophesWhereNeeded) {
  Desk desk;
  const auto external = [](const Ref<host::Worksheet>& sheet) {
    return sheet->Range("A1")->Address(true, true, host::xlA1, true);
  };
  EXPECT_EQ(external(desk.book->AddWorksheet("My sheet")), "'[Book1]My sheet'!$A$1");
  EXPECT_EQ(external(desk.book->AddWorksheet("Jim's")), "'[Book1]Jim''s'!$A$1");
  auto book = std::make_unique<Book>();
  book->name = "My Book.xlsx";
  book->add_sheet("Data");
  EXPECT_EQ(external(desk.app.adopt(std::move(book))->Worksheets(1)), "'[My Book.xlsx]Data'!$A$1");
}

TEST(Address, RangeTextsAreAddressesOnly) {
  const Desk desk;
  desk.book->AddName("Rate", "=Sheet1!$B$2");
  const std::pair<const char*, const char*> accepted[] = {
      {"b7", "B7"},   {"$B$7", "B7"}, {" A1:B2 ", "A1:B2"},     {"B2:A1", "A1:B2"},
      {"A:A", "A:A"}, {"3:1", "1:3"}, {"A1:C3 B2:D4", "B2:C3"}, {"XFD1048576", "XFD1048576"},
  };
  for (const auto& [text, address] : accepted) {
    const auto range = desk.sheet->find_range(text);
    ASSERT_TRUE(range) << text;
    EXPECT_EQ(range->Address(false, false), address);
    Rect block;
    EXPECT_TRUE(desk.sheet->find_block(text, block));
    EXPECT_EQ(block, range->block());
  }
  for (const char* text : {"", " ", "Rate", "A0", "XFE1", "A1048577", "A1:B", "A1 C3", "A1:B2!",
                           "Sheet1!A1", "1", "A", "A1,B2", "A1()"}) {
    EXPECT_FALSE(desk.sheet->find_range(text)) << text;
    EXPECT_FAILS(desk.sheet->Range(text));
  }
}

TEST(Address, PartsOfARange) {
  const Desk desk;
  const auto range = desk.at("B2:D5");
  EXPECT_EQ(range->Cells(1, 1)->Address(), "$B$2");
  EXPECT_EQ(range->Cells(5, 4)->Address(), "$E$6");  // outside of the range
  EXPECT_EQ(range->Cells(0, 0)->Address(), "$A$1");
  EXPECT_FAILS(range->Cells(-1, 1));
  EXPECT_FAILS(range->Cells(2'147'483'647, 1));
  EXPECT_EQ(range->Rows(2)->Address(), "$B$3:$D$3");
  EXPECT_EQ(range->Columns(3)->Address(), "$D$2:$D$5");
  EXPECT_FAILS(range->Rows(5));
  EXPECT_FAILS(range->Columns(0));
  EXPECT_EQ(range->EntireRow()->Address(), "$2:$5");
  EXPECT_EQ(range->EntireColumn()->Address(), "$B:$D");
  EXPECT_EQ(range->CellsCount(), 12);
  EXPECT_EQ(desk.at("A:A")->CellsCount(), 1'048'576);
  EXPECT_FAILS(desk.sheet->Cells(0, 1));
  EXPECT_FAILS(desk.sheet->Cells(1, 16'385));
}

TEST(Address, IntersectGivesTheCommonCells) {
  Desk desk;
  const auto common = desk.app->Intersect(desk.at("A1:C3"), desk.at("B2:D4"));
  ASSERT_TRUE(common);
  EXPECT_EQ(common->Address(), "$B$2:$C$3");
  EXPECT_FALSE(desk.app->Intersect(desk.at("A1"), desk.at("B2")));
  const auto other = desk.book->AddWorksheet();
  EXPECT_FALSE(desk.app->Intersect(desk.at("A1"), other->Range("A1")));
  EXPECT_FAILS(desk.app->Intersect(desk.at("A1"), nullptr));
}

TEST(Address, ConvertFormulaBetweenStyles) {
  Desk desk;
  desk.at("B5")->Select();
  const auto to_a1 = [&](const char* text) {
    return desk.app->ConvertFormula(text, host::xlR1C1, host::xlA1);
  };
  const std::pair<const char*, const char*> cases[] = {
      {"R1C1", "$A$1"},
      {"=R1C1", "=$A$1"},
      {"R[-1]C", "B4"},
      {"RC[2]", "D5"},
      {"r2c3:r4c5", "$C$2:$E$4"},
      {"R3", "$3:$3"},
      {"C", "B:B"},
      {"R1:R[1]", "$1:6"},
      {"=SUM(R1C1,\"R1C1\")*RATE(R2C2)", "=SUM($A$1,\"R1C1\")*RATE($B$2)"},
      {"'R1C1'!R2C2", "'R1C1'!$B$2"},
      {"Sheet1!R2C2", "Sheet1!$B$2"},
  };
  for (const auto& [r1c1, a1] : cases) EXPECT_EQ(to_a1(r1c1), a1);
  EXPECT_FAILS(to_a1("R[-5]C"));
  EXPECT_FAILS(to_a1("R1C20000"));
  EXPECT_EQ(desk.app->ConvertFormula("=$A$1+B4", host::xlA1, host::xlR1C1), "=R1C1+R[-1]C");
  EXPECT_EQ(desk.app->ConvertFormula("A1", host::xlA1, host::xlA1), "A1");
  EXPECT_EQ(desk.app->ConvertFormula("RC[-1]", host::xlR1C1, host::xlA1, desk.at("D9:E10")), "C9");
}

}  // namespace
}  // namespace qto::embedded
