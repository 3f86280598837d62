#include "tests/exact/reading.hpp"

namespace qto::test {
namespace {

/// A column of 1 to 5, tens beside it; C1 is an error, C2 is blank, C3 is a text like a date.
constexpr const char* table =
    "A1=1; A2=2; A3=3; A4=4; A5=5; B1=10; B2=20; B3=30; B4=40; B5=50; C1==1/0; C3='3/4; "
    "Data!A1=1; Data!A2=2; Data!A3=3; Data!B1=7; Data!B2=8; Data!B3=9; D1=0; D2=10; E1=k; E2=m";

TEST(ExactChoices, OfBranchesFollowTheOneThatIsTaken) {
  Books books(table);
  check(books, used,
        {
            {"IF(A1>0,B1,B2)", "B1"},
            {"IF(A1,B1,B2)", "B1"},
            {"IF(D1,B1,B2)", "B2"},
            {"IF(C2,B1,B2)", "B2"},
            {"IF(COUNTIF(A1:A5,3),B1,B2)", "B1"},
            {"IF(\"TRUE\",B1,B2)", "B1"},
            {"IF(A1>0,,B2)", "none"},
            {"IF(A1<0,,B2)", "B2"},
            {"IF(A1<0,B1)", "none"},
            {"SUM(IF(A1>0,B1,),IF(A2>0,B2,B3))", "B1 B2"},
            {"IF(A1>0,IF(A2<0,B1,Data!B2),B3)", "Data!B2"},
            {"IFS(A1>1,B1,A2>1,B2,A3>1,B3)", "B2"},
            {"SWITCH(A2,1,B1,2,B2,B3)", "B2"},
            {"SWITCH(E1,\"x\",B1,\"K\",B2)", "B2"},
            {"SWITCH(A5,1,B1,2,B2,B3)", "B3"},
            {"CHOOSE(A2,B1,B2,B3)", "B2"},
            {"SUM(CHOOSE(2.9,B1,B1:B3,B3))", "B1 B2 B3"},
            {"IFERROR(C1,B1)", "B1"},
            {"IFERROR(A1,B1)", "A1"},
            {"IFNA(MATCH(9,A1:A5,0),B1)", "B1"},
            {"IFNA(C1,B1)", "C1"},
        });
  check(books, conditions,
        {
            {"IF(A1>0,B1,B2)", "B1 A1"},
            {"IFS(A1>1,B1,A2>1,B2,A3>1,B3)", "B2 A1 A2"},
            {"SWITCH(A2,1,B1,A4,B4,2,B2,A5,B5)", "B2 A2 A4"},
            {"IFERROR(C1,B1)", "B1 C1"},
            {"CHOOSE(A2,B1,B2,B3)", "B2 A2"},
        });
}

TEST(ExactChoices, OfLookupsFollowTheCellThatIsFound) {
  Books books(table);
  check(books, used,
        {
            {"VLOOKUP(A3,A1:B5,2,0)", "B3"},
            {"VLOOKUP(3.5,A1:B5,2)", "B3"},
            {"VLOOKUP(C2,D1:E2,2)", "E1"},
            {"VLOOKUP(,D1:E2,2,)", "E1"},
            {"VLOOKUP(2,Data!A1:B3,2,FALSE)", "Data!B2"},
            {"VLOOKUP(A3,CHOOSE({1,2},A1:A5,B1:B5),2,0)", "B3"},
            {"VLOOKUP(A3,CHOOSE({2,1},B1:B5,A1:A5),2,0)", "B3"},
            {"VLOOKUP(A3,IF({1,0},A1:A5,B1:B5),2,0)", "B3"},
            {"VLOOKUP(A3,INDIRECT(\"A1:B5\"),2,0)", "B3"},
            {"VLOOKUP(A3,OFFSET(A1,0,0,5,2),2,0)", "B3"},
            {"SUM(VLOOKUP(A3,A1:B5,{1,2},0))", "A3 B3"},
            {"VLOOKUP(3,{1,2;3,4},2,0)", "none"},
            {"HLOOKUP(1,A1:B5,4,0)", "A4"},
            {"LOOKUP(2.5,A1:A5,B1:B5)", "B2"},
            {"LOOKUP(3,A1:B5)", "B3"},
            {"LOOKUP(1,Data!A1:A3,Data!B1:B3)", "Data!B1"},
            {"LOOKUP(A3,{0,2,5},B1:B3)", "B2"},
            {"LOOKUP(2,1/(A1:A5<>\"\"),B1:B5)", "B5"},
            {"XLOOKUP(4,A1:A5,B1:B5)", "B4"},
            {"SUM(XLOOKUP(2,Data!A1:A3,Data!A1:B3))", "Data!A2 Data!B2"},
            {"XLOOKUP(9,A1:A5,B1:B5,D1)", "D1"},
            {"MATCH(A3,A1:A5,0)", "A3"},
            {"XMATCH(A3,A1:A5)", "A3"},
        });
  books.enter("A9=3/4; B9=5");
  books.range("A9")->put_Formula("'3/4");
  check(books, used, {{"VLOOKUP(C3,A1:B9,2,0)", "B9"}});
  check(books, conditions,
        {
            {"VLOOKUP(A3,A1:B5,D2/5,0)", "B3 A3 D2"},
            {"XLOOKUP(A4,A1:A5,B1:B5)", "B4 A4"},
            {"INDEX(B1:B5,MATCH(A3,A1:A5,0))", "B3 A3"},
        });
}

TEST(ExactChoices, OfReferencesFollowWhereTheyLead) {
  Books books(table);
  check(books, used,
        {
            {"INDEX(Data!A1:B3,2,2)", "Data!B2"},
            {"SUM(INDEX(A1:B5,2,0))", "A2 B2"},
            {"INDEX((A1:A5,B1:B5),3,1,2)", "B3"},
            {"INDEX(B1:B5,MATCH(A3,A1:A5,0))", "B3"},
            {"SUM(A1:INDEX(A1:A5,4))", "A1 A2 A3 A4"},
            {"INDEX(SORT(A1:A5),2)", "A1 A2 A3 A4 A5"},
            {"INDEX(A1:A5*B1:B5,2)", "A2 B2"},
            {"INDEX({4,5,6},A2)", "none"},
            {"OFFSET(Data!A1,2,1)", "Data!B3"},
            {"SUM(OFFSET(A1,A1,0,2,A2))", "A2 B2 A3 B3"},
            {"INDIRECT(\"A\"&A3)", "A3"},
            {"SUM(INDIRECT(\"Data!A1:A2\"))", "Data!A1 Data!A2"},
        });
  check(books, conditions,
        {
            {"SUM(OFFSET(A1,A2,0,A1,A1))", "A3 A1 A2"},
            {"INDIRECT(\"A\"&A3)", "A3"},
            {"INDIRECT(\"B\"&A3)", "B3 A3"},
        });
  check_array(books, used, {{"SUM(INDIRECT({\"A1\",\"B1\"}))", "A1 B1"}});
}

TEST(ExactChoices, OfSumsFollowTheCellsThatMeetTheCriteria) {
  Books books(table);
  check(books, used,
        {
            {"SUMIF(A1:A5,\">=\"&A4,B1:B5)", "B4 B5"},
            {"SUMIF(A1:A5,A3,B1)", "B3"},
            {"SUMIF(A1:A5,\"<3\")", "A1 A2"},
            {"SUMIFS(B1:B5,A1:A5,\">1\",B1:B5,\"<50\")", "B2 B3 B4"},
            {"COUNTIF(E1:E2,\"k\")", "E1"},
            {"COUNTIFS(A1:A5,\">3\",B1:B5,\"<50\")", "A4 B4"},
            {"AVERAGEIF(A1:A5,2,B1:B5)", "B2"},
            {"MAXIFS(Data!B1:B3,Data!A1:A3,\"<>2\")", "Data!B1 Data!B3"},
            {"SUM(SUMIFS(B1:B5,A1:A5,{1,3}))", "B1 B3"},
            {"SUMPRODUCT(SUMIF(A1:A5,A2:A3,B1:B5))", "B2 B3"},
            {"SUMIF(A1:A5,\">9\",B1:B5)", "none"},
            {"SUM(FILTER(B1:B5,A1:A5>3))", "B4 B5"},
            {"SUM(FILTER(A1:B5,B1:B5=20,D1))", "A2 B2"},
            {"FILTER(B1:B5,A1:A5>9,D2)", "D2"},
        });
  check(books, conditions,
        {
            {"SUMIF(A1:A5,\">=\"&A4,B1:B5)", "B4 B5 A4"},
            // What decides where the searched cells lie belongs to the condition.
            {"VLOOKUP(3,IF(A2,A1:B5,D1),2,FALSE)", "B3 A2"},
            {"SUMIF(OFFSET(B1:B3,D1,0),\">20\")", "B3 D1"},
            {"VLOOKUP(2,INDIRECT(\"A\"&A1&\":B5\"),2,FALSE)", "B2 A1"},
        });
}

TEST(ExactChoices, ThatCannotBeDecidedAreFollowedWhole) {
  Books books(table);
  const char* all = "A1 B1 A2 B2 A3 B3 A4 B4 A5 B5";
  check(books, used,
        {
            {"IF(C1>0,A1,A2)", "C1 A1 A2"},
            {"VLOOKUP(C1,A1:A2,1,0)", "C1 A1 A2"},
            {"VLOOKUP(9,A1:B5,2,0)", all},
            {"INDEX(B1:B2,C1)", "B1 B2 C1"},
            {"OFFSET(A1,C1,0)", "A1 C1"},
            {"INDIRECT(\"A\"&C1)", "C1"},
            {"MATCH(C1,A1:A2,0)", "C1 A1 A2"},
            {"MAP(A1:A2,LAMBDA(x,INDEX(B1:B2,x)))", "A1 A2 B1 B2"},
            {"MAP(A1:A2,LAMBDA(x,IF(x>1,B1,B2)))", "A1 A2 B1 B2"},
            {"SUMPRODUCT(IF(A1:A2>1,B1:B2,D1))", "A1 A2 B1 B2 D1"},
            {"CHOOSE(9,A1,B1)", "A1 B1"},
            {"IFS(A1>9,B1)", "A1 B1"},
        });
  EXPECT_EQ(remark(books, used, "IF(C1>0,A1,A2)"),
            "IF is followed whole: its condition is #DIV/0!");
  EXPECT_EQ(remark(books, used, "MAP(A1:A2,LAMBDA(x,IF(x>1,B1,B2)))"),
            "IF is followed whole: its condition depends on a parameter");
  EXPECT_EQ(remark(books, used, "IF(A1>0,A1,A2)"), "");
  check_array(books, used,
              {
                  {"IF(A1:A2>1,B1:B2,D1)", "A1 A2 B1 B2 D1"},
                  {"IF(A1:A2>0,B1:B2,D1)", "B1 B2"},
                  {"VLOOKUP(A1:A2,A1:B2,2,FALSE)", "A1 A2 B1 B2"},
              });
}

TEST(ExactChoices, KnowWhatLetAndLambdaNames) {
  Books books(table);
  check(books, used,
        {
            {"LET(t,A1:B5,VLOOKUP(A3,t,2,0))", "B3"},
            {"LET(i,A2,INDEX(B1:B5,i))", "B2"},
            {"LET(i,A2,j,i+1,IF(j>2,B1+i,B2))", "B1 A2"},
            {"LAMBDA(k,VLOOKUP(k,A1:B5,2,0))(A3)", "B3"},
            {"LET(x,A1,LET(x,x+1,INDEX(B1:B5,x)))", "B2"},
        });
}

TEST(ExactChoices, LeadAnErrorIntoTheArgumentItComesFrom) {
  Books books(table);
  for (const char* formula :
       {"VLOOKUP(C1,A1:B5,2,0)", "INDEX(B1:B5,C1)", "OFFSET(A1,C1,0)", "IF(C1>0,A1,A2)",
        "INDEX(B1:B5,MATCH(C1,A1:A5,0))", "INDIRECT(\"A\"&C1)", "VLOOKUP(3,A1:B5,C1,0)",
        "MATCH(C1,A1:A5,0)", "SUMIF(A1:A5,C1,B1:B5)+C1", "CHOOSE(C1,A1,A2)"}) {
    books.enter(std::string("Z9==") + formula);
    EXPECT_EQ(errors(books, "Z9", used), "C1") << formula;
  }
}

TEST(ExactChoices, KeepTheListOfAll) {
  Books books("A1=5; B1=1; C1=2; Z9==IF(A1>0,B1,C1)");
  const auto drill = drill_from(books, "Z9", used);
  drill->DrillHere();
  const auto& part = drill->StartModelPart();
  EXPECT_TRUE(part->IntelligentDrillingUsed());
  EXPECT_EQ(listed(part->DirectPrecedents()), "B1");
  EXPECT_EQ(listed(part->AllPrecedents()), "A1 B1 C1");
}

}  // namespace
}  // namespace qto::test
