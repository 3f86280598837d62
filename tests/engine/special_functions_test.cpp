#include <gtest/gtest.h>

#include "tests/support/text_book.hpp"

namespace qto::test {
namespace {

struct Drilled {
  const char* formula;
  const char* found;
};

void check(Books& books, const Options& options, std::initializer_list<Drilled> rows) {
  for (const Drilled& row : rows) {
    books.enter(std::string("Z9=") + row.formula);
    EXPECT_EQ(precedents(books, "Z9", options), row.found) << row.formula;
  }
}

TEST(IfDrilling, FollowsTheBranchThatItsConditionSelects) {
  Books books("A1=5; A2=-5; A3=1; A4=-1; A5=TRUE; A6=TRUE text; B1=1; C1=2; My Sheet!A1=7");
  const Drilled all[] = {{"=IF(A1>0,B1,C1)", "A1 B1 C1"}};
  check(books, {}, {all[0]});
  check(books, {.ParseIf = 1},
        {
            {"=IF(A1>0,B1,C1)", "B1"},
            {"=IF(A2>0,B1,C1)", "C1"},
            {"=IF(A1>0,B1)", "B1"},
            {"=IF(A2>0,B1)", "none"},
            {"=IF(A2>0,B1)+C1", "C1"},
            {"=IF(A3,B1,C1)", "C1"},  // 1 is not TRUE
            {"=IF(A4,B1,C1)", "B1"},  // -1 is
            {"=IF(A5,B1,C1)", "B1"},
            {"=IF(A6,B1,C1)", "C1"},
            {"=IF(A9,B1,C1)", "C1"},
            {"=IF(#N/A,B1,C1)", "B1 C1"},
            {"=IF(1/0,B1,IF(A1>0,A1,A2))", "B1 A1 A2"},
            {"=IF(A1>0,SUM(B1:B3),C1)", "B1 B2 B3"},
            {"=IF(A1>0,IF(A2>0,A3,A4),C1)", "A4"},
            {"=IF(A2>0,{1,2},C1)", "C1"},
            {"=IF(A2>0,MAX(A1,A2),MIN(B1,C1))+A3", "B1 C1 A3"},
            {"=IF('My Sheet'!A1>0,B1,C1)", "B1"},
            {"=IF(A1>0,,C1)", "C1"},
        });
  check(books, {.ParseIf = 2},
        {
            {"=IF(A1>0,B1,C1)", "B1 A1"},
            {"=IF(A2>0,B1,C1)", "C1 A2"},
            {"=IF(A2>0,B1)", "A2"},
            {"=IF(AND(A1>0,A2>0),B1,C1)", "C1 A1 A2"},
        });
}

/// What a reference to several cells means depends on the cell in which the formula stands.
TEST(SpecialFunctions, AreEvaluatedAsTheirOwnCellSeesThem) {
  Books books(
      "A8=1; A9=5; A10=1; B8=k; B9=m; C8=10; C9=20; D1=k; D2=m; E1=1; E2=2; "
      "name Amounts=Sheet1!$A$8:$A$10; name Left=Sheet1!B9");
  check(books, {.ParseIf = 1, .ParseLookup = 1, .ParseIndex = 1},
        {
            {"=IF(A8:A10>3,B1,C1)", "B1"},
            {"=IF(Amounts>3,B1,C1)", "B1"},
            {"=IF(ROW()=9,B1,C1)", "B1"},
            {"=VLOOKUP(B8:B10,D1:E2,2,FALSE)", "E2"},
            {"=INDEX(E1:E2,MATCH(B8:B10,D1:D2,0))", "E2"},
        });
}

TEST(SpecialFunctions, KnowTheNamesThatLetGives) {
  Books books("A1=5; A2=2; D1=k; D2=m; E1=1; E2=2");
  check(books, {.ParseIf = 1, .ParseLookup = 1, .ParseIndex = 1},
        {
            {"=LET(x,A1,IF(x>3,B1,C1))", "A1 B1"},
            {"=LET(x,A1,y,{1,2},IF(SUM(y)>x,B1,C1))+LET(x,9,x)", "A1 C1"},
            {"=LET(x,A1,y,IF(x>9,B1,B2),LET(z,x*2,IF(z=10,C1,C2)))", "A1 B2 C1"},
            {"=LET(k,\"m\",VLOOKUP(k,D1:E2,2,FALSE))", "E2"},
            {"=LET(n,A2,INDEX(E1:E2,n))", "A2 E2"},
        });
}

TEST(SpecialFunctions, InArrayFormulasSeeEveryElement) {
  Books books("A1=1; A2=2; A3=-3");
  const struct {
    const char* formula;
    const char* found;
  } rows[] = {{"=SUM(IF(A1:A2>0,B1,C1))", "B1"},
              {"=SUM(IF(A1:A2<0,B1,C1))", "C1"},
              {"=SUM(IF(A1:A3>0,B1,C1))", "A1 A2 A3 B1 C1"}};
  for (const auto& row : rows) {
    books.range("F5")->put_FormulaArray(row.formula);
    EXPECT_EQ(precedents(books, "F5", {.ParseIf = 1}), row.found) << row.formula;
  }
}

TEST(IfDrilling, KeepsEveryReferenceInTheListOfAll) {
  Books books("A1=5; B1=1; C1=2; Z9==IF(A1>0,B1,C1)");
  const auto drill = drill_from(books, "Z9", {.ParseIf = 1});
  drill->DrillHere();
  const auto& part = drill->StartModelPart();
  EXPECT_TRUE(part->IntelligentDrillingUsed());
  EXPECT_EQ(listed(part->DirectPrecedents()), "B1");
  EXPECT_EQ(listed(part->AllPrecedents()), "A1 B1 C1");
}

TEST(IfDrilling, IsNotTriedWithAnUnresolvedReference) {
  Books books("A1=5; Z9==IF(A1>0,B1,'/no/where/[Far.xlsx]S'!A1)");
  const auto drill = drill_from(books, "Z9", {.ParseIf = 1});
  drill->AskToOpenBook.add([](auto&, bool& choice) { choice = false; });
  drill->DrillHere();
  EXPECT_EQ(listed(drill->StartModelPart()->DirectPrecedents()), "A1 B1 ?[Far.xlsx]S!A1");
  EXPECT_FALSE(drill->StartModelPart()->IntelligentDrillingUsed());
}

constexpr std::string_view table =
    "A1=1; A2=2; A3=3; A4=4; B1=10; B2=20; B3=30; B4=40; C1=x; C2=y; C3=z; C4=w; "
    "D1=7; E1=4; E2=nothing; E3=3; E4=z; Data!A1=1; Data!A2=4; Data!B1=5; Data!B2=6; "
    "name Prices=Sheet1!$A$1:$C$4; name Data!Own=Data!$A$1:$B$2";

TEST(LookupDrilling, FindsTheOneCell) {
  Books books(table);
  check(books, {.ParseLookup = 1},
        {
            {"=VLOOKUP(E1,A1:C4,3,FALSE)", "C4"},
            {"=VLOOKUP(E1,A1:C4,3)", "C4"},
            {"=VLOOKUP(3.5,A1:C4,2)", "B3"},
            {"=VLOOKUP(3.5,A1:C4,2,FALSE)", "none"},
            {"=VLOOKUP(E2,A1:C4,3,FALSE)", "none"},
            {"=VLOOKUP(E1,Prices,2,FALSE)", "B4"},
            {"=VLOOKUP(E1,Data!A1:B2,2,FALSE)", "Data!B2"},
            {"=VLOOKUP(E1,Data!Own,2,FALSE)", "Data!B2"},
            {"=VLOOKUP(E1,{1;2;4},1,FALSE)", "none"},
            {"=HLOOKUP(20,A2:C4,2,FALSE)", "B3"},
            {"=HLOOKUP(\"z\",A3:D4,2,FALSE)+E1", "C4 E1"},
            {"=LOOKUP(E3,A1:A4,B1:B4)", "B3"},
            {"=LOOKUP(E3,A1:A4)", "A3"},
            {"=LOOKUP(2,A2:B2)", "A2"},
            {"=LOOKUP(E2,A1:A4,B1:B4)", "none"},
            {"=LOOKUP(E1,Data!A1:A2,Data!B1:B2)", "Data!B2"},  // looked up on the own sheet
            {"=VLOOKUP(VLOOKUP(E1,A1:C4,1),A1:C4,3,FALSE)", "C4"},
        });
  check(books, {.ParseLookup = 2},
        {
            {"=VLOOKUP(E1,A1:C4,3,FALSE)", "C4 E1"},
            {"=VLOOKUP(E2,A1:C4,3,FALSE)", "none"},
            {"=VLOOKUP(E1,{1;2;4},1,FALSE)", "E1"},
            {"=LOOKUP(E3,A1:A4,B1:B4)", "B3 E3"},
            {"=HLOOKUP(E1*5,A2:C4,2,FALSE)", "B3 E1"},
        });
}

TEST(LookupDrilling, LooksDatesUpByTheirSerialNumber) {
  Books books("A1=45292; A2=45293; B1=1; B2=2; E1=1/2/2024; E2='2024-01-02");
  check(books, {.ParseLookup = 1},
        {{"=VLOOKUP(E1,A1:B2,2,FALSE)", "B2"}, {"=LOOKUP(\"1/2/2024\",A1:A2,B1:B2)", "B2"}});
}

TEST(LookupDrilling, AFailingDrillerFallsBackToEveryReference) {
  Books books(table);
  check(books, {.ParseLookup = 1}, {{"=VLOOKUP(E1,A1:B2,E2,FALSE)", "E1 A1 B1 A2 B2 E2 !13"}});
}

TEST(MatchDrilling, FollowsTheLookupValueOnly) {
  Books books(table);
  check(books, {.ParseMatch = 6},
        {{"=MATCH(E1,A1:A4,0)", "E1"}, {"=MATCH(E1+E3,A1:A4,0)+B1", "E1 E3 B1"}});
  check(books, {.ParseMatch = 0}, {{"=MATCH(E1,A1:A2,0)", "E1 A1 A2"}});
}

TEST(IndexDrilling, FollowsTheRangeThatItReturns) {
  Books books(table);
  check(books, {.ParseIndex = 1},
        {
            {"=INDEX(A1:C4,4,2)", "B4"},
            {"=SUM(INDEX(A1:C4,0,2))", "B1 B2 B3 B4"},
            {"=INDEX(A1:C4,E3,MATCH(10,A1:C1,0))", "B3"},
            {"=INDEX(Data!A1:B2,2,2)", "B2"},  // the address, on the own sheet
        });
  books.enter("Z9==INDEX({1,2,3},2)");
  const auto drill = drill_from(books, "Z9", {.ParseIndex = 1});
  drill->DrillHere();
  EXPECT_EQ(listed(drill->StartModelPart()->DirectPrecedents()), "none");
  EXPECT_TRUE(drill->StartModelPart()->HasError());
}

TEST(SumifDrilling, FollowsTheCellsThatMeetTheCriterion) {
  Books books(table);
  check(books, {.ParseSumif = 1},
        {
            {"=SUMIF(A1:A4,\">2\",B1:B4)", "B3 B4"},
            {"=SUMIF(A1:A4,\">2\")", "A3 A4"},
            {"=SUMIF(A1:A4,E1)", "A4"},
            {"=SUMIF(A1:A4,\"<3\",B3)", "B3 B4"},  // the sum range goes with the criteria range
            {"=SUMIF(A1:B2,\">1\")", "B1 A2 B2"},
            {"=SUMIF(A1:A4,\">2\"&C1)", "none"},  // read without first and last character
            {"=SUMIF({1,2},1,B1:B2)+A1", "A1"},
        });
  check(books, {.ParseSumif = 2},
        {{"=SUMIF(A1:A4,E1,B1:B4)", "B4 E1"}, {"=SUMIF(A1:A4,\">2\",B1:B4)", "B3 B4"}});
}

TEST(IndirectDrilling, FollowsTargetsOrWhatIsWritten) {
  const std::string_view text =
      "Sheet2!A1=1; A1=Sheet2!B5; A2=B3; A3=NoSuchName; A4=R[1]C[-1]; B1=7; B2=FALSE; C1=7; "
      "name Total=Sheet1!$C$1; A5=Total; A6=B1:B2; A7=5";
  Books books(text);
  check(books, {.ParseIndirect = 3},
        {
            {"=INDIRECT(A1)", "Sheet2!B5"},
            {"=INDIRECT(\"B\"&C1)", "B7"},
            {"=B1+INDIRECT(A2)+C1", "B1 B3 C1"},
            {"=INDIRECT(A3)", "none"},
            {"=INDIRECT(A5)", "Total"},
            {"=SUM(INDIRECT(A6))", "B1 B2"},
            {"=INDIRECT(A9)", "none"},
            {"=INDIRECT(A7)", "none"},
            {"=INDIRECT(\"R5C2\",FALSE)", "B5"},
            {"=INDIRECT(A4,FALSE)", "Y10"},  // seen from the cell that holds the formula
            {"=INDIRECT(\"R5C2\",B2)", "B5"},
            {"=INDIRECT(A2,TRUE)", "B3"},
        });
  check(books, {.ParseIndirect = 4}, {{"=INDIRECT(A1)", "A1"}, {"=INDIRECT(\"B\"&C1)", "C1"}});
  check(books, {.ParseIndirect = 5},
        {{"=INDIRECT(A1)", "Sheet2!B5 A1"}, {"=INDIRECT(A2,B1)", "B3 A2 B1"}});
}

TEST(IndirectDrilling, ATargetThatCannotBeResolvedIsAnError) {
  Books books("A1=NoSuchName; A2='[Far.xlsx]S!A1; B1=1");
  for (const char* formula : {"Z9==IFERROR(B1+INDIRECT(A1),0)", "Z9==IFERROR(B1+INDIRECT(A2),0)",
                              "Z9==IFERROR(B1+INDIRECT(#REF!),0)"}) {
    books.enter(formula);
    const auto drill = drill_from(books, "Z9", {.ParseIndirect = 3});
    drill->DrillHere();
    EXPECT_EQ(listed(drill->StartModelPart()->DirectPrecedents()), "B1") << formula;
    EXPECT_TRUE(drill->StartModelPart()->HasError()) << formula;
  }
}

TEST(OffsetDrilling, FollowsTargetsOrTheBase) {
  Books books("A1=1; Data!A1=2; D1=2");
  check(books, {.ParseOffset = 3},
        {
            {"=OFFSET(A1,2,1)", "B3"},
            {"=OFFSET(A1,D1,0)", "A3"},
            {"=SUM(OFFSET(A1,0,0,3,1))", "A1 A2 A3"},
            {"=OFFSET(Data!A1,1,1)", "B2"},  // the address, on the own sheet
            {"=OFFSET(A1,-1,0)", "none"},
        });
  check(books, {.ParseOffset = 4}, {{"=OFFSET(A1,D1,1)", "A1 D1"}});
  check(books, {.ParseOffset = 5}, {{"=OFFSET(A1,D1,1)", "B3 A1"}, {"=OFFSET(A1,-1,0)", "none"}});
}

TEST(SpecialFunctions, MoreThanFiveArgumentsAreReportedAndFollowedPlainly) {
  Books books("A1=1; B1=2; C1=3");
  check(books, {.ParseMatch = 6},
        {{"=SUM(MATCH({1,2,3,4,5,6},A1:B1,0))+C1", "A1 B1 C1 !-2147221500"}});
}

TEST(SpecialFunctions, InOneFormulaKeepTheirOrder) {
  Books books(table);
  check(books,
        {.ParseIf = 1,
         .ParseLookup = 1,
         .ParseSumif = 1,
         .ParseIndirect = 3,
         .ParseOffset = 3,
         .ParseIndex = 1,
         .ParseMatch = 6},
        {{"=D1+IF(E1>E3,VLOOKUP(E1,A1:C4,2,FALSE),E2)+SUMIF(A1:A4,\">3\",B1:B4)+C1", "D1 B4 C1"},
         {"=IF(E1>E3,INDEX(A1:C4,MATCH(E3,A1:A4,0),3),OFFSET(A1,1,1))&D1", "C3 D1"},
         {"=MATCH(IF(E1>E3,E4,E2),C1:C4,0)", "E4"}});
}

}  // namespace
}  // namespace qto::test
