#include <gtest/gtest.h>

#include "tests/evaluate/small_book.hpp"

namespace qto::embedded {
namespace {

class References : public testing::Test {
 protected:
  SmallBook book{"A1=1; A2=2; A3=3; B1=10; B2=20; B3=30; Data!A1=100; Last!A1=1000"};
};

TEST_F(References, IntersectWithTheFormulasCell) {
  EXPECT_EQ(book.run("=A1:A3", "D2"), "2");
  EXPECT_EQ(book.run("=A:A*2", "D3"), "6");
  EXPECT_EQ(book.run("=A1:B1", "B9"), "10");
  EXPECT_EQ(book.run("=A1:A3", "D9"), "#VALUE!");
  EXPECT_EQ(book.run("=A1:B3", "D2"), "#VALUE!");
  EXPECT_EQ(book.run("=ABS(A1:A3)", "D3"), "3");
  EXPECT_EQ(book.run("=SUM(A1:A3*1)", "D2"), "2");
}

TEST_F(References, StayWhatTheyAreWhereOneIsWanted) {
  EXPECT_EQ(book.run_reference("=A1:A3"), "Sheet1!A1:A3");
  EXPECT_EQ(book.run_reference("=Data!A1"), "Data!A1");
  EXPECT_EQ(book.run_reference("=A1:INDEX(B1:B3,2)"), "Sheet1!A1:B2");
  EXPECT_EQ(book.run_reference("=IF(TRUE,A1,B1)"), "Sheet1!A1");
  EXPECT_EQ(book.run_reference("=(A1,B2)"), "Sheet1!A1,Sheet1!B2");
  EXPECT_EQ(book.run_reference("=OFFSET(A1,1,1,2,1)"), "Sheet1!B2:B3");
}

TEST_F(References, JoinAndMeet) {
  EXPECT_EQ(book.run("=SUM((A1:A2,B2:B3))"), "53");
  EXPECT_EQ(book.run("=SUM(A1:B2 B1:B3)"), "30");
  EXPECT_EQ(book.run("=A1 B1"), "#NULL!");
  EXPECT_EQ(book.run("=SUM(A1:A3:B2)"), "66");
}

TEST_F(References, RunOverSeveralSheetsOnlyWhereTaken) {
  EXPECT_EQ(book.run("=SUM(Sheet1:Last!A1)"), "1101");
  EXPECT_EQ(book.run("=AVERAGE(Data:Last!A1)"), "550");
  EXPECT_EQ(book.run("=ABS(Sheet1:Last!A1)"), "#VALUE!");
  EXPECT_EQ(book.run("=Nowhere!A1"), "#REF!");
}

TEST_F(References, FollowNames) {
  book.name("Rate", "Sheet1!$A$2");
  book.name("Above", "Sheet1!A1048576");
  book.name("Twice", "Sheet1!$A$1:$A$3*2");
  book.name("Self", "Self+1");
  book.name("Tax", "0.25");
  book.name("Rate", "Data!$A$1", &book.sheet("Data"));
  EXPECT_EQ(book.run("=rate*10"), "20");
  EXPECT_EQ(book.run("=Data!Rate"), "100");
  EXPECT_EQ(book.run("=Above", "B3"), "20");
  EXPECT_EQ(book.run("=SUM(Twice)"), "12");
  EXPECT_EQ(book.run("=Tax"), "0.25");
  EXPECT_EQ(book.run("=Self"), "#NUM!");
  EXPECT_EQ(book.run_reference("=Rate"), "Sheet1!A2");
}

TEST_F(References, UnderstandTables) {
  book.fill("D1=Item; E1=Price; D2=a; E2=5; D3=b; E3=7; D4=Total; E4=12");
  Table table;
  table.name = "Sales";
  table.sheet = book.book.find_sheet("Sheet1");
  table.range = Rect{{1, 4}, {4, 5}};
  table.totals_rows = 1;
  table.columns = {"Item", "Price"};
  book.book.add_table(table);
  EXPECT_EQ(book.run("=SUM(Sales[Price])"), "12");
  EXPECT_EQ(book.run("=Sales[[#Totals],[Price]]"), "12");
  EXPECT_EQ(book.run("=Sales[[#This Row],[Price]]*2", "F3"), "14");
  EXPECT_EQ(book.run("=Sales[[#This Row],[Price]]", "F4"), "#VALUE!");
  EXPECT_EQ(book.run_reference("=Sales[#All]"), "Sheet1!D1:E4");
  EXPECT_EQ(book.run_reference("=Sales"), "Sheet1!D2:E3");
  EXPECT_EQ(book.run("=Sales[Colour]"), "#REF!");
}

TEST_F(References, ReachOpenAndClosedBooks) {
  ExternalBook closed;
  closed.name = "Closed.xlsx";
  closed.sheets = {"S"};
  closed.values.resize(1);
  closed.values[0][ExternalBook::key({1, 1})] = 42.0;
  closed.values[0][ExternalBook::key({2, 1})] = "x";
  closed.names.push_back({"Part", "", "=S!$A$1:$A$2"});
  ExternalBook open;
  open.name = "Other.xlsx";
  book.book.externals = {closed, open};
  Sheet& sheet = book.other.add_sheet("T");
  book.other.store(sheet.cells.touch({1, 1}), 7.0);
  EXPECT_EQ(book.run("=[1]S!A1*2"), "84");
  EXPECT_EQ(book.run("=VLOOKUP(42,[1]S!A1:A2,1,FALSE)"), "42");
  EXPECT_EQ(book.run("=COUNTA([1]!Part)"), "2");
  EXPECT_EQ(book.run_reference("=[1]S!A1"), "42");
  EXPECT_EQ(book.run("=[1]Gone!A1"), "#REF!");
  EXPECT_EQ(book.run("=[2]T!A1+1"), "8");
  EXPECT_EQ(book.run("=[3]S!A1"), "#REF!");
}

TEST_F(References, AskForReadinessOncePerBlockAndOnlyWhereRead) {
  book.fill("A2==A1+1; C1=1");
  book.asked.clear();
  book.run("=SUM(A1:A3)+ROWS(B1:B9)+IF(C1=1,5,B2)");
  EXPECT_EQ(book.asked, "Sheet1!A1:A3 Sheet1!C1");
}

TEST_F(References, GiveUpWhereCellsWait) {
  book.fill("A2==A1+1");
  book.waiting = "A2";
  book.asked.clear();
  book.run("=IF(A2>0,B1,B2)");
  EXPECT_TRUE(book.gave_up());
  EXPECT_EQ(book.asked, "Sheet1!A2");
  book.run("=B1");
  EXPECT_FALSE(book.gave_up());
}

TEST_F(References, CostNothingWhereNothingIsStored) {
  EXPECT_EQ(book.run("=SUM(A:XFD)"), "66");
  EXPECT_EQ(book.run("=COUNTIF(A:A,\"\")"), "1048573");
  EXPECT_EQ(book.run("=MATCH(3,A:A,0)"), "3");
  EXPECT_EQ(book.run("=SUMPRODUCT(A:A,B:B)"), "140");
  EXPECT_EQ(book.run("=LOOKUP(9,A:A,B:B)"), "30");
}

TEST_F(References, TellVolatileFunctions) {
  book.run("=A1");
  EXPECT_FALSE(book.was_volatile());
  book.run("=INDIRECT(\"A1\")");
  EXPECT_TRUE(book.was_volatile());
}

}  // namespace
}  // namespace qto::embedded
