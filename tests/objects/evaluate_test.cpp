#include "tests/objects/desk.hpp"

namespace qto::embedded {
namespace {

TEST(Evaluate, GivesRangesValuesAndErrors) {
  Desk desk;
  const auto second = desk.book->AddWorksheet("My sheet");
  desk.put("A1", "10");
  desk.put("A2", "20");
  desk.book->AddName("Rate", "=Sheet1!$A$2");
  desk.book->AddName("Factor", "=2.5");
  const std::pair<const char*, const char*> cases[] = {
      {"", ""},
      {"=", ""},
      {"A1", "Sheet1!A1"},
      {"=A1", "Sheet1!A1"},
      {"$A$1:B2", "Sheet1!A1:B2"},
      {"A:A", "Sheet1!A:A"},
      {"'My sheet'!B7", "My sheet!B7"},
      {"[Book1]Sheet1!A1", "Sheet1!A1"},
      {"Rate", "Sheet1!A2"},
      {"Factor", "2.5"},
      {"Factor*2", "5"},
      {"A1+A2", "30"},
      {"=SUM(A1:A2)", "30"},
      {"OFFSET(A1,1,0)", "Sheet1!A2"},
      {"INDIRECT(\"A\"&1)", "Sheet1!A1"},
      {"A1:B2 B2:C3", "Sheet1!B2"},
      {"(A1,B2)", "Sheet1!A1,B2"},
      {"{1,2;3,4}", "{1,2;3,4}"},
      {"\"a\"&\"b\"", "\"ab\""},
      {"1=1", "TRUE"},
      {"1/0", "#DIV/0!"},
      {"Nowhere!A1", "#REF!"},
      {"Nothing", "#NAME?"},
      {"1+", "#NAME?"},
      {"NOSUCH(1)", "#NAME?"},
      {"  A2  ", "Sheet1!A2"},
  };
  for (const auto& [text, result] : cases)
    EXPECT_EQ(shown(desk.sheet->Evaluate(text)), result) << text;
  EXPECT_EQ(shown(second->Evaluate("A1")), "My sheet!A1");
}

TEST(Evaluate, RelativeNamesCountFromTheActiveCell) {
  Desk desk;
  desk.at("A1")->Select();
  desk.book->AddName("Right", "=Sheet1!B1");
  EXPECT_EQ(shown(desk.sheet->Evaluate("Right")), "Sheet1!B1");
  desk.at("C5")->Select();
  EXPECT_EQ(shown(desk.sheet->Evaluate("Right")), "Sheet1!D5");
  EXPECT_EQ(shown(desk.sheet->Evaluate("ROW()")).find('5') != std::string::npos, true);
}

TEST(Evaluate, SeesEditsAtOnce) {
  const Desk desk;
  desk.put("A1", "1");
  desk.put("B1", "=A1*10");
  EXPECT_EQ(shown(desk.sheet->Evaluate("B1+1")), "11");
  desk.put("A1", "2");
  EXPECT_EQ(shown(desk.sheet->Evaluate("B1+1")), "21");
}

TEST(WorksheetFunction, MatchAndCountIf) {
  Desk desk;
  int row = 1;
  for (const char* typed : {"10", "20", "pear", "30", "TRUE"})
    desk.sheet->Cells(row++, 1)->put_Formula(typed);
  const auto functions = desk.app->WorksheetFunction();
  const auto list = desk.at("A1:A5");
  EXPECT_EQ(functions->Match(20.0, list, 0.0), 2.0);
  EXPECT_EQ(functions->Match(std::int32_t{30}, list, 0.0), 4.0);
  EXPECT_EQ(functions->Match("PEAR", list, 0.0), 3.0);
  EXPECT_EQ(functions->Match(true, list, 0.0), 5.0);
  EXPECT_EQ(functions->Match(25.0, list), 2.0);
  EXPECT_EQ(functions->Match(Variant(desk.at("A4")), list, 0.0), 4.0);
  EXPECT_EQ(functions->Match(99.0, list, 0.0), std::nullopt);
  EXPECT_EQ(functions->Match(Empty{}, list, 0.0), std::nullopt);
  desk.put("A6", "0");
  EXPECT_EQ(functions->Match(Empty{}, desk.at("A5:A6"), 0.0), 2.0);
  EXPECT_EQ(functions->Match(20.0, desk.at("A1:B5"), 0.0), std::nullopt);  // no vector

  EXPECT_EQ(functions->CountIf(list, ">=20"), 2.0);
  EXPECT_EQ(functions->CountIf(list, 10.0), 1.0);
  EXPECT_EQ(functions->CountIf(list, "p*"), 1.0);
  EXPECT_FAILS(functions->CountIf(nullptr, 1.0));
}

}  // namespace
}  // namespace qto::embedded
