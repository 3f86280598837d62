#include "tests/objects/desk.hpp"

namespace qto::embedded {
namespace {

TEST(Values, ConstantsAsFormulaTexts) {
  const Desk desk;
  const std::pair<const char*, const char*> typed[] = {
      {"1.5", "1.5"},        {"0.1", "0.1"},  {"true", "TRUE"}, {"#N/A", "#N/A"},
      {"plain", "plain"},    {"'007", "007"}, {"50%", "0.5"},   {"3/1/2024", "45352"},
      {"1,234.5", "1234.5"}, {"'=A1", "=A1"}, {" x ", " x "},   {"1e20", "1E+20"},
  };
  for (const auto& [text, formula] : typed) {
    const auto cell = desk.put("A1", text);
    EXPECT_EQ(cell->Formula(), formula);
    EXPECT_EQ(cell->FormulaLocal(), formula);
    EXPECT_FALSE(cell->HasFormula());
    std::string appended = "kept ";
    desk.sheet->append_cell_formula({1, 1}, appended);
    EXPECT_EQ(appended, std::string("kept ") + formula);
  }
  EXPECT_EQ(desk.at("Z99")->Formula(), "");
  EXPECT_EQ(desk.sheet->cell_value({99, 26}), Variant());
}

TEST(Values, TypedConstantsBringTheirFormat) {
  const Desk desk;
  struct Case {
    const char* typed;
    const char* value;
    const char* format;
    const char* text;
  };
  const Case cases[] = {
      {"50%", "0.5", "0%", "50%"},
      {"1.5%", "0.015", "0.00%", "1.50%"},
      {"3/1/2024", "d45352", "m/d/yyyy", "3/1/2024"},
      {"$5", "5", "$#,##0", "$5"},
      {"1,234", "1234", "#,##0", "1,234"},
      {"TRUE", "TRUE", "General", "TRUE"},
      {"#DIV/0!", "#DIV/0!", "General", "#DIV/0!"},
      {"text", "\"text\"", "General", "text"},
  };
  int row = 1;
  for (const Case& c : cases) {
    const auto cell = desk.sheet->Cells(row++, 1);
    cell->put_Formula(c.typed);
    EXPECT_EQ(shown(cell->value()), c.value) << c.typed;
    EXPECT_EQ(cell->NumberFormat(), c.format) << c.typed;
    EXPECT_EQ(cell->Text(), c.text) << c.typed;
  }
}

TEST(Values, TextCellsKeepWhatIsTyped) {
  const Desk desk;
  desk.at("A1:A2")->put_NumberFormat("@");
  desk.put("A1", "=1+1");
  desk.put("A2", "007");
  EXPECT_EQ(desk.value("A1"), "\"=1+1\"");
  EXPECT_EQ(desk.value("A2"), "\"007\"");
  EXPECT_FALSE(desk.at("A1")->HasFormula());
}

TEST(Values, BlocksAreArrays) {
  const Desk desk;
  desk.put("A1", "1");
  desk.put("B2", "two");
  EXPECT_EQ(desk.value("A1:B2"), "{1,;,\"two\"}");
  EXPECT_EQ(desk.value("A2:A2"), "");
  const Variant column = desk.at("A:A")->value();
  ASSERT_TRUE(column.is_array());
  EXPECT_EQ(column.array().rows(), 1'048'576);
  EXPECT_EQ(shown(column.array().at(1, 1)), "1");
  EXPECT_FAILS(desk.at("A:XFD")->value());
}

TEST(Values, OneCellMembersOfBlocks) {
  const Desk desk;
  desk.put("A1:A3", "=ROW()");
  EXPECT_TRUE(desk.at("A1:A3")->HasFormula());
  EXPECT_FALSE(desk.at("A1:A4")->HasFormula());
  EXPECT_FALSE(desk.at("A:A")->HasFormula());
  EXPECT_EQ(desk.at("A1:A2")->Text(), "");
  EXPECT_FAILS(desk.at("A1:A2")->Formula());
}

TEST(Values, TextIsAsWideAsTheColumn) {
  const Desk desk;
  desk.put("A1", "123456789");
  desk.at("A1")->put_NumberFormat("#,##0.00");
  sheet_of(desk.sheet).layout.set_columns(1, 1, {5, false});
  EXPECT_EQ(desk.at("A1")->Text(), "#####");
  sheet_of(desk.sheet).merges.push_back({{1, 1}, {1, 3}});
  EXPECT_EQ(desk.at("A1")->Text(), "123,456,789.00");
  desk.put("B9", "word");
  desk.at("B9")->put_NumberFormat("0;0;0;\"<\"@\">\"");
  EXPECT_EQ(desk.at("B9")->Text(), "<word>");
}

TEST(Values, DatesOfThe1904SystemAreTheSameMoments) {
  const Desk desk;
  book_of(desk.book).date1904 = true;
  desk.put("A1", "3/1/2024");
  EXPECT_EQ(desk.at("A1")->Formula(), "43890");  // as the book counts
  EXPECT_EQ(desk.value("A1"), "d45352");         // as automation counts
}

TEST(Formulas, OfCellsAndArrays) {
  const Desk desk;
  desk.put("A1:A2", "5");
  desk.put("B1:B2", "=a1*2+sum($A$1:A1)");
  EXPECT_EQ(desk.at("B2")->Formula(), "=A2*2+SUM($A$1:A2)");
  EXPECT_EQ(desk.at("B2")->FormulaR1C1Local(), "=RC[-1]*2+SUM(R1C1:RC[-1])");
  EXPECT_EQ(desk.value("B1:B2"), "{15;20}");
  EXPECT_TRUE(desk.sheet->cell_has_formula({2, 2}));

  desk.at("C1:C2")->put_FormulaArray("=A1:A2*10");
  EXPECT_EQ(desk.at("C1")->Formula(), "=A1:A2*10");
  EXPECT_EQ(desk.at("C2")->Formula(), "=A1:A2*10");
  EXPECT_EQ(desk.value("C1:C2"), "{50;50}");
}

TEST(Formulas, FollowTheirPrecedents) {
  const Desk desk;
  desk.put("A1", "1");
  desk.put("B1", "=A1+1");
  desk.put("C1", "=B1+Extra");
  EXPECT_EQ(desk.value("C1"), "#NAME?");
  desk.book->AddName("Extra", "=100");
  EXPECT_EQ(desk.value("C1"), "102");
  desk.at("A1")->put_value(5.0);
  EXPECT_EQ(desk.value("C1"), "106");
  desk.put("D1", "=Later!A1+1");
  EXPECT_EQ(desk.value("D1"), "#REF!");
  desk.book->AddWorksheet("Later")->Range("A1")->put_value(7.0);
  EXPECT_EQ(desk.value("D1"), "8");
  desk.put("B1", "oops");
  EXPECT_EQ(desk.value("C1"), "#VALUE!");
}

TEST(Formulas, UseTheMomentThatIsSet) {
  Desk desk;
  desk.app.set_now(45352.25);
  desk.put("A1", "=TODAY()");
  EXPECT_EQ(desk.value("A1"), "45352");
}

TEST(Formulas, ReadOtherOpenBooks) {
  Desk desk;
  const auto other = desk.app.Workbooks()->Add();
  other->Worksheets(1)->Range("A1")->put_value(3.0);
  desk.put("A1", "=[Book2]Sheet1!A1*2");
  EXPECT_EQ(desk.value("A1"), "6");
  EXPECT_EQ(desk.at("A1")->Formula(), "=[Book2]Sheet1!A1*2");
  other->Worksheets(1)->Range("A1")->put_value(4.0);
  EXPECT_EQ(desk.value("A1"), "8");
  desk.put("A2", "='D:\\Data\\[Far.xlsx]My sheet'!$B$2");
  EXPECT_EQ(desk.at("A2")->Formula(), "='D:\\Data\\[Far.xlsx]My sheet'!$B$2");
  const auto links = desk.book->LinkSources(host::link_type_workbooks);
  EXPECT_EQ(links, (std::vector<std::string>{"Book2", "D:\\Data\\Far.xlsx"}));
  EXPECT_TRUE(desk.book->LinkSources(2).empty());
}

}  // namespace
}  // namespace qto::embedded
