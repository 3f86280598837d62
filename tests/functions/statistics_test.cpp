#include "tests/functions/formula_table.hpp"

namespace qto::embedded {
namespace {

TEST(Sums, AddRowByRow) {
  // The last digits tell the order: column by column the large numbers would meet the 1.1 later.
  SmallBook book("A1=9999999999; A2=-9999999999; A3=1; B1=1.1; B2=0.00001; B3=-1.1");
  double by_row = 0;
  for (const double number : {9999999999.0, 1.1, -9999999999.0, 0.00001, 1.0, -1.1})
    by_row += number;
  EXPECT_EQ(book.number("=SUM(A1:B3)"), by_row);
  EXPECT_EQ(book.number("=SUBTOTAL(9,A1:B3)"), by_row);
  EXPECT_EQ(book.number("=SUMPRODUCT(A1:B3)"), by_row);
  EXPECT_EQ(book.number("=AVERAGE(A1:B3)"), by_row / 6);
}

TEST(Sums, GiveTheErrorThatComesFirstRowByRow) {
  SmallBook book("A1=1; A2=#REF!; B1=#N/A; B2=2");
  EXPECT_EQ(book.run("=SUM(A1:B2)"), "#N/A");
  EXPECT_EQ(book.run("=SUM(A2,A1:B2)"), "#REF!");
}

TEST(SingleCells, CountOtherwiseThanBlocks) {
  expect_results("A1=\"4\"; A2=x; B1=2; B2=3", {{"=SUMPRODUCT(A1:A2,B1:B2)", "0"},
                                                {"=SUMPRODUCT(A1,B1)", "#VALUE!"},
                                                {"=SUMPRODUCT(A1:A1,B1:B1)", "#VALUE!"},
                                                {"=SUMPRODUCT(C1,B1)", "0"},
                                                {"=MODE(B1,2,C1)", "#VALUE!"},
                                                {"=MODE(B1:C1,2)", "2"},
                                                {"=MODE(B1,2,\"2\")", "#VALUE!"},
                                                {"=MODE.SNGL(B1,2,\"\")", "2"}});
}

TEST(Tests, OfNothingCountedAreNoResult) {
  expect_results("A1=4; B2=x", {{"=CHISQ.TEST(A1:A2,B1:B2)", "#DIV/0!"},
                                {"=CHISQ.TEST(A1,A1)", "#N/A"},
                                {"=T.DIST(0,0,FALSE)", "#DIV/0!"},
                                {"=T.DIST(0,0,TRUE)", "#NUM!"}});
}

TEST(HugeCounts, DoNotKeepFunctionsBusy) {
  expect_results("", {{"=BINOM.DIST.RANGE(1E+308,0.5,1E+308)", "#NUM!"},
                      {"=BINOM.INV(1E+308,0.5,0.5)", "#NUM!"},
                      {"=ROUND(HYPGEOM.DIST(2000,1000000,2000000,1000000000,TRUE),6)", "0.505947"},
                      {"=HYPGEOM.DIST(1,1E+15,1E+15,1E+16,TRUE)", "#NUM!"},
                      {"=DB(1,1,1E+300,1E+299)", "#NUM!"},
                      {"=CUMIPMT(0.1,1E+300,100,1,1E+299,0)", "#NUM!"},
                      {"=AMORDEGRC(1,39679,39813,0,1E+300,0.15)", "0"},
                      {"=ODDLPRICE(2958000,2958460,2957000,0.05,0.05,100,1)>0", "TRUE"},
                      {"=BESSELI(4294967296,3)", "#NUM!"},
                      {"=BESSELK(1E+10,3)", "0"},
                      {"=BESSELK(1E-300,3)", "#NUM!"}});
}

}  // namespace
}  // namespace qto::embedded
