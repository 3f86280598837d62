#include <gtest/gtest.h>

#include "tests/evaluate/small_book.hpp"

namespace qto::embedded {
namespace {

TEST(Laziness, EvaluatesOnlyWhatIsChosen) {
  SmallBook book("A1=1; B1=2; C1=3");
  book.fill("B2==1; C2==1");
  book.asked.clear();
  EXPECT_EQ(book.run("=IF(A1=1,B1,C1)"), "2");
  EXPECT_EQ(book.asked, "Sheet1!A1 Sheet1!B1");
  EXPECT_EQ(book.run("=IF(FALSE,1/0)"), "FALSE");
  EXPECT_EQ(book.run("=IF(TRUE,,5)"), "0");
  EXPECT_EQ(book.run("=IFS(FALSE,1/0,TRUE,7)"), "7");
  EXPECT_EQ(book.run("=SWITCH(\"b\",\"A\",1/0,\"B\",2)"), "2");
  EXPECT_EQ(book.run("=SWITCH(9,1,2)"), "#N/A");
  EXPECT_EQ(book.run("=IFERROR(5,1/0)"), "5");
  EXPECT_EQ(book.run("=IF(\"x\",1,2)"), "#VALUE!");
  EXPECT_EQ(book.run("=IF(#N/A,1,2)"), "#N/A");
}

TEST(Laziness, WorksElementByElementInArrays) {
  SmallBook book("A1=1; A2=-2; A3=3");
  EXPECT_EQ(book.run_array("=IF(A1:A3>0,A1:A3,0)"), "{1;0;3}");
  EXPECT_EQ(book.run_array("=SUM(IF(A1:A3>0,A1:A3))"), "4");
  EXPECT_EQ(book.run("=SUMPRODUCT(IF({TRUE,FALSE},{1,2},{10,20}))"), "21");
  EXPECT_EQ(book.run_array("=IFERROR(1/(A1:A3-1),\"-\")"), "{-;-0.333333333333333;0.5}");
  EXPECT_EQ(book.run_array("=IFS({1,0},\"a\",TRUE,\"b\")"), "{a,b}");
  EXPECT_EQ(book.run_array("=SWITCH({1,2,3},1,\"a\",2,\"b\")"), "{a,b,#N/A}");
}

TEST(LocalNames, AreSeenFromWhereTheyAreBound) {
  SmallBook book("A1=4");
  book.name("x", "100");
  book.name("Double", "LAMBDA(n,n*2)");
  book.name("Fact", "LAMBDA(n,IF(n<2,1,n*Fact(n-1)))");
  book.name("Forever", "LAMBDA(n,Forever(n))");
  EXPECT_EQ(book.run("=LET(x,2,x+1)+x"), "103");
  EXPECT_EQ(book.run("=LET(x,2,y,x*3,X&y)"), "26");
  EXPECT_EQ(book.run("=LET(x,1,LET(x,2,x)+x)"), "3");
  EXPECT_EQ(book.run("=LET(k,3,f,LAMBDA(n,n+k),f(A1))"), "7");
  EXPECT_EQ(book.run("=Double(21)"), "42");
  EXPECT_EQ(book.run("=Fact(10)"), "3628800");
  EXPECT_EQ(book.run("=Forever(1)"), "#NUM!");
  EXPECT_EQ(book.run("=Double(1,2)"), "#VALUE!");
  EXPECT_EQ(book.run("=LAMBDA(n,n)"), "#CALC!");
  EXPECT_EQ(book.run("=x(1)"), "#VALUE!");
  EXPECT_EQ(book.run_array("=MAP({1,2},{10,20},LAMBDA(a,b,a+b))"), "{11,22}");
  EXPECT_EQ(book.run_array("=SCAN(0,{1,2;3,4},LAMBDA(a,b,a+b))"), "{1,3;6,10}");
}

TEST(Spill, DenotesTheBlockOfAnArrayFormula) {
  SmallBook book("B1=1; B2=2; B3=3");
  FormulaRecord record;
  record.kind = FormulaKind::array;
  record.block = Rect{{1, 2}, {3, 2}};
  record.compiled = CompiledFormula::compile("ROW(A1:A3)", CellPos{1, 2});
  const FormulaId id = book.book.add_formula(record);
  book.sheet("Sheet1").set_block_formula(record.block, id);
  EXPECT_EQ(book.run("=SUM(B1#)"), "6");
  EXPECT_EQ(book.run_reference("=B1#"), "Sheet1!B1:B3");
  EXPECT_EQ(book.run("=@B1:B3", "D2"), "2");
}

}  // namespace
}  // namespace qto::embedded
