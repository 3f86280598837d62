#include <gtest/gtest.h>

#include <algorithm>

#include "tests/support/text_book.hpp"

namespace qto::test {
namespace {

struct Row {
  const char* formula;
  const char* found;
};

void check(Books& books, std::initializer_list<Row> rows, const Options& options = {}) {
  for (const Row& row : rows) {
    books.enter(std::string("Z9=") + row.formula);
    EXPECT_EQ(precedents(books, "Z9", options), row.found) << row.formula;
  }
}

constexpr std::string_view names =
    "A1=5; B1=1; C1=2; Sheet2!A1=3; Sheet3!A1=4; My Sheet!A1=6; Bob's!A1=7; "
    "name Total=Sheet1!$A$1; name Sheet2!Local=Sheet2!$A$1; name Both=Sheet1!$A$1; "
    "name Sheet1!Both=Sheet1!$B$1";

TEST(DirectPrecedents, AreEveryCellInTheOrderOfTheFormula) {
  Books books(names);
  check(books, {
                   {"=C1+A1+B1", "C1 A1 B1"},
                   {"=A1+A1*a1", "A1"},
                   {"=SUM(B1:A2)", "A1 B1 A2 B2"},
                   {"=A1 + B1", "A1 B1"},
                   {"=(A1) + (B1)", "A1 B1"},
                   {"=$A$1&\"x\"&A$2", "A1 A2"},
                   {"=SUM(A1:C1 B1:B5)", "B1"},
                   {"=-A1%", "A1"},
                   {"=1+2", "none"},
                   {"=PI()", "none"},
                   {"=SUM(2:2 A:B)", "A2 B2"},
                   {"=SUM({1,2;3,4})+A1", "A1"},
               });
}

TEST(DirectPrecedents, AreLookedUpWhereTheQualifierSays) {
  Books books(names);
  check(books, {
                   {"=Sheet2!A1+A1", "Sheet2!A1 A1"},
                   {"=SUM(Sheet2!A1,B1)", "Sheet2!A1 B1"},
                   {"='My Sheet'!A1:A2", "My Sheet!A1 My Sheet!A2"},
                   {"='Bob''s'!A1", "Bob's!A1"},
                   {"=SUM(Sheet1:Sheet3!B2)", "B2 Sheet2!B2 Sheet3!B2"},
                   {"=SUM('Sheet2:My Sheet'!B2)", "Sheet2!B2 Sheet3!B2 My Sheet!B2"},
               });
}

TEST(DirectPrecedents, NamesAreOnePartEach) {
  Books books(names);
  check(books, {
                   {"=Total*2", "Total"},
                   {"=TOTAL+Total", "Total"},
                   {"=Sheet2!Local", "Sheet2!Local"},
                   {"=Both", "Sheet1!Both"},  // the own sheet's name hides the workbook's
                   {"=Sheet1!Both+A1", "Sheet1!Both A1"},
                   {"=NoSuchName", "none"},
                   {"=Plan.xlsx!Total", "Total"},
               });
}

TEST(DirectPrecedents, OfOtherBooks) {
  Books books(names);
  books.add("A1=1; A2=2; name Rate=Sheet1!$A$1", "Other.xlsx");
  check(books, {
                   {"=SUM([Other.xlsx]Sheet1!A1:A2)", "[Other.xlsx]A1 [Other.xlsx]A2"},
                   {"=Other.xlsx!Rate", "[Other.xlsx]Rate"},
                   {"='[Other.xlsx]Sheet1'!A1+A1", "[Other.xlsx]A1 A1"},
               });
}

TEST(DirectPrecedents, OfClosedBooksAreUnknown) {
  Books books("A1=5");
  for (const Row& row : {Row{"='/no/where/[Far.xlsx]Data'!A1:A2+A1", "?[Far.xlsx]Data!A1:A2 A1"},
                         Row{"='/no/where/Far.xlsx'!Rate", "?[Far.xlsx]Rate"}}) {
    books.enter(std::string("Z9=") + row.formula);
    const auto drill = drill_from(books, "Z9");
    drill->AskToOpenBook.add([](auto&, bool& choice) { choice = false; });
    drill->put_MaximumDepth(1);
    drill->DrillHere();
    const auto& list = drill->StartModelPart()->DirectPrecedents();
    EXPECT_EQ(listed(list), row.found) << row.formula;
    ASSERT_TRUE(list);
    EXPECT_EQ(list->Item(1)->WorkBookFullName(), "/no/where\\Far.xlsx");
    EXPECT_EQ(drill->BooksNotOpened()->Item(1)->WhyNotOpened(), qtownoUserDecision);
  }
}

TEST(DirectPrecedents, AReferenceToNowhereIsReported) {
  Books books(names);
  books.enter("D1==#REF!+B1");
  EXPECT_EQ(precedents(books, "D1"), "none !9");
}

// Constants

TEST(FormulaConstants, AreToldApart) {
  Books books("A1=5; A2=6");
  const struct {
    const char* formula;
    int constant;
    bool error;
  } rows[] = {{"=A1", 0, false},        {"=A1*1.1", 1, false},
              {"=A1*1", 2, false},      {"=A1>0", 2, false},
              {"=A1*1+A2*5", 1, false}, {"=A1*5+A2*1", 1, false},
              {"=A1&\"x\"", 1, false},  {"=IF(A1,TRUE,A2)", 0, false},
              {"=A1*50%", 1, false},    {"=IFERROR(#N/A,A1)", 0, true}};
  for (const auto& row : rows) {
    books.enter(std::string("Z9=") + row.formula);
    const auto drill = drill_from(books, "Z9");
    drill->DrillHere();
    EXPECT_EQ(drill->StartModelPart()->FormulaContainsConstant(), row.constant) << row.formula;
    EXPECT_EQ(drill->StartModelPart()->HasError(), row.error) << row.formula;
  }
}

TEST(FormulaErrors, AreNamesThatNobodyGives) {
  Books books("A1=5; B1=7");
  const struct {
    const char* formula;  // none has an error for its value
    bool error;
  } rows[] = {{"=IF(TRUE,A1,NoSuchName)", true},
              {"=A1*1E+30", false},
              {"=A1*2.5e-3", false},
              {"=LET(x,A1,X+1)", false},
              {"=LET(x,A1,IF(TRUE,x,y))", true},
              {"=IF(TRUE,A1,LET(x,y,x))", true},
              {"=LET(x,A1,y,x*2,IF(y>3,x,B1))", false},
              {"=LAMBDA(k,m,IF(k,m,B1))(A1,B1)", false},
              {"=IF(TRUE,A1,LAMBDA(k,m)(A1))", true}};
  for (const auto& row : rows) {
    books.enter(std::string("Z9=") + row.formula);
    ASSERT_FALSE(books.range("Z9")->value().is_error()) << row.formula;
    const auto drill = drill_from(books, "Z9");
    drill->DrillHere();
    EXPECT_EQ(drill->StartModelPart()->HasError(), row.error) << row.formula;
  }
  books.enter("Z9==LET(x,A1,y,x*2,IF(y>3,x,B1))");
  const auto drill = drill_from(books, "Z9", {.ParseIf = 1});
  drill->DrillHere();
  EXPECT_FALSE(drill->StartModelPart()->HasError()) << "in the second walk too";
}

// What is left out for what it holds

TEST(HiddenPrecedents, AreThoseOfTheKindsThatAreSwitchedOff) {
  Books books("A1=0; A2=FALSE; A4=1/2/2024; A5=#N/A; A6==\"\"; A7=3; Z9==SUM(A1:A7)");
  EXPECT_EQ(precedents(books, "Z9"), "A1 A2 A3 A4 A5 A6 A7");
  EXPECT_EQ(precedents(books, "Z9", {.ShowZeros = false}), "A2 A3 A4 A5 A6 A7");
  EXPECT_EQ(precedents(books, "Z9", {.ShowBlanks = false}), "A1 A2 A4 A5 A6 A7");
  EXPECT_EQ(precedents(books, "Z9", {.ShowDates = false}), "A1 A2 A3 A5 A6 A7");
  EXPECT_EQ(precedents(books, "Z9", {.ShowBlanks = false, .ShowZeros = false, .ShowDates = false}),
            "A2 A5 A6 A7");
}

TEST(HiddenPrecedents, StayInTheListOfAll) {
  Books books("A1=0; A2=1; Z9==A1+A2");
  const auto drill = drill_from(books, "Z9", {.ShowZeros = false});
  drill->DrillHere();
  const auto& part = drill->StartModelPart();
  EXPECT_TRUE(part->IntelligentDrillingUsed());
  EXPECT_EQ(listed(part->DirectPrecedents()), "A2");
  EXPECT_EQ(listed(part->AllPrecedents()), "A1 A2");
  drill->putref_DrillOptions(nullptr);
  drill->DrillHere();
  EXPECT_EQ(listed(part->AllPrecedents()), "A1 A2");  // its own list, not another part's
}

TEST(HiddenPrecedents, LeaveTheListAloneWhenNothingIsSwitchedOff) {
  Books books("A1=0; Z9==A1+A2");
  const auto drill = drill_from(books, "Z9");
  drill->DrillHere();
  const auto& part = drill->StartModelPart();
  EXPECT_FALSE(part->IntelligentDrillingUsed());
  EXPECT_EQ(part->AllPrecedents(), part->DirectPrecedents());
}

std::vector<std::string> sorted(const Ref<ModelParts>& parts) {
  std::vector<std::string> labels;
  if (parts) parts->for_each([&](const ModelPart& part) { labels.push_back(label(part)); });
  std::ranges::sort(labels);
  return labels;
}

/// Copies of a formula are not walked again; each must lead where it would alone.
TEST(CopiesOfAFormula, LeadWhereEachWouldAlone) {
  Books books("A1=1; B1=2; C1=3; name Rate=Sheet1!$A$1; name Left=Sheet1!A1");
  const char* patterns[] = {"R[-1]C+R1C1",
                            "SUM(R[-1]C:R[1]C[1])*2",
                            "SUM(R1C:R[-1]C)&\"x\"",
                            "SUM(R1C1:R4200C1)+R[2]C[-2]*1",
                            "SUM(R3C1:R3C40)+#N/A",
                            "IF(R[1]C>0,R[-1]C,RC[1])",
                            "Rate*RC[1]+Sheet2!RC1",
                            "SUM(R[-2]C[-2] R1C1)",
                            "VLOOKUP(RC[1],R1C1:R4C3,2,FALSE)",
                            "SUM(R[-3]C[-1]:R1C[-2])"};
  std::string sum = "Z1==";
  int row = 5;
  for (const char* pattern : patterns) {
    for (const char* column : {"D", "F", "D", "XFC"}) {
      const std::string at = column + std::to_string(row++);
      books.range(at)->put_Formula(books.app->ConvertFormula(
          std::string("=") + pattern, host::xlR1C1, host::xlA1, books.range(at)));
      sum += (sum.back() == '=' ? "" : "+") + at;
    }
  }
  books.enter(sum);
  for (const Options& options :
       {Options{}, Options{.ParseIf = 1, .ParseLookup = 2}, Options{.ShowBlanks = false}}) {
    const auto drill = drill_from(books, "Z1", options);
    drill->put_MaximumDepth(2);
    drill->DrillHere();
    const auto& formulas = drill->StartModelPart()->DirectPrecedents();
    ASSERT_EQ(formulas->Count(), row - 5);
    formulas->for_each([&](ModelPart& part) {
      const std::string at = part.AddressShort();
      const auto alone = drill_from(books, at, options);
      alone->put_MaximumDepth(1);
      alone->DrillHere();
      const auto& expected = *alone->StartModelPart();
      // What was met before moves to the end of a list.
      EXPECT_EQ(sorted(part.DirectPrecedents()), sorted(expected.DirectPrecedents())) << at;
      EXPECT_EQ(part.HasError(), expected.HasError()) << at;
      EXPECT_EQ(part.FormulaContainsConstant(), expected.FormulaContainsConstant()) << at;
    });
  }
}

}  // namespace
}  // namespace qto::test
