#include "tests/functions/formula_table.hpp"

namespace qto::embedded {
namespace {

constexpr const char* lookup_cells =
    "A1=apple; A2=Banana; A3=cherry; B1=10; B2=20; B3=30; C1=1; C2=3; C3=5; C4=text; C5=7; C6=9;"
    "D1=5; D2=4; D3=2; D4=1; E1=100; F1=200; G1=300; E2=x; F2=y; G2=z";

TEST(Lookup, FindsEqualValues) {
  expect_results(lookup_cells, {{"=VLOOKUP(\"BANANA\",A1:B3,2,FALSE)", "20"},
                                {"=VLOOKUP(\"b*\",A1:B3,2,FALSE)", "20"},
                                {"=VLOOKUP(\"?pple\",A:B,2,FALSE)", "10"},
                                {"=VLOOKUP(\"plum\",A1:B3,2,FALSE)", "#N/A"},
                                {"=VLOOKUP(\"apple\",A1:B3,3,FALSE)", "#REF!"},
                                {"=VLOOKUP(\"apple\",A1:B3,0,FALSE)", "#VALUE!"},
                                {"=VLOOKUP(#REF!,A1:B3,2,FALSE)", "#REF!"},
                                {"=VLOOKUP(\"10\",B1:B3,1,FALSE)", "#N/A"},
                                {"=HLOOKUP(200,E1:G2,2,FALSE)", "y"},
                                {"=MATCH(\"cherry\",A1:A3,0)", "3"},
                                {"=MATCH(\"~*\",A1:A3,0)", "#N/A"},
                                {"=MATCH(20,A1:B3,0)", "#N/A"}});
}

TEST(Lookup, SearchesSortedValues) {
  expect_results(lookup_cells, {{"=VLOOKUP(25,B1:B3,1)", "20"},
                                {"=VLOOKUP(5,B1:B3,1)", "#N/A"},
                                {"=MATCH(4,C1:C6)", "2"},
                                {"=MATCH(8,C1:C6)", "5"},  // the text in between is passed over
                                {"=MATCH(3,D1:D4,-1)", "2"},
                                {"=MATCH(9,D1:D4,-1)", "#N/A"},
                                {"=MATCH(2,{1,2,2,2,3})", "4"},
                                {"=LOOKUP(4,C:C,C:C)", "3"},
                                {"=LOOKUP(\"zzz\",A1:A3)", "cherry"},
                                {"=LOOKUP(2,1/(A1:A3<>\"cherry\"),B1:B3)", "20"},
                                {"=LOOKUP(250,E1:G2)", "y"}});
}

TEST(Lookup, TheFormOfArraysGivesTheLastRowOrColumn) {
  expect_results(lookup_cells, {{"=LOOKUP(20,B1:C3)", "3"},
                                {"=LOOKUP(\"banana\",A1:B3)", "20"},
                                {"=LOOKUP(\"banana\",A1:B3,C1:C3)", "3"},
                                {"=LOOKUP(200,E1:G2)", "y"},
                                {"=LOOKUP(2,{1,\"a\";2,\"b\"})", "b"},
                                {"=LOOKUP(5,B1:C3)", "#N/A"},
                                {"=LOOKUP(H9,{0,1},{\"zero\",\"one\"})", "zero"},
                                {"=VLOOKUP(H9,{0,\"a\";1,\"b\"},2)", "a"},
                                {"=MATCH(H9,{0,1},0)", "1"},
                                {"=MATCH(\"3/4\",{45000,\"3/4\"},0)", "2"}});
}

TEST(Choice, OfEveryForm) {
  expect_results(lookup_cells, {{"=IF(3,\"yes\",\"no\")", "yes"},
                                {"=IF(H9,\"yes\",\"no\")", "no"},
                                {"=IF(\"true\",1,2)", "1"},
                                {"=IF(\"x\",1,2)", "#VALUE!"},
                                {"=IF(TRUE,,2)", "0"},
                                {"=IF(FALSE,1)", "FALSE"},
                                {"=IFS(B1>10,1,B1=10,2,TRUE,3)", "2"},
                                {"=IFS(FALSE,1)", "#N/A"},
                                {"=IFS(NA(),1,TRUE,2)", "#N/A"},
                                {"=IFS(B1,C2)", "3"},
                                {"=SWITCH(B2,10,\"a\",20,\"b\",\"c\")", "b"},
                                {"=SWITCH(99,10,\"a\",20,\"b\",\"c\")", "c"},
                                {"=SWITCH(TRUE,B1>10,\"a\",B1>5,\"b\")", "b"},
                                {"=SWITCH(\"1\",1,\"a\",\"b\")", "b"},
                                {"=CHOOSE(2.9,1,2,3)", "2"},
                                {"=CHOOSE(0,1,2)", "#VALUE!"},
                                {"=SUM(B1:CHOOSE(2,B2,B3))", "60"},
                                {"=SUM(IF(TRUE,B1:B3,C1:C3))", "60"},
                                {"=SUM(B1:IF(FALSE,B3,B2))", "30"},
                                {"=ROWS(IFS(TRUE,B1:B3))", "3"},
                                {"=ROWS(SWITCH(1,1,B1:B3))", "3"},
                                {"=IFERROR(VLOOKUP(\"plum\",A1:B3,2,0),\"none\")", "none"},
                                {"=IFERROR(H9,1)", "0"},
                                {"=IFNA(1/0,1)", "#DIV/0!"},
                                {"=XLOOKUP(99,B1:B3,A1:A3,C2)", "3"},
                                {"=SUM(B1:XLOOKUP(20,B1:B3,B1:B3))", "30"},
                                {"=XLOOKUP(200,E1:G1,E2:G2)", "y"}});
}

TEST(Lookup, ExtendedFormsGoBothWays) {
  expect_results(lookup_cells,
                 {{"=XLOOKUP(20,B1:B3,A1:A3)", "Banana"},
                  {"=XLOOKUP(25,B1:B3,A1:A3,\"none\")", "none"},
                  {"=XLOOKUP(25,B1:B3,A1:A3,,1)", "cherry"},
                  {"=XLOOKUP(25,B1:B3,A1:A3,,-1)", "Banana"},
                  {"=XLOOKUP(\"b*\",A1:A3,B1:B3,,2)", "20"},
                  {"=XLOOKUP(\"b*\",A1:A3,B1:B3)", "#N/A"},
                  {"=SUM(XLOOKUP(\"apple\",A1:A3,B1:C3))", "11"},
                  {"=XMATCH(4,D1:D4,0,-2)", "2"},
                  {"=XMATCH(3,D1:D4,1,-2)", "2"},
                  {"=XMATCH(1,{1,2,1},0,-1)", "3"},
                  {"=XMATCH(4.1,{\"\",\"a\",1.1,4.1},0,2)", "#N/A"},  // texts stand above
                  {"=XMATCH(4.1,{2,\"s\",\"a\",4.1,1.1},1,2)", "2"},
                  {"=XMATCH(2,{1,2,3,#N/A,#N/A},0,2)", "2"},
                  {"=XMATCH(1,{1,2},3)", "#VALUE!"}});
}

TEST(Lookup, IndexGivesReferencesAndParts) {
  SmallBook book(lookup_cells);
  EXPECT_EQ(book.run_reference("=INDEX(A1:B3,2,1)"), "Sheet1!A2");
  EXPECT_EQ(book.run_reference("=INDEX(A1:B3,0,2)"), "Sheet1!B1:B3");
  EXPECT_EQ(book.run_reference("=INDEX((A1:B3,C1:C6),5,1,2)"), "Sheet1!C5");
  EXPECT_EQ(book.run("=INDEX(E1:G1,3)"), "300");
  EXPECT_EQ(book.run("=INDEX(B1:B3,4)"), "#REF!");
  EXPECT_EQ(book.run("=INDEX(B1:B3,-1)"), "#VALUE!");
  EXPECT_EQ(book.run("=SUM(INDEX((A1:A3=\"apple\")*B1:B3,0))"), "10");
  EXPECT_EQ(book.run_array("=INDEX({1,2;3,4},2,0)"), "{3,4}");
}

TEST(Lookup, ChoosesWithoutEvaluatingTheRest) {
  SmallBook book(lookup_cells);
  EXPECT_EQ(book.run("=CHOOSE(2,1/0,B2,1/0)"), "20");
  EXPECT_EQ(book.run("=CHOOSE(4,1,2,3)"), "#VALUE!");
  EXPECT_EQ(book.run("=SUM(CHOOSE(2,A1:A3,B1:B3))"), "60");
  EXPECT_EQ(book.run_array("=CHOOSE({1,2},\"a\",\"b\")"), "{a,b}");
}

TEST(Lookup, ReferencesFromTexts) {
  SmallBook book(lookup_cells);
  book.sheet("My sheet").cells.touch({1, 1}).set_number(7);
  EXPECT_EQ(book.run("=SUM(INDIRECT(\"B1:B\"&3))"), "60");
  EXPECT_EQ(book.run("=INDIRECT(\"'My sheet'!A1\")"), "7");
  EXPECT_EQ(book.run("=INDIRECT(\"R2C2\",FALSE)"), "20");
  EXPECT_EQ(book.run("=INDIRECT(\"R[-1]C[1]\",FALSE)", "A4"), "30");
  EXPECT_EQ(book.run("=INDIRECT(\"nothing here\")"), "#REF!");
  EXPECT_EQ(book.run("=INDIRECT(\"1+1\")"), "#REF!");
  EXPECT_EQ(book.run("=OFFSET(A1,-1,0)"), "#REF!");
  EXPECT_EQ(book.run("=SUM(OFFSET(B3,0,0,-2,1))"), "50");
}

}  // namespace
}  // namespace qto::embedded
