#include "tests/libreoffice/two_hosts.hpp"

namespace qto {
namespace {

INSTANTIATE_TEST_SUITE_P(Hosts, OverBothHosts, testing::Values("Embedded", "LibreOffice"),
                         [](const auto& host) { return std::string(host.param); });

TEST_P(OverBothHosts, CellsHoldWhatIsPutIntoThem) {
  put("A1", "2.5");
  put("A2", "text");
  put("A3", "=A1*2");
  put("A4", "=A1>A3");
  put("A5", "=1/0");
  put("A6", "=A2&\"!\"");
  sheet->Range("A7")->put_value(true);
  EXPECT_EQ(value("A1:A7"), "{2.5;\"text\";5;FALSE;#DIV/0!;\"text!\";TRUE}");
  EXPECT_EQ(sheet->Range("A3")->Formula(), "=A1*2");
  EXPECT_EQ(sheet->Range("A2")->Formula(), "text");
  EXPECT_TRUE(sheet->Range("A3")->HasFormula());
  EXPECT_FALSE(sheet->Range("A1")->HasFormula());
  EXPECT_FALSE(sheet->Range("A7")->HasFormula());
  EXPECT_EQ(sheet->UsedRange()->Address(false, false), "A1:A7");
  EXPECT_EQ(value("B1"), "");
}

TEST_P(OverBothHosts, FormulasReadAsTheyWereWritten) {
  book->AddWorksheet("My data");
  const char* formulas[] = {
      "=SUM(A1:A3,'My data'!B2)",
      "=IF(A1>1,TRUE,\"a,b\")",
      "=SUM((A1:A2,C3))",
      "=SUM(Sheet1:'My data'!B2)",
      "=IFERROR(VLOOKUP(1,$A:$C,2,FALSE),0)",
      "=SUM(A1:B3 B2:C4)",
      "=EOMONTH(A1,1)",
      "=CONCAT(A1,\"x\")",
      "=SUM({1,2;3,4})",
      "=CEILING(A1,2)",
      "=2^-3%",
  };
  for (const char* formula : formulas) {
    if (std::string_view(formula).find(":'") != std::string_view::npos) continue;
    put("F9", formula);
    EXPECT_EQ(sheet->Range("F9")->Formula(), formula);
  }
  put("F9", "=SUM('Sheet1:My data'!B2)");
  EXPECT_EQ(sheet->Range("F9")->Formula(), "=SUM('Sheet1:My data'!B2)");
}

TEST_P(OverBothHosts, TextsEvaluateToValuesRangesAndErrors) {
  put("A1", "1");
  put("A2", "2");
  put("A3", "3");
  EXPECT_EQ(evaluated("SUM(A1:A3)"), "6");
  EXPECT_EQ(evaluated("A2"), "Sheet1!A2");
  EXPECT_EQ(evaluated("=OFFSET(A1,1,0,2)"), "Sheet1!A2:A3");
  EXPECT_EQ(evaluated("INDEX(A1:A3,3)"), "Sheet1!A3");
  EXPECT_EQ(evaluated("A1:A3*2"), "{2;4;6}");
  EXPECT_EQ(evaluated("\"a\"&A1"), "\"a1\"");
  EXPECT_EQ(evaluated("A1=1"), "TRUE");
  EXPECT_EQ(evaluated("1/0"), "#DIV/0!");
  EXPECT_EQ(evaluated("#N/A"), "#N/A");
  EXPECT_EQ(evaluated("NoSuchName"), "#NAME?");
  EXPECT_EQ(evaluated(""), "");
  EXPECT_EQ(evaluated("A1:A3 A2:B2"), "Sheet1!A2");
}

TEST_P(OverBothHosts, PiecesAreSeenFromTheirCell) {
  for (const char* address : {"A1", "A2", "A3"}) put(address, std::string(1, address[1]));
  put("C2", "=A1:A3*10");
  const CellPos cell{2, 3};
  EXPECT_EQ(shown(sheet->value_in_cell(cell, "A1:A3")), "2");
  EXPECT_EQ(shown(sheet->value_in_cell(cell, "A1:A3*10")), "20");
  EXPECT_EQ(shown(sheet->value_in_cell(cell, "ROW()+COLUMN()")), "5");
  EXPECT_EQ(shown(sheet->value_in_cell(cell, "A1:A3>1")), "TRUE");
  EXPECT_EQ(sheet->range_in_cell(cell, "A1:A3")->Address(false, false), "A1:A3");
  EXPECT_EQ(sheet->range_in_cell(cell, "OFFSET(A1,ROW()-1,0)")->Address(false, false), "A2");
  EXPECT_FALSE(sheet->range_in_cell(cell, "SUM(A1:A3)"));
}

TEST_P(OverBothHosts, NamesOfBothLevels) {
  const auto other = book->AddWorksheet("Other");
  put("A1", "7");
  book->AddName("Rate", "=Sheet1!$A$1");
  other->AddName("Share", "=Sheet1!$A$1*2");
  EXPECT_EQ(book->find_name("RATE")->RefersTo(), "=Sheet1!$A$1");
  EXPECT_FALSE(book->find_name("Share"));
  EXPECT_EQ(other->find_name("share")->Name(), "Other!Share");
  EXPECT_EQ(sheet->Range("A1")->find_name()->Name(), "Rate");
  EXPECT_FALSE(sheet->Range("A2")->find_name());
  EXPECT_EQ(evaluated("Rate+1"), "8");
  EXPECT_EQ(shown(other->Evaluate("Share")), "14");
  EXPECT_EQ(book->AllNames().size(), 2u);
  EXPECT_THROW(book->Names("None"), host::HostFailure);
}

TEST_P(OverBothHosts, CirclesAreFound) {
  put("A1", "=B1+1");
  EXPECT_FALSE(sheet->CircularReference());
  put("B1", "=A1*2");
  ASSERT_TRUE(sheet->CircularReference());
  EXPECT_EQ(sheet->CircularReference()->Row(), 1);
}

TEST_P(OverBothHosts, EdgesOfDataBlocks) {
  for (const char* address : {"A1", "A2", "A3", "A7", "C1"}) put(address, "1");
  const auto end = [&](const char* from, std::int32_t direction) {
    return sheet->Range(from)->End(direction)->Address(false, false);
  };
  EXPECT_EQ(end("A1", host::xlDown), "A3");
  EXPECT_EQ(end("A3", host::xlDown), "A7");
  EXPECT_EQ(end("A7", host::xlDown), "A1048576");
  EXPECT_EQ(end("A1", host::xlToRight), "C1");
  EXPECT_EQ(end("C1", host::xlToRight), "XFD1");
}

TEST_P(OverBothHosts, WhatIsHiddenAndWhatIsInFront) {
  const auto other = book->AddWorksheet("Other");
  EXPECT_FALSE(*sheet->Range("B2")->EntireRow()->Hidden());
  sheet->Range("B2:B3")->EntireRow()->put_Hidden(true);
  EXPECT_TRUE(*sheet->Range("B3")->EntireRow()->Hidden());
  EXPECT_FALSE(sheet->Range("B1:B2")->EntireRow()->Hidden().has_value());
  other->Activate();
  EXPECT_EQ(app->ActiveSheet()->Name(), "Other");
  sheet->put_Visible(host::xlSheetHidden);
  EXPECT_THROW(sheet->Activate(), host::HostFailure);
  EXPECT_THROW(other->put_Visible(host::xlSheetHidden), host::HostFailure);
  app->Goto(other->Range("D90"), true);
  EXPECT_EQ(app->ActiveWindow()->ScrollRow(), 90);
  EXPECT_EQ(ref_cast<host::Range>(app->Selection())->Address(false, false), "D90");
}

TEST_P(OverBothHosts, FunctionsThatAreCalledDirectly) {
  for (const char* address : {"A1", "A2", "A3"}) put(address, std::string(1, address[1]));
  const auto functions = app->WorksheetFunction();
  EXPECT_EQ(functions->Match(2.0, sheet->Range("A1:A3"), 0), 2.0);
  EXPECT_EQ(functions->Match(9.0, sheet->Range("A1:A3"), 0), std::nullopt);
  EXPECT_EQ(functions->CountIf(sheet->Range("A1:A3"), ">1"), 2.0);
}

TEST_P(OverBothHosts, ClosedBooksLeaveDeadHandles) {
  put("A1", "1");
  const auto cell = sheet->Range("A1");
  const auto name = book->AddName("Rate", "=Sheet1!$A$1");
  book->Close(false);
  EXPECT_FALSE(book->exists());
  EXPECT_FALSE(sheet->exists());
  EXPECT_FALSE(name->exists());
  EXPECT_EQ(sheet->IdentityStamp(), 0u);
  EXPECT_FALSE(sheet->find_range("A1"));
  EXPECT_THROW(cell->value(), host::HostFailure);
  EXPECT_THROW(book->SheetsCount(), host::HostFailure);
  EXPECT_EQ(app->Workbooks()->Count(), 0);
}

}  // namespace
}  // namespace qto
