#include "qto/hosts/embedded/recalc/circular_references.hpp"

#include <gtest/gtest.h>

#include "tests/recalc/text_book.hpp"

namespace qto::embedded {
namespace {

/// "Sheet1!A1 Sheet2!B2": the first circular cell of each sheet.
std::string circular(const Book& book) {
  const CircularReferences references(book);
  std::string out;
  for (const auto& sheet : book.sheets())
    if (const auto pos = references.first_on(*sheet))
      out += (out.empty() ? "" : " ") + sheet->name + '!' + address_of(*pos);
  EXPECT_EQ(references.any(), !out.empty());
  return out;
}

struct Written {
  std::string_view cell, text;
};

std::string circular(std::initializer_list<Written> formulas) {
  TextBook book;
  for (const Written& formula : formulas) book.formula(formula.cell, formula.text);
  return circular(book.book);
}

TEST(CircularReferencesTest, Scenarios) {
  const struct {
    std::initializer_list<Written> formulas;
    std::string_view expected;
  } rows[] = {
      {{{"A1", "B1"}, {"B1", "C1"}}, ""},
      {{{"A1", "A1"}}, "Sheet1!A1"},
      {{{"A1", "B1"}, {"B1", "A1"}}, "Sheet1!A1"},
      {{{"C3", "SUM(A1:C3)"}}, "Sheet1!C3"},
      {{{"C3", "SUM(A1:C2)"}}, ""},
      // D1 only reads from the cycle, E1 feeds it.
      {{{"D1", "F1"}, {"F1", "F2+E1"}, {"F2", "F1"}, {"E1", "1"}}, "Sheet1!F1"},
      {{{"A1", "Sheet2!A1"}, {"Sheet2!A1", "Sheet3!A1"}, {"Sheet3!A1", "Sheet2!A1"}},
       "Sheet2!A1 Sheet3!A1"},
      {{{"A1", "SUM(Sheet1:Sheet3!B1)"}, {"Sheet3!B1", "1"}}, ""},
      {{{"Sheet2!A1", "1"}, {"Sheet3!B1", "Sheet1!A1"}, {"A1", "SUM(Sheet1:Sheet3!B1)"}},
       "Sheet1!A1 Sheet3!B1"},
      {{{"A5", "SUM(A:A)"}}, "Sheet1!A5"},
      {{{"A5", "SUM(B:B)"}, {"B9", "SUM(3:4)"}}, ""},
      {{{"A5", "SUM(B:B)"}, {"B9", "SUM(3:5)"}}, "Sheet1!A5"},
      // Looked at, not read.
      {{{"A1", "ROW(A1)+ROWS(A1:A9)+COLUMN(A1)+COLUMNS(A1:C1)"}}, ""},
      {{{"A1", "SHEET(A1)"}, {"A2", "OFFSET(A2,1,1)"}, {"A3", "CELL(\"row\",A3)"}}, ""},
      {{{"A3", "CELL(\"contents\",A3)"}}, "Sheet1!A3"},
      {{{"A9", "SUM(A1:INDEX(A:A,ROW()-1))"}, {"A8", "INDEX(A:A,ROW()-1)+1"}}, ""},
      {{{"A9", "SUM(A1:OFFSET(A9,-1,0))"}}, ""},
      {{{"A2", "INDEX(A1:A5,2)"}}, "Sheet1!A2"},
      {{{"A2", "INDEX(A1:A5,3)"}}, ""},
      {{{"A2", "INDEX($A$1:$E$1,1,1)"}, {"A1", "A2"}}, "Sheet1!A1"},
      {{{"A1", "ROW(INDIRECT(A1))"}}, "Sheet1!A1"},
      // Where one value is wanted, only the cell in the own row or column is read.
      {{{"A5", "B:B*2"}, {"B6", "A:A+1"}}, ""},
      {{{"A5", "B:B*2"}, {"B5", "A:A+1"}}, "Sheet1!A5"},
      {{{"A5", "SUM(B:B*2)"}, {"B6", "A:A+1"}}, ""},
      {{{"A5", "SUMPRODUCT(B:B*2)"}, {"B6", "SUMPRODUCT(A:A+1)"}}, "Sheet1!A5"},
      {{{"C5", "B:B 5:5"}}, ""},
      {{{"B5", "B:B 5:5"}}, "Sheet1!B5"},
      // Only the branch that is taken is read, and a condition in any case.
      {{{"A1", "IF(B1,A1,0)"}}, ""},
      {{{"A1", "IF(B1,0,A1)"}}, "Sheet1!A1"},
      {{{"A1", "IF(A1,0,0)"}}, "Sheet1!A1"},
      {{{"E64", "IFERROR(INDEX(H1:H9,2),AVERAGE(D64,F64))"},
        {"F64", "IFERROR(INDEX(H1:H9,3),AVERAGE(E64,G64))"}},
       ""},
      {{{"E64", "IFERROR(NA(),AVERAGE(D64,F64))"}, {"F64", "IFERROR(NA(),AVERAGE(E64,G64))"}},
       "Sheet1!E64"},
      {{{"A1", "IFNA(1,A1)+IFS(TRUE,2,A1,3)+SWITCH(1,1,5,A1)+CHOOSE(2,A1,3)"}}, ""},
      {{{"A1", "IFS(FALSE,2,A1,3)"}}, "Sheet1!A1"},
      {{{"A1", "SWITCH(1,2,5,A1)"}}, "Sheet1!A1"},
      {{{"A1", "CHOOSE(1,A1,3)"}}, "Sheet1!A1"},
      {{{"A1", "XLOOKUP(1,{1,2},D1:E1,A1)"}}, ""},
      {{{"A1", "XLOOKUP(7,C1:C2,D1:D2,A1)"}}, "Sheet1!A1"},
      {{{"A1", "LET(x,A1,IF(FALSE,x,1))"}}, ""},
      {{{"A1", "LET(x,A1,IF(TRUE,x,1))"}}, "Sheet1!A1"},
      {{{"A1", "SUMIF(B1:B9,1,A9)"}, {"A8", "1"}}, ""},
      {{{"A12", "SUMIF(B1:B9,1,A5)"}}, "Sheet1!A12"},
      {{{"A1", "LET(x,B1,x+A2)"}, {"A2", "A1"}}, "Sheet1!A1"},
      {{{"A1", "SUM(A2#)"}, {"A2", "A1"}}, "Sheet1!A1"},
      {{{"A1", "(A2:A3,B1)"}, {"B1", "A1"}}, "Sheet1!A1"},
      {{{"A1", "SUMPRODUCT(IF({1,0},C1:D1,A1:B1))"}}, "Sheet1!A1"},
      // A lookup reads its keys and one cell.
      {{{"B2", "VLOOKUP(1,A1:C9,3)"}, {"A1", "1"}}, ""},
      {{{"C2", "VLOOKUP(1,A1:C9,3)"}, {"A1", "1"}}, ""},
      {{{"A2", "VLOOKUP(1,A1:C9,3)"}}, "Sheet1!A2"},
      {{{"B3", "HLOOKUP(1,A1:C9,3)"}}, ""},
      {{{"B1", "HLOOKUP(1,A1:C9,3)"}}, "Sheet1!B1"},
      {{{"B3", "XLOOKUP(1,A1:A9,B1:B9)"}}, ""},
      {{{"A1", "[1]Sheet1!A1+Nothing!A1+#REF!"}}, ""},
      {{{"A1", "A1("}}, ""},
  };
  for (const auto& row : rows)
    EXPECT_EQ(circular(row.formulas), row.expected) << row.formulas.begin()->text;
}

TEST(CircularReferencesTest, WhatALookupReadsDependsOnTheValues) {
  TextBook book;
  book.value("A1", 10.0);
  book.value("A2", 20.0);
  book.formula("C2", "VLOOKUP(B9,A1:C9,3,FALSE)");
  book.formula("D2", "INDEX(D1:D9,B9/10)");
  book.value("B9", 10.0);
  EXPECT_EQ(circular(book.book), "");
  book.value("B9", 20.0);
  EXPECT_EQ(circular(book.book), "Sheet1!C2");
  book.book.find_sheet("Sheet1")->cells.set_formula({2, 3}, 0);
  EXPECT_EQ(circular(book.book), "Sheet1!D2");
}

TEST(CircularReferencesTest, ABranchLedToByACalculatedCondition) {
  TextBook book;
  book.formula("A1", "IF(C1>10,B1,1)");
  book.formula("B1", "IF(C1>10,2,A1)");
  book.value("C1", 20.0);
  EXPECT_EQ(circular(book.book), "");
  book.formula("B1", "A1");
  EXPECT_EQ(circular(book.book), "Sheet1!A1");
  book.value("C1", 5.0);
  EXPECT_EQ(circular(book.book), "");
}

TEST(CircularReferencesTest, ABookThatIteratesHasNone) {
  TextBook book;
  book.formula("A1", "A1+1");
  EXPECT_EQ(circular(book.book), "Sheet1!A1");
  book.book.iteration.on = true;
  EXPECT_EQ(circular(book.book), "");
}

TEST(CircularReferencesTest, ThroughNames) {
  TextBook book;
  book.name("Rate", "Sheet1!$B$1");
  book.name("Local", "Sheet1!$C$1", book.book.find_sheet("Sheet1"));
  book.name("Here", "Rate+Local");
  book.name("Left", "!A1");
  book.name("Loop", "Loop+1");
  book.formula("A1", "Here+Loop");
  EXPECT_EQ(circular(book.book), "");
  book.formula("C1", "A1");
  EXPECT_EQ(circular(book.book), "Sheet1!A1");
  book.formula("C1", "Left+ROWS(Here)");
  EXPECT_EQ(circular(book.book), "Sheet1!C1");
}

TEST(CircularReferencesTest, ThroughTables) {
  TextBook book;
  Table table;
  table.name = "T";
  table.sheet = book.book.find_sheet("Sheet1");
  table.range = {{1, 1}, {4, 2}};
  table.columns = {"a", "b"};
  book.book.add_table(table);
  book.formula("B2", "[@a]*2");
  book.formula("B3", "T[@a]+B2");
  EXPECT_EQ(circular(book.book), "");
  book.formula("A3", "SUM(T[b])");
  EXPECT_EQ(circular(book.book), "Sheet1!A3");
  book.formula("A3", "[@b]");
  EXPECT_EQ(circular(book.book), "Sheet1!A3");
}

TEST(CircularReferencesTest, AnArrayFormulaIsOneNode) {
  TextBook book;
  book.array("A1:A3", "B1:B3*2");
  book.formula("B5", "A1");
  EXPECT_EQ(circular(book.book), "");
  book.formula("B3", "A1");
  EXPECT_EQ(circular(book.book), "Sheet1!A1");
  book.formula("B3", "1");
  book.array("D1:D3", "D2");
  EXPECT_EQ(circular(book.book), "Sheet1!D1");
}

TEST(CircularReferencesTest, LargeArrayFormula) {
  TextBook book;
  book.array("A1:B100000", "D1:D100000");
  book.formula("D5", "E5");
  EXPECT_EQ(circular(book.book), "");
  book.formula("E5", "SUM(B99999:B100001)");
  EXPECT_EQ(circular(book.book), "Sheet1!A1");
}

TEST(CircularReferencesTest, LongChainNeedsNoMachineStack) {
  TextBook book;
  constexpr std::int32_t length = 50'000;
  Sheet& sheet = *book.book.find_sheet("Sheet1");
  const FormulaId next = book.formulas.intern("A2", {1, 1});
  for (std::int32_t row = 1; row < length; ++row) sheet.cells.set_formula({row, 1}, next);
  EXPECT_EQ(circular(book.book), "");
  sheet.cells.set_formula({length, 1}, book.formulas.intern("A77", {length, 1}));
  EXPECT_EQ(circular(book.book), "Sheet1!A77");
}

TEST(CircularReferencesTest, LongChainOfBranchesNeedsNoMachineStack) {
  TextBook book;
  constexpr std::int32_t length = 20'000;
  Sheet& sheet = *book.book.find_sheet("Sheet1");
  const FormulaId next = book.formulas.intern("IF($B$1=0,A2,$A$1)", {1, 1});
  for (std::int32_t row = 1; row < length; ++row) sheet.cells.set_formula({row, 1}, next);
  EXPECT_EQ(circular(book.book), "");
  sheet.cells.set_formula({length, 1}, book.formulas.intern("IF($B$1=0,A77,1)", {length, 1}));
  EXPECT_EQ(circular(book.book), "Sheet1!A77");
}

// Each of these would take hours if every pair of cells were looked at.
TEST(CircularReferencesTest, DenseGraphs) {
  TextBook layers;
  Sheet& wide = *layers.book.find_sheet("Sheet1");
  const FormulaId whole_layer = layers.formulas.intern("SUM($A1:$J1)", {2, 1});
  for (std::int32_t row = 2; row <= 5'000; ++row)
    for (std::int32_t column = 1; column <= 10; ++column)
      wide.cells.set_formula({row, column}, whole_layer);
  EXPECT_EQ(circular(layers.book), "");
  layers.formula("E1", "E5000");
  EXPECT_EQ(circular(layers.book), "Sheet1!E1");

  TextBook triangle;
  Sheet& tall = *triangle.book.find_sheet("Sheet1");
  const FormulaId all_above = triangle.formulas.intern("SUM($A$1:A1)", {2, 1});
  for (std::int32_t row = 2; row <= 30'000; ++row) tall.cells.set_formula({row, 1}, all_above);
  EXPECT_EQ(circular(triangle.book), "");
  triangle.formula("A1", "A30000");
  EXPECT_EQ(circular(triangle.book), "Sheet1!A1");
}

TEST(CircularReferenceCacheTest, SearchesAgainWhenTheBookChanges) {
  TextBook book;
  CircularReferenceCache cache;
  book.formula("A1", "B1");
  const CircularReferences* first = &cache.of(book.book);
  EXPECT_FALSE(first->any());
  EXPECT_EQ(&cache.of(book.book), first);
  book.formula("B1", "A1");
  EXPECT_TRUE(cache.of(book.book).any());
}

}  // namespace
}  // namespace qto::embedded
