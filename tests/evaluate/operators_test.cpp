#include <gtest/gtest.h>

#include "tests/evaluate/small_book.hpp"

namespace qto::embedded {
namespace {

struct Row {
  const char* formula;
  const char* result;
};
void PrintTo(const Row& row, std::ostream* out) { *out << row.formula; }

constexpr const char* cells =
    "A1=10; A2=-3; A3=text; A4=TRUE; A5=#N/A; A6=\"12\"; A8=0.5; B1=1; B2=2; B3=3; C1=#DIV/0!";

class Operators : public testing::TestWithParam<Row> {};

TEST_P(Operators, GiveTheirResult) {
  SmallBook book(cells);
  EXPECT_EQ(book.run(GetParam().formula), GetParam().result);
}

const Row arithmetic[] = {
    {"=1+2*3-4/2", "5"},    {"=2^3^2", "64"},        {"=-2^2", "4"},
    {"=0^0", "#NUM!"},      {"=0^-1", "#DIV/0!"},    {"=(-8)^(1/3)", "-2"},
    {"=(-8)^0.4", "#NUM!"}, {"=1/0", "#DIV/0!"},     {"=1E+300*1E+300", "#NUM!"},
    {"=50%", "0.5"},        {"=A1%%", "0.001"},      {"=+A3", "text"},
    {"=-A3", "#VALUE!"},    {"=0*-1", "0"},          {"=\"3\"+4", "7"},
    {"=A6*2", "24"},        {"=\"1/2\"+0", "45293"},  // the second of January of the current year
    {"=A7+1", "1"},         {"=A4+A4", "2"},         {"=--A4", "1"},
    {"=A3+1", "#VALUE!"},   {"=0.5-0.4-0.1", "0"},   {"=1.1-1-0.1=0", "FALSE"},
    {"=10-9.5", "0.5"},
};
INSTANTIATE_TEST_SUITE_P(Arithmetic, Operators, testing::ValuesIn(arithmetic));

const Row comparisons[] = {
    {"=\"abc\"=\"ABC\"", "TRUE"}, {"=1<\"a\"", "TRUE"},
    {"=\"z\"<FALSE", "TRUE"},     {"=A7=0", "TRUE"},
    {"=A7=\"\"", "TRUE"},         {"=A7=FALSE", "TRUE"},
    {"=\"a\"<\"_\"", "FALSE"},    {"=\"10\"=10", "FALSE"},
    {"=0.1+0.2=0.3", "TRUE"},     {"=\"é\"<\"f\"", "TRUE"},
    {"=\"É\"=\"é\"", "TRUE"},     {"=\"e\"=\"é\"", "FALSE"},
    {"=\"a\">=\"B\"", "FALSE"},   {"=TRUE>FALSE", "TRUE"},
    {"=2<>2", "FALSE"},
};
INSTANTIATE_TEST_SUITE_P(Comparisons, Operators, testing::ValuesIn(comparisons));

const Row joins[] = {
    {"=1&2", "12"},           {"=A4&\"!\"", "TRUE!"}, {"=A7&\"x\"", "x"},
    {"=0.1+0.2&\"\"", "0.3"}, {"=A5&\"x\"", "#N/A"},  {"=1/3&\"\"", "0.333333333333333"},
};
INSTANTIATE_TEST_SUITE_P(Joins, Operators, testing::ValuesIn(joins));

const Row errors[] = {
    {"=A5+C1", "#N/A"},          {"=C1+A5", "#DIV/0!"}, {"=#REF!+1", "#REF!"},
    {"=A5=1", "#N/A"},           {"=-C1", "#DIV/0!"},   {"=NOSUCH(1)", "#NAME?"},
    {"=no_such_name", "#NAME?"}, {"=ABS()", "#VALUE!"}, {"=(", "#NAME?"},
};
INSTANTIATE_TEST_SUITE_P(Errors, Operators, testing::ValuesIn(errors));

TEST(Operators, FoldLongChainsWithoutRecursion) {
  SmallBook book;
  std::string formula = "=1";
  for (int i = 0; i < 50000; ++i) formula += "+1";
  EXPECT_EQ(book.run(formula), "50001");
}

TEST(Operators, WorkElementByElementOverArrays) {
  SmallBook book(cells);
  EXPECT_EQ(book.run_array("={1,2}+{10;20}"), "{11,12;21,22}");
  EXPECT_EQ(book.run_array("={1,2,3}*{1,2}"), "{1,4,#N/A}");
  EXPECT_EQ(book.run_array("=-B1:B3"), "{-1;-2;-3}");
  EXPECT_EQ(book.run_array("=B1:B3>1"), "{FALSE;TRUE;TRUE}");
  EXPECT_EQ(book.run_array("=A7:B7"), "{0,0}");
  EXPECT_EQ(book.run("={5,6}+1"), "6");
}

TEST(Operators, RefuseArraysBeyondAllBounds) {
  SmallBook book(cells);
  EXPECT_EQ(book.run_array("=SUM(A1:XFD1048576*2)"), "#NUM!");
}

}  // namespace
}  // namespace qto::embedded
