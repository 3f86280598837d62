#include "qto/hosts/embedded/recalc/calculator.hpp"

#include <gtest/gtest.h>

#include <algorithm>

#include "qto/automation/text.hpp"
#include "tests/recalc/text_book.hpp"

namespace qto::embedded {
namespace {

class Books : public OpenBooks {
 public:
  explicit Books(std::vector<Book*> books) : books_(std::move(books)) {}
  Book* find(std::string_view name) const override {
    const auto found = std::find_if(books_.begin(), books_.end(), [&](const Book* book) {
      return text::equal_fold(book->name, name);
    });
    return found == books_.end() ? nullptr : *found;
  }
  std::vector<Book*> all() const override { return books_; }

 private:
  std::vector<Book*> books_;
};

class CalculatorTest : public testing::Test {
 protected:
  void calculate(double now = 45'000) { calculator_.calculate(book_.book, now); }
  /// Overwrites the value of a formula cell without telling anybody, so that one sees whether the
  /// formula is calculated again.
  void plant(std::string_view address, const Variant& value) {
    const CellAddress cell = book_.at(address);
    book_.book.store(cell.sheet->cells.touch(cell.pos), value);
  }

  TextBook book_;
  Books books_{{&book_.book}};
  Calculator calculator_{books_};
};

TEST_F(CalculatorTest, CalculatesInTheOrderOfPrecedents) {
  book_.formula("A1", "B1+Sheet2!A1");
  book_.formula("B1", "SUM(C1:C9)*2");
  book_.formula("C5", "D1&\"\"");
  book_.formula("C6", "D1/4");
  book_.formula("Sheet2!A1", "C1+Sheet1!C6");
  book_.value("D1", 10.0);
  book_.formula("E1", "D1/0");
  book_.formula("F1", "IFERROR(E1,\"none\")");
  EXPECT_TRUE(calculator_.needs_calculation(book_.book));
  calculate();
  EXPECT_EQ(book_.shown("B1"), "5");
  EXPECT_EQ(book_.shown("C5"), "10");
  EXPECT_EQ(book_.shown("A1"), "7.5");
  EXPECT_EQ(book_.shown("E1"), "#DIV/0!");
  EXPECT_EQ(book_.shown("F1"), "none");
  EXPECT_FALSE(calculator_.needs_calculation(book_.book));
}

TEST_F(CalculatorTest, OnlyWhatDependsOnTheChange) {
  book_.name("Rate", "Sheet1!$B$1");
  book_.value("B1", 3.0);
  book_.value("C1", 5.0);
  book_.formula("D1", "Rate*2");
  book_.formula("D2", "D1+1");
  book_.formula("D3", "C1*2");
  calculate();
  EXPECT_EQ(book_.shown("D2"), "7");
  plant("D1", 100.0);
  plant("D3", 100.0);
  book_.value("B1", 4.0);
  calculate();
  EXPECT_EQ(book_.shown("D1"), "8");
  EXPECT_EQ(book_.shown("D2"), "9");
  EXPECT_EQ(book_.shown("D3"), "100");
  book_.book.everything_changed();
  calculate();
  EXPECT_EQ(book_.shown("D3"), "10");
}

TEST_F(CalculatorTest, NothingIsCalculatedBehindAValueThatStaysTheSame) {
  book_.value("A1", 1.0);
  book_.formula("B1", "A1>0");
  book_.formula("C1", "IF(B1,1,2)");
  calculate();
  plant("C1", 77.0);
  book_.value("A1", 2.0);
  calculate();
  EXPECT_EQ(book_.shown("C1"), "77");
  book_.value("A1", -1.0);
  calculate();
  EXPECT_EQ(book_.shown("C1"), "2");
}

TEST_F(CalculatorTest, VolatileFunctionsFollowEveryCalculation) {
  book_.formula("A1", "NOW()");
  book_.formula("A2", "A1+1");
  calculate(45'000);
  EXPECT_EQ(book_.shown("A2"), "45001");
  book_.value("Z9", 1.0);
  calculate(45'010.5);
  EXPECT_EQ(book_.shown("A1"), "45010.5");
  EXPECT_EQ(book_.shown("A2"), "45011.5");
}

TEST_F(CalculatorTest, ReferencesThatTurnOutInEvaluationWaitForTheirCells) {
  // What INDIRECT and OFFSET reach comes later in the order of the sheet, in chains.
  book_.formula("A1", "INDIRECT(\"Z\"&B1)+1");
  book_.formula("B1", "2+3");
  book_.formula("Z5", "OFFSET(Z1,99,0)*2");
  book_.formula("Z100", "SUM(Y1:INDEX(Y:Y,3))");
  book_.formula("Y1", "W1");
  book_.formula("Y2", "W1");
  book_.formula("Y3", "W1");
  book_.formula("W1", "7");
  calculate();
  EXPECT_EQ(book_.shown("Z100"), "21");
  EXPECT_EQ(book_.shown("A1"), "43");
  book_.formula("W1", "8");
  calculate();
  EXPECT_EQ(book_.shown("A1"), "49");
}

TEST_F(CalculatorTest, PopularFormulasThatLookAtTheirOwnColumn) {
  book_.value("A1", 1.0);
  book_.value("A2", 2.0);
  book_.formula("A3", "SUM(A1:INDEX(A:A,ROW()-1))");
  book_.formula("A4", "SUM(A1:OFFSET(A4,-1,0))");
  book_.formula("A5", "INDEX(A:A,ROW()-1)*10");
  calculate();
  EXPECT_EQ(book_.shown("A3"), "3");
  EXPECT_EQ(book_.shown("A4"), "6");
  EXPECT_EQ(book_.shown("A5"), "60");
}

TEST_F(CalculatorTest, WatchedCellsThatChangeLaterInTheOrder) {
  book_.formula("A1", "INDEX(B1:B9,C1)");
  book_.formula("B3", "D1*2");
  book_.value("C1", 3.0);
  book_.value("D1", 1.0);
  calculate();
  EXPECT_EQ(book_.shown("A1"), "2");
  book_.value("D1", 5.0);
  calculate();
  EXPECT_EQ(book_.shown("A1"), "10");
}

TEST_F(CalculatorTest, CyclesGiveZero) {
  plant("A1", 5.0);
  plant("A2", 6.0);
  book_.formula("A1", "A2+1");
  book_.formula("A2", "A1+1");
  book_.formula("B1", "A1+10");
  book_.formula("C1", "INDIRECT(\"C2\")+1");
  book_.formula("C2", "C1");
  book_.formula("D1", "INDIRECT(\"D1\")+1");
  calculate();
  EXPECT_EQ(book_.shown("A1"), "0");
  EXPECT_EQ(book_.shown("A2"), "0");
  EXPECT_EQ(book_.shown("B1"), "10");
  EXPECT_EQ(book_.shown("C1"), "0");
  EXPECT_EQ(book_.shown("C2"), "0");
  EXPECT_EQ(book_.shown("D1"), "0");
}

TEST_F(CalculatorTest, CirclesInBranchesThatAreNotTakenAreNone) {
  book_.formula("A1", "IF(C1,B1,10)");
  book_.formula("B1", "IF(C1,20,A1)+D1");
  book_.formula("D1", "IF(C1,1,A1)");
  book_.array("E1:E2", "IF(C1,E2,A1)");
  calculate();
  EXPECT_EQ(book_.shown("A1"), "10");
  EXPECT_EQ(book_.shown("B1"), "20");
  EXPECT_EQ(book_.shown("E2"), "10");
  book_.value("C1", true);
  calculate();
  EXPECT_EQ(book_.shown("A1"), "21");
  EXPECT_EQ(book_.shown("B1"), "21");
  EXPECT_EQ(book_.shown("E1"), "0");
  book_.value("C1", 0.0);
  calculate();
  EXPECT_EQ(book_.shown("B1"), "20");
  EXPECT_EQ(book_.shown("E1"), "10");
}

TEST_F(CalculatorTest, IteratesCircularCells) {
  book_.book.iteration = {true, 50, 1e-9};
  // Interest on the average of a balance that holds the interest.
  book_.value("A1", 1000.0);
  book_.formula("A2", "A1+A3");
  book_.formula("A3", "AVERAGE(A1,A2)*0.1");
  book_.formula("A4", "ROUND(A3,4)");
  book_.formula("B1", "B1+1");
  book_.formula("C1", "IF(C2<3,C1,D1)&\"x\"");
  book_.formula("C2", "C2+1");
  book_.formula("D1", "\"d\"&D2");
  book_.formula("D2", "5");
  calculate();
  EXPECT_EQ(book_.shown("A4"), "105.2632");
  EXPECT_EQ(book_.shown("B1"), "50");
  EXPECT_EQ(book_.shown("C1"), "d5x");
  EXPECT_EQ(book_.shown("C2"), "50");
  book_.value("A1", 2000.0);
  calculate();
  EXPECT_EQ(book_.shown("A4"), "210.5263");
  EXPECT_EQ(book_.shown("B1"), "50");
}

TEST_F(CalculatorTest, DataTablesShowWhatIf) {
  book_.value("B1", 100.0);      // amount
  book_.formula("B2", "0.1+0");  // rate, an input with a formula
  book_.formula("B3", "Sheet2!A1+B1");
  book_.formula("Sheet2!A1", "Sheet1!B1*Sheet1!B2");
  book_.formula("D1", "B3");
  book_.value("E1", 200.0);
  book_.value("D2", 200.0);
  book_.formula("F1", "E1*2");
  book_.value("D3", 0.5);
  book_.data_table("E2:F3", "TABLE(B1,B2)");
  book_.formula("D5", "B3");
  book_.formula("E5", "B1");
  book_.value("C6", 1.0);
  book_.data_table("D6:E6", "TABLE(,B1)");
  book_.formula("C9", "B3&\"x\"");
  book_.value("D8", 2.0);
  book_.data_table("D9:E9", "TABLE(B1,)");
  book_.formula("G1", "SUM(E2:F3)");
  calculate();
  EXPECT_EQ(book_.shown("E2"), "40200");
  EXPECT_EQ(book_.shown("F2"), "80400");
  EXPECT_EQ(book_.shown("E3"), "300");
  EXPECT_EQ(book_.shown("F3"), "600");
  EXPECT_EQ(book_.shown("D6"), "1.1");
  EXPECT_EQ(book_.shown("E6"), "1");
  EXPECT_EQ(book_.shown("D9"), "2.2x");
  EXPECT_EQ(book_.shown("E9"), "0x");
  EXPECT_EQ(book_.shown("G1"), "121500");
  EXPECT_EQ(book_.shown("B1"), "100");
  EXPECT_EQ(book_.shown("B2"), "0.1");
  EXPECT_EQ(book_.shown("B3"), "110");
  plant("E2", 7.0);
  book_.value("Z1", 1.0);
  calculate();
  EXPECT_EQ(book_.shown("E2"), "7");
  book_.value("E1", 300.0);
  calculate();
  EXPECT_EQ(book_.shown("E2"), "60300");
  EXPECT_EQ(book_.shown("G1"), "182250");
}

TEST_F(CalculatorTest, RememberedValuesOfCyclesStandUntilSomethingThereChanges) {
  book_.formula("A1", "A2+B1");
  book_.formula("A2", "A1");
  book_.book.calculation_done();
  plant("A1", 5.0);
  plant("A2", 5.0);
  book_.value("Z1", 1.0);
  calculate();
  EXPECT_EQ(book_.shown("A1"), "5");
  book_.value("B1", 1.0);
  calculate();
  EXPECT_EQ(book_.shown("A1"), "0");
}

TEST_F(CalculatorTest, ArrayFormulasFillTheirBlock) {
  book_.value("A1", 1.0);
  book_.value("A2", 2.0);
  book_.array("C1:C2", "A1:A2*10");
  book_.array("D1:E3", "A1:A2+1");
  book_.array("F1:G2", "5");
  book_.array("H1:H2", "SUM(C1:C2)");
  book_.formula("I1", "C2");
  calculate();
  EXPECT_EQ(book_.shown("C2"), "20");
  EXPECT_EQ(book_.shown("D2"), "3");
  EXPECT_EQ(book_.shown("E2"), "3");
  EXPECT_EQ(book_.shown("E3"), "#N/A");
  EXPECT_EQ(book_.shown("G2"), "5");
  EXPECT_EQ(book_.shown("H2"), "30");
  EXPECT_EQ(book_.shown("I1"), "20");
  book_.value("A2", 3.0);
  calculate();
  EXPECT_EQ(book_.shown("H1"), "40");
  EXPECT_EQ(book_.shown("I1"), "30");
}

TEST_F(CalculatorTest, UnknownFunctionsKeepTheirValueUntilTheirSourcesChange) {
  book_.formula("A1", "MyMacro(B1)+1");
  book_.formula("A2", "A1*2");
  book_.formula("A3", "SUM(");
  book_.book.calculation_done();
  plant("A1", 5.0);
  plant("A3", 6.0);
  book_.book.everything_changed();
  calculate();
  EXPECT_EQ(book_.shown("A1"), "5");
  EXPECT_EQ(book_.shown("A2"), "10");
  EXPECT_EQ(book_.shown("A3"), "6");
  book_.value("B1", 1.0);
  calculate();
  EXPECT_EQ(book_.shown("A1"), "#NAME?");
  EXPECT_EQ(book_.shown("A2"), "#NAME?");
}

TEST_F(CalculatorTest, WhatCannotBeReachedKeepsItsValue) {
  ExternalBook application;
  application.kind = ExternalBook::Kind::dde;
  application.application = "App";
  application.document = "doc";
  book_.book.externals.push_back(application);
  book_.formula("A1", "[1]!item");
  book_.formula("A2", "SUM([Other.xlsx]Sheet1!A1:B1)");
  book_.formula("A3", "A1+A2");
  plant("A1", 5.0);
  plant("A2", 30.0);
  book_.book.everything_changed();
  calculate();
  EXPECT_EQ(book_.shown("A1"), "5");
  EXPECT_EQ(book_.shown("A2"), "30");
  EXPECT_EQ(book_.shown("A3"), "35");
}

TEST_F(CalculatorTest, NamesThatAreFunctionsHandOnWhatTheyRead) {
  book_.name("Scaled", "LAMBDA(n,n*Sheet1!$B$1)");
  book_.value("B1", 3.0);
  book_.value("C1", 5.0);
  book_.formula("A1", "Scaled(C1)");
  book_.formula("A2", "LET(f,LAMBDA(n,n+C1),f(1))");
  calculate();
  EXPECT_EQ(book_.shown("A1"), "15");
  EXPECT_EQ(book_.shown("A2"), "6");
  book_.value("B1", 4.0);
  calculate();
  EXPECT_EQ(book_.shown("A1"), "20");
  book_.value("C1", 6.0);
  calculate();
  EXPECT_EQ(book_.shown("A1"), "24");
  EXPECT_EQ(book_.shown("A2"), "7");
  book_.book.everything_changed();
  plant("A1", 1.0);
  calculate();
  EXPECT_EQ(book_.shown("A1"), "24");
}

TEST_F(CalculatorTest, LinksGiveWhatTheFileRemembersOfThem) {
  ExternalBook link;
  link.name = "Other.xlsx";
  link.sheets = {"Kept", "Nothing", "Gone"};
  link.values.resize(3);
  link.values[0][ExternalBook::key({1, 1})] = 4.0;
  link.lost = {false, false, true};
  book_.book.externals.push_back(link);
  book_.formula("A1", "[1]Kept!A1+[Other.xlsx]Kept!A1");
  book_.formula("A2", "[1]Nothing!A1");
  book_.formula("A3", "[1]Gone!A1");
  book_.formula("A4", "[Other.xlsx]Elsewhere!A1");
  plant("A2", 30.0);
  plant("A3", ErrorValue::ref);
  plant("A4", 40.0);
  book_.book.everything_changed();
  calculate();
  EXPECT_EQ(book_.shown("A1"), "8");
  EXPECT_EQ(book_.shown("A2"), "30");
  EXPECT_EQ(book_.shown("A3"), "#REF!");
  EXPECT_EQ(book_.shown("A4"), "40");
}

TEST_F(CalculatorTest, ThroughTablesSpansAndSumIf) {
  Table table;
  table.name = "T";
  table.sheet = book_.book.find_sheet("Sheet1");
  table.range = {{1, 1}, {3, 2}};
  table.columns = {"a", "b"};
  book_.book.add_table(table);
  book_.value("A2", 1.0);
  book_.value("A3", 2.0);
  book_.formula("B2", "[@a]*2");
  book_.formula("B3", "T[@a]*2");
  book_.formula("D1", "SUM(T[b])");
  book_.value("Sheet2!D1", 4.0);
  book_.formula("E1", "SUM(Sheet1:Sheet2!D1)");
  book_.formula("F1", "SUMIF(A2:A3,\">1\",B2)");
  calculate();
  EXPECT_EQ(book_.shown("D1"), "6");
  EXPECT_EQ(book_.shown("E1"), "10");
  EXPECT_EQ(book_.shown("F1"), "4");
  book_.value("A3", 10.0);
  calculate();
  EXPECT_EQ(book_.shown("D1"), "22");
  EXPECT_EQ(book_.shown("E1"), "26");
  EXPECT_EQ(book_.shown("F1"), "20");
}

TEST(CalculatorBooksTest, ChangesGoThroughLinksToOtherOpenBooks) {
  TextBook target, source;
  target.book.name = "Target.xlsx";
  source.book.name = "Source.xlsx";
  ExternalBook link;
  link.name = "source.xlsx";
  link.sheets = {"Sheet1"};
  target.book.externals.push_back(link);
  Books books({&target.book, &source.book});
  Calculator calculator(books);
  source.value("A1", 2.0);
  source.formula("B1", "A1*3");
  target.formula("A1", "[1]Sheet1!B1+1");
  calculator.calculate(target.book, 45'000);
  EXPECT_EQ(source.shown("B1"), "6");
  EXPECT_EQ(target.shown("A1"), "7");
  source.value("A1", 3.0);
  EXPECT_TRUE(calculator.needs_calculation(target.book));
  calculator.calculate(target.book, 45'000);
  EXPECT_EQ(target.shown("A1"), "10");
  EXPECT_FALSE(source.book.needs_calculation());
}

TEST_F(CalculatorTest, LongChainsInEitherDirection) {
  constexpr std::int32_t length = 30'000;
  Sheet& sheet = *book_.book.find_sheet("Sheet1");
  const FormulaId down = book_.formulas.intern("A1+1", {2, 1});
  const FormulaId up = book_.formulas.intern("B2+1", {1, 2});
  for (std::int32_t row = 2; row <= length; ++row) sheet.cells.set_formula({row, 1}, down);
  for (std::int32_t row = 1; row < length; ++row) sheet.cells.set_formula({row, 2}, up);
  book_.value("A1", 1.0);
  book_.value("B30000", 1.0);
  book_.book.everything_changed();
  calculate();
  EXPECT_EQ(book_.shown("A30000"), "30000");
  EXPECT_EQ(book_.shown("B1"), "30000");
  book_.value("A1", 2.0);
  calculate();
  EXPECT_EQ(book_.shown("A30000"), "30001");
}

}  // namespace
}  // namespace qto::embedded
