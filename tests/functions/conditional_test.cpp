#include "tests/functions/formula_table.hpp"

namespace qto::embedded {
namespace {

constexpr const char* counted_cells =
    "A1=1; A2=2; A3=\"2\"; A4=two; A5=Twofold; A6=TRUE; A7=#N/A; A8=\"\"; B1=10; B2=20; B3=30; "
    "B4=40;"
    "B5=50; B6=60; B7=70; B8=80; B9=90; C1=x*; C2=xa; C3=yes; D1=2";

TEST(Criteria, FitValuesByTypeAndText) {
  expect_results(counted_cells, {{"=COUNTIF(A1:A9,2)", "2"},
                                 {"=COUNTIF(A1:A9,\"2\")", "2"},
                                 {"=COUNTIF(A1:A9,D1)", "2"},
                                 {"=COUNTIF(A1:A9,\"<>2\")", "8"},
                                 {"=COUNTIF(A1:A9,\">1\")", "1"},
                                 {"=COUNTIF(A1:A9,\"TWO\")", "1"},
                                 {"=COUNTIF(A1:A9,\"two*\")", "2"},
                                 {"=COUNTIF(A1:A9,\"=two*\")", "2"},
                                 {"=COUNTIF(A1:A9,\"<>two*\")", "7"},
                                 {"=COUNTIF(A1:A9,TRUE)", "1"},
                                 {"=COUNTIF(A1:A9,#N/A)", "1"},
                                 {"=COUNTIF(A1:A9,\"#N/A\")", "1"},
                                 {"=COUNTIF(A1:A9,\"\")", "2"},
                                 {"=COUNTIF(A1:A9,\"=\")", "1"},
                                 {"=COUNTIF(A1:A9,\"<>\")", "8"},
                                 {"=COUNTIF(C1:C3,\"x~*\")", "1"},
                                 {"=COUNTIF(C1:C3,\"x?\")", "2"},
                                 {"=COUNTIF(C1:C3,\">xa\")", "1"},
                                 {"=COUNTIF(C1:C3,Z9)", "0"}});
}

TEST(Criteria, SumWhereTheyFit) {
  expect_results(counted_cells, {{"=SUMIF(A1:A9,2,B1)", "50"},
                                 {"=SUMIF(A1:A2,\">0\",B2:B9)", "50"},
                                 {"=SUMIF(B1:B9,\">70\")", "170"},
                                 {"=SUMIF(A1:A9,\"\",B1:B9)", "170"},
                                 {"=SUMIFS(B1:B9,A1:A9,\"<>\",B1:B9,\"<40\")", "60"},
                                 {"=COUNTIFS(A1:A9,2,B1:B9,\">20\")", "1"},
                                 {"=COUNTIFS(A1:A9,2,B1:B8,\">20\")", "#VALUE!"},
                                 {"=AVERAGEIF(A1:A9,2,B1:B9)", "25"},
                                 {"=AVERAGEIF(A1:A9,99,B1:B9)", "#DIV/0!"},
                                 {"=MAXIFS(B1:B9,A1:A9,\"two*\")", "50"},
                                 {"=MINIFS(B1:B9,A1:A9,\"two*\")", "40"},
                                 {"=SUM(SUMIF(A1:A9,{1,2},B1:B9))", "60"},
                                 {"=COUNTIF({1,2},1)", "#VALUE!"}});
}

TEST(Criteria, CountBlanksOfWholeColumnsByArithmetic) {
  expect_results(counted_cells, {{"=COUNTIF(A:A,\"\")", "1048569"},
                                 {"=COUNTIF(A:A,\"<>\")", "8"},
                                 {"=COUNTIFS(A:A,\"\",B:B,\"\")", "1048567"},
                                 {"=COUNTBLANK(A:A)", "1048569"}});
}

TEST(Conditional, ConditionsOfEveryForm) {
  expect_results(
      "A1=1; A2=2; A3=x; A4=#N/A; A5=TRUE; A7=2; B1=10; B2=20; B3=30; B4=40; B5=50; B6=60; B7=70;"
      "C1=2; C2=; C3=>1",
      {{"=SUMIFS(B1:B7,A1:A7,C1)", "90"},
       {"=SUMIFS(B1:B7,A1:A7,\">\"&C1-1)", "90"},
       {"=SUMIFS(B1:B7,A1:A7,C3)", "90"},
       {"=SUMIFS(B1:B7,A1:A7,C9)", "0"},
       {"=SUMIFS(B1:B7,A1:A7,\"\")", "60"},
       {"=SUMIFS(B1:B7,A1:A7,\"<>\")", "220"},
       {"=SUMIFS(B1:B7,A1:A7,\"=\")", "60"},
       {"=SUMIFS(B1:B7,A1:A7,TRUE)", "50"},
       {"=SUMIFS(B1:B7,A1:A7,#N/A)", "40"},
       {"=SUMIFS(B1:B7,A1:A7,\"#N/A\")", "40"},
       {"=SUM(SUMIFS(B1:B7,A1:A7,{1,\"x\"}))", "40"},
       {"=SUMIFS(B1:B7,B1:B7,\">=20\",B1:B7,\"<=30\")", "50"},
       {"=SUMIFS(B1:B7,A1:A6,1)", "#VALUE!"},
       {"=COUNTIFS(A1:A7,C1,B1:B7,\">20\")", "1"},
       {"=COUNTIFS(A1:A7,\"<>x\")", "6"},
       {"=SUMPRODUCT((B1:B3>10)*(B1:B3<=30)*B1:B3)", "50"},
       {"=SUMPRODUCT(--(B1:B7>C1*10),B1:B7)", "250"},
       {"=SUMPRODUCT((A1:A3=\"x\")*1)", "1"},
       {"=SUMPRODUCT((A1:A4=2)*B1:B4)", "#N/A"},
       {"=SUMPRODUCT(ISNUMBER(A1:A7)*B1:B7)", "100"}});
}

TEST(Subtotals, PassOverEachOtherAndHiddenRows) {
  SmallBook book("A1=1; A2=2; A4=4; A5=#N/A");
  book.fill("A3==SUBTOTAL(9,A1:A2)");
  book.sheet("Sheet1").cells.touch({3, 1}).set_number(3);
  EXPECT_EQ(book.run("=SUBTOTAL(9,A1:A4)"), "7");
  EXPECT_EQ(book.run("=SUM(A1:A4)"), "10");
  EXPECT_EQ(book.run("=SUBTOTAL(9,A1:A5)"), "#N/A");
  EXPECT_EQ(book.run("=AGGREGATE(9,6,A1:A5)"), "10");
  EXPECT_EQ(book.run("=AGGREGATE(9,3,A1:A5)"), "7");
  book.sheet("Sheet1").layout.hide_rows(1, 1, true);
  EXPECT_EQ(book.run("=SUBTOTAL(109,A1:A4)"), "6");
  EXPECT_EQ(book.run("=SUBTOTAL(9,A1:A4)"), "7");
}

TEST(Subtotals, PassOverRowsThatAFilterHides) {
  SmallBook book("A1=1; A2=2; A3=4; A4=8; A5=16");
  SheetLayout& layout = book.sheet("Sheet1").layout;
  layout.add_filter(2, 4);
  EXPECT_EQ(book.run("=SUBTOTAL(9,A1:A5)"), "31");
  layout.hide_rows(2, 3, true);
  layout.hide_rows(5, 5, true);
  EXPECT_EQ(book.run("=SUBTOTAL(9,A1:A5)"), "25");
  EXPECT_EQ(book.run("=SUBTOTAL(2,A1:A5)"), "3");
  EXPECT_EQ(book.run("=SUBTOTAL(109,A1:A5)"), "9");
  EXPECT_EQ(book.run("=AGGREGATE(9,5,A1:A5)"), "9");
  EXPECT_EQ(book.run("=AGGREGATE(9,4,A1:A5)"), "31");
}

TEST(Subtotals, CountingGoesOnBehindErrors) {
  expect_results("A1=1; A2=#N/A; A3=x; A4=4", {{"=SUBTOTAL(2,A1:A5)", "2"},
                                               {"=SUBTOTAL(3,A1:A5)", "4"},
                                               {"=AGGREGATE(3,4,A1:A5)", "4"},
                                               {"=AGGREGATE(3,6,A1:A5)", "3"},
                                               {"=SUBTOTAL(9,A1:A5)", "#N/A"}});
}

}  // namespace
}  // namespace qto::embedded
