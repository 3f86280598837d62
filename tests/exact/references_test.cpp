#include "tests/exact/reading.hpp"

namespace qto::test {
namespace {

TEST(ExactReferences, OfEveryWrittenFormAreFound) {
  Books books(
      "A1=1; Data!A1=1; Data!B2=2; Jan!B2=1; Feb!B2=2; Mar!B2=3; It's!A1=4; 12\" pipe!A1=1");
  check(books, everything,
        {
            {"A1+$B$2-A$3", "A1 B2 A3"},
            {"SUM(A1:B2,C3)", "A1 B1 A2 B2 C3"},
            {"SUM(B2:A1)", "A1 B1 A2 B2"},
            {"Data!A1+A1", "Data!A1 A1"},
            {"'Data'!B2", "Data!B2"},
            {"'It''s'!A1+B1", "It's!A1 B1"},
            {"'12\" pipe'!A1+B1", "12\" pipe!A1 B1"},
            {"SUM(Jan:Mar!B2)", "Jan!B2 Feb!B2 Mar!B2"},
            {"SUM('Jan:Mar'!B2)", "Jan!B2 Feb!B2 Mar!B2"},
            {"SUM(Mar:Jan!B2)", "Jan!B2 Feb!B2 Mar!B2"},
            {"\"A1\"&B1", "B1"},
            {"1E+30*A1", "A1"},
            {"-A1%", "A1"},
            {"+A1^-B1", "A1 B1"},
            {"(A1)", "A1"},
            {"A1&\"\"\"\"&B1", "A1 B1"},
        });
}

TEST(ExactReferences, AreJoinedByTheReferenceOperators) {
  Books books(
      "A1=1; Data!A1=1; name First_=Sheet1!$A$1; name Last_=Sheet1!$A$3; "
      "name Dyn=OFFSET(Sheet1!$A$1,Sheet1!$D$1,0); D1=2");
  check(books, everything,
        {
            {"SUM(Data!A1:Data!A3)", "Data!A1 Data!A2 Data!A3"},
            {"SUM(Data!A1:A3 Data!A2:B2)", "Data!A2"},
            {"SUM(A1:B1:A3)", "A1 B1 A2 B2 A3 B3"},
            {"SUM((A1,B2))", "A1 B2"},
            {"SUM((A1:A2,B2) A2:B2)", "A2 B2"},
            {"SUM(A1:B2 B2:C3)+C9", "B2 C9"},
            {"SUM(First_:Last_)", "A1 A2 A3"},
            {"SUM(A2:First_)", "A1 A2"},
            {"SUM(A1:Dyn)", "A1 A2 A3 Dyn"},
            {"SUM(A1:CHOOSE(2,A3,A5))", "A1 A2 A3 A4 A5"},
            {"SUM(A1:INDEX(A1:A3,2))", "A1 A2 A3"},
            {"SUM(B2:OFFSET(B1,2,1))", "B2 C2 B3 C3 B1"},
        });
  // Without common cells there is nothing to sum up, but nothing is lost either.
  check(books, everything, {{"SUM(A1:A2 B1:B2)", "A1 A2 B1 B2"}});
}

TEST(ExactReferences, BehindAnErrorConstantAreFound) {
  Books books("A1=1; B1=2");
  check(books, everything,
        {
            {"IF(A1=0,#DIV/0!,B1)", "A1 B1"},
            {"SUM(A1,#REF!,B1)", "A1 B1"},
            {"IFERROR(A1,#VALUE!)+B1", "A1 B1"},
            {"SUM(#REF!A1,B1)", "B1"},
            {"IF(#N/A,A1)", "A1"},
        });
  EXPECT_EQ(remark(books, everything, "SUM(#REF!,#REF!,B1)"), "refers to a deleted cell");
  EXPECT_EQ(remark(books, everything, "SUM(B1,#N/A)"), "");
}

TEST(ExactReferences, ByNamesAreFound) {
  Books books(
      "A1=1; B1=2; Data!A1=3; name Rate=Sheet1!$A$1; name what?=Sheet1!$B$1; "
      "name \\back=Sheet1!$B$2; name Data!Rate=Data!$A$1; name Data!Own=Data!$A$2; "
      "name Twice=Rate*2; name MyFn=LAMBDA(x,x*Sheet1!$B$1); name Ä.1_=Sheet1!$A$1");
  check(books, everything,
        {
            {"Rate*A2", "Rate A2"},
            {"rate+RATE", "Rate"},
            {"what?+\\back+A1", "what? \\back A1"},
            {"Data!Rate", "Data!Rate"},
            {"Data!Own+1", "Data!Own"},
            {"Sheet1!Rate", "Rate"},
            {"Plan.xlsx!Rate", "Rate"},
            {"MyFn(A1)", "MyFn A1"},
            {"Ä.1_", "Ä.1_"},
            {"SUM(Twice)", "Twice"},
            {"Nowhere+A1", "?Nowhere A1"},
        });
  books.enter("Z9==Twice");
  EXPECT_EQ(inputs(books, "Z9", everything), "Twice A1");
}

TEST(ExactReferences, AreNotMadeOfTheNamesThatLetAndLambdaGive) {
  Books books("A1=1; B1=2; name x=Sheet1!$B$1");
  check(books, everything,
        {
            {"LET(x,A1,x+1)", "A1"},
            {"LET(x,A1,y,x+B1,y)+x", "A1 B1 x"},
            {"LAMBDA(x,x+A1)(B1)", "A1 B1"},
            {"MAP(A1:A2,LAMBDA(x,x+B1))", "A1 A2 B1"},
            {"LET(f,LAMBDA(x,x*B1),f(A1))", "B1 A1"},
        });
}

TEST(ExactReferences, CountTheirConstantsAsBefore) {
  Books books("A1=1");
  const struct {
    const char* formula;
    qtoContainsConstant constants;
  } rows[] = {{"=A1+2", qtoFormulaContainsConstant},
              {"=A1*1+0", qtoFormulaContainsConstZeroOrOne},
              {"=A1&\"x\"", qtoFormulaContainsConstant},
              {"=SUM(A1,{1,0})", qtoFormulaContainsConstZeroOrOne},
              {"=SUM(A1,{1,7})", qtoFormulaContainsConstant},
              {"=A1=TRUE", qtoNoConstantInFormula},
              {"=A1", qtoNoConstantInFormula}};
  for (const auto& row : rows) {
    // The second copy is read from what the first one left.
    books.enter(std::string("Z9=") + row.formula);
    books.range("Y9:Y10")->put_Formula(row.formula);
    books.enter("Z10==SUM(Y9:Y10)");
    const auto drill = drill_from(books, "Z10", everything);
    drill->DrillHere();
    drill->StartModelPart()->DirectPrecedents()->for_each([&](ModelPart& part) {
      EXPECT_EQ(part.FormulaContainsConstant(), row.constants) << row.formula;
    });
  }
}

/// A part that was met before stands behind the others of a list.
TEST(ExactReferences, MoveWithTheCopiesOfAFormula) {
  Books books("A1=1; Data!A1=1; name Rate=Sheet1!$A$1");
  books.range("D1:D3")->put_Formula("=A1+$B$1+Data!A1:A2+Rate+SUM(A1:A2 A2:B2)");
  books.enter("Z9==SUM(D1:D3)");
  const auto drill = drill_from(books, "Z9", everything);
  drill->put_MaximumDepth(2);
  drill->DrillHere();
  EXPECT_EQ(tree(drill->StartModelPart()),
            "Z9(D1(A1 B1 Data!A1 Data!A2 Rate A2) D2(Data!A3 A3 A2 B1 Data!A2 Rate) "
            "D3(Data!A4 A4 A3 B1 Data!A3 Rate))");
}

/// SUMIF takes as many cells as it tests, whatever is written behind.
TEST(ExactReferences, OfConditionalSumsReachAsFarAsTheTestedCells) {
  Books books("A1=1; A2=2; A3=3; B1=10; B2=20; B3=30");
  check(books, everything,
        {
            {"SUMIF(A1:A3,2,B1)", "A1 A2 A3 B1 B2 B3"},
            {"AVERAGEIF(A1:A3,2,B1:B2)", "A1 A2 A3 B1 B2 B3"},
            {"SUMIF(A1:A3,2,B1:B3)", "A1 A2 A3 B1 B2 B3"},
        });
}

}  // namespace
}  // namespace qto::test
