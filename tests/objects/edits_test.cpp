#include "qto/hosts/embedded/objects/editing/sheet_edits.hpp"
#include "tests/objects/desk.hpp"

namespace qto::embedded {
namespace {

TEST(Edits, ValuesOfEveryKind) {
  const Desk desk;
  const auto cell = desk.at("A1");
  cell->put_value("=1+1");
  EXPECT_EQ(desk.value("A1"), "\"=1+1\"");  // a value is never a formula
  cell->put_value(std::int32_t{7});
  EXPECT_EQ(desk.value("A1"), "7");
  cell->put_value(ErrorValue::na);
  EXPECT_EQ(desk.value("A1"), "#N/A");
  cell->put_value(Date{45352});
  EXPECT_EQ(desk.value("A1"), "d45352");
  cell->put_value(Empty{});
  EXPECT_EQ(desk.value("A1"), "");
  EXPECT_FAILS(cell->put_value(Variant(desk.at("B1"))));

  auto array = make_ref<VariantArray>(2, 1);
  array->at(1, 1) = 1.0;
  array->at(2, 1) = "x";
  desk.at("C1:D2")->put_value(Variant(Ref<const VariantArray>(array)));
  EXPECT_EQ(desk.value("C1:D2"), "{1,#N/A;\"x\",#N/A}");
}

TEST(Edits, ClearingABigBlockTouchesOnlyWhatIsThere) {
  const Desk desk;
  desk.put("A1", "=1");
  desk.put("XFD1048576", "2");
  desk.at("A:XFD")->put_value(Empty{});
  EXPECT_EQ(desk.value("A1"), "");
  EXPECT_FALSE(desk.at("A1")->HasFormula());
  EXPECT_EQ(desk.value("XFD1048576"), "");
  EXPECT_FAILS(desk.at("A:XFD")->put_value(1.0));
}

TEST(Edits, BadFormulasChangeNothing) {
  const Desk desk;
  desk.put("A1", "1");
  for (const char* formula : {"=1+", "=SUM(", "=\"open"}) EXPECT_FAILS(desk.put("A1", formula));
  EXPECT_FAILS(desk.at("A1")->put_FormulaArray("=)"));
  EXPECT_EQ(desk.value("A1"), "1");
  EXPECT_FAILS(desk.at("A1")->put_NumberFormat("[bad"));
}

TEST(Edits, ArraysChangeAsAWhole) {
  const Desk desk;
  desk.at("A1:B2")->put_FormulaArray("={1,2;3,4}");
  EXPECT_EQ(desk.value("A1:B2"), "{1,2;3,4}");
  EXPECT_FAILS(desk.put("A1", "5"));
  EXPECT_FAILS(desk.at("A1:A2")->put_value(Empty{}));
  desk.at("A1:C3")->put_value(Empty{});
  EXPECT_FALSE(desk.at("B2")->HasFormula());
  desk.put("A1", "5");
  EXPECT_EQ(desk.value("A1:B2"), "{5,;,}");
}

TEST(Edits, SheetsAreAddedAndDeleted) {
  Desk desk;
  desk.put("A1", "=Sheet2!A1");
  const auto second = desk.book->AddWorksheet();
  EXPECT_EQ(second->Name(), "Sheet2");
  EXPECT_EQ(second->Index(), 2);
  second->Range("A1")->put_value(3.0);
  EXPECT_EQ(desk.value("A1"), "3");
  second->Activate();
  delete_sheet(second);
  EXPECT_FALSE(second->exists());
  EXPECT_EQ(desk.value("A1"), "#REF!");
  EXPECT_EQ(desk.app->ActiveSheet()->Name(), "Sheet1");
  EXPECT_FAILS(delete_sheet(desk.sheet));  // the last one
  for (const char* name : {"sheet1", "a/b", "'x", "this name is longer than 31 characters"})
    EXPECT_FAILS(desk.book->AddWorksheet(name)) << name;
  book_of(desk.book).structure.enabled = true;
  EXPECT_FAILS(desk.book->AddWorksheet());
}

TEST(Edits, RenamingASheetIsFollowedByFormulasAndNames) {
  Desk desk;
  const auto data = desk.book->AddWorksheet("Data");
  data->Range("A1")->put_value(3.0);
  desk.put("A1:A2", "=Data!A1*2");
  desk.at("B1:B2")->put_FormulaArray("=Data!A1:A2");
  desk.book->AddName("Rate", "=Data!$A$1");
  const auto stamp = data->IdentityStamp();
  rename_sheet(data, "New data");
  EXPECT_EQ(data->Name(), "New data");
  EXPECT_NE(data->IdentityStamp(), stamp);
  EXPECT_EQ(desk.at("A2")->Formula(), "='New data'!A2*2");
  EXPECT_EQ(desk.at("B1")->Formula(), "='New data'!A1:A2");
  EXPECT_EQ(desk.book->Names("Rate")->RefersTo(), "='New data'!$A$1");
  EXPECT_EQ(desk.value("A1"), "6");
  EXPECT_FAILS(rename_sheet(data, "Sheet1"));
  rename_sheet(data, "NEW DATA");
  EXPECT_EQ(desk.book->Worksheets("new data")->Name(), "NEW DATA");
}

TEST(Edits, TheUsedRangeGrows) {
  const Desk desk;
  EXPECT_EQ(desk.sheet->UsedRange()->Address(), "$A$1");
  desk.put("C3", "1");
  desk.put("E2", "1");
  EXPECT_EQ(desk.sheet->UsedRange()->Address(), "$C$2:$E$3");
}

}  // namespace
}  // namespace qto::embedded
