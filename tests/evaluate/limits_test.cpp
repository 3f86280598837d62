#include <gtest/gtest.h>

#include "tests/evaluate/small_book.hpp"

namespace qto::embedded {
namespace {

std::string repeated(std::string_view text, int count) {
  std::string result;
  for (int i = 0; i < count; ++i) result += text;
  return result;
}

std::string nested(int levels) {
  return "=" + repeated("ABS(", levels) + "B1" + repeated(")", levels);
}

TEST(Limits, LongWideAndDeepFormulasAreEvaluated) {
  SmallBook book("B1=2");
  EXPECT_EQ(book.run("=" + repeated("B1+", 2730) + "B1"), "5462");  // 8,192 characters
  EXPECT_EQ(book.run("=" + repeated("B1+", 200'000) + "B1"), "400002");
  EXPECT_EQ(book.run("=SUM(" + repeated("B1,", 254) + "B1)"), "510");
  EXPECT_EQ(book.run(nested(64)), "2");
  EXPECT_EQ(book.run(nested(256)), "2");
  EXPECT_EQ(book.run("=" + repeated("IF(B1=2,", 64) + "B1" + repeated(")", 64)), "2");
  EXPECT_EQ(book.run("=LEN(\"" + std::string(8000, 'x') + "\")"), "8000");
}

TEST(Limits, BeyondThemFormulasGiveErrors) {
  SmallBook book("B1=2");
  EXPECT_EQ(book.run("=SUM(" + repeated("B1,", 255) + "B1)"), "#VALUE!");
  EXPECT_EQ(book.run(nested(257)), "#NAME?");
  EXPECT_EQ(book.run(nested(100'000)), "#NAME?");
  EXPECT_EQ(CompiledFormula::compile(nested(257).substr(1), CellPos{1, 1})->why_broken(),
            "nested deeper than 256 levels");
}

TEST(Limits, NamesThatDoubleEachOtherAreEvaluatedOnce) {
  SmallBook book("B1=1");
  for (int i = 0; i < 50; ++i) {
    const std::string next = "Twice" + std::to_string(i + 1);
    book.name("Twice" + std::to_string(i), next + "+" + next);
  }
  book.name("Twice50", "Sheet1!$B$1");
  EXPECT_EQ(book.run("=Twice0"), "1.12589990684262E+15");
  book.name("Round1", "Round2+Round2");
  book.name("Round2", "Round1+Round1");
  EXPECT_EQ(book.run("=Round1"), "#NUM!");
}

TEST(Limits, RecursionThatBranchesEnds) {
  SmallBook book;
  book.name("Boom", "LAMBDA(n,Boom(n-1)+Boom(n-1))");
  book.name("Fib", "LAMBDA(n,IF(n<2,n,Fib(n-1)+Fib(n-2)))");
  EXPECT_EQ(book.run("=Boom(1)"), "#NUM!");
  EXPECT_EQ(book.run("=Fib(20)"), "6765");
  // Loops are no recursion.
  EXPECT_EQ(book.run("=REDUCE(0,SEQUENCE(300000),LAMBDA(a,b,a+1))"), "300000");
}

TEST(Unknown, FunctionsGiveTheErrorOfNames) {
  SmallBook book("B1=2");
  EXPECT_EQ(book.run("=MyMacro(B1,3)+1"), "#NAME?");
  EXPECT_EQ(book.run("=_xll.AddIn.Call(B1)"), "#NAME?");
  EXPECT_EQ(book.run("=IFERROR(MyMacro(B1),B1)"), "2");
  EXPECT_EQ(book.run("=IF(B1=2,B1,MyMacro(B1))"), "2");
}

}  // namespace
}  // namespace qto::embedded
