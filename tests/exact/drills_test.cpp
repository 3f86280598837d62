#include "tests/exact/reading.hpp"

namespace qto::test {
namespace {

Ref<DrillDown> drilled(Books& books, std::string_view start, std::int32_t depth = 0,
                       const Options& options = everything) {
  const auto drill = drill_from(books, start, options);
  drill->put_MaximumDepth(depth);
  drill->DrillHere();
  return drill;
}

TEST(ExactDrills, CutACircleWhereItClosesAndTellTheWayRound) {
  Books books("A1==B1+D1; B1==C1; C1==A1+E1; D1=1; E1=2; Z9==A1");
  const auto drill = drilled(books, "Z9");
  EXPECT_EQ(tree(drill->StartModelPart()), "Z9(A1(B1(C1(E1 A1)) D1))");
  EXPECT_EQ(listed(drill->Circles()), "C1");
  EXPECT_EQ(drill->Circles()->Item(1)->DrillRemark(),
            "circle: Sheet1!A1 → Sheet1!B1 → Sheet1!C1 → Sheet1!A1");
  EXPECT_EQ(inputs(books, "Z9", everything), "E1 D1");
  EXPECT_EQ(raised_by([&] { inputs(books, "Z9"); }),
            static_cast<std::int32_t>(ErrorNumber::circular_reference));
}

TEST(ExactDrills, GoRoundACircleThroughTheStartOnce) {
  Books books("A1==B1+1; B1==A1+C1; C1=3");
  const auto drill = drilled(books, "A1");
  EXPECT_EQ(tree(drill->StartModelPart()), "A1(B1(C1 A1))");
  EXPECT_EQ(listed(drill->Circles()), "B1");
}

TEST(ExactDrills, CountDepthByTheShortestWay) {
  // D1 is met first at the end of a long way, and is one step from the start.
  Books books("Z9==A1+D1; A1==B1; B1==D1; D1==E1; E1==F1; F1=1");
  EXPECT_EQ(tree(drilled(books, "Z9", 2)->StartModelPart()), "Z9(A1(B1) D1(E1))");
  EXPECT_EQ(tree(drilled(books, "Z9", 3)->StartModelPart()), "Z9(A1(B1(D1(E1(F1)))) D1)");
  EXPECT_EQ(tree(drilled(books, "Z9", 1)->StartModelPart()), "Z9(A1 D1)");
  // A bounded drill ends at a circle, too.
  books.enter("F1==Z9");
  EXPECT_EQ(listed(drilled(books, "Z9", 9)->Circles()), "F1");
}

TEST(ExactDrills, TraceAnErrorThroughANameAndRoundACircle) {
  Books books(
      "A1==1/0; A2=1; name Rng=Sheet1!$A$1:$A$2; name Cell=Sheet1!$A$1; B1==SUM(Rng); "
      "B2==Cell+A2; B3==SUM(A2,Rng)");
  for (const char* start : {"B1", "B2", "B3"}) {
    EXPECT_EQ(errors(books, start, everything), "A1") << start;
    EXPECT_EQ(errors(books, start), "A1") << start;
  }
}

TEST(ExactDrills, KeepNamesWhenBlanksAreHidden) {
  Books books(
      "A1=1; A2=2; name Rate=Sheet1!$A$1; name Rng=Sheet1!$A$1:$A$2; name None=Sheet1!$B$9; "
      "Z9==Rate*A2+SUM(Rng)+None");
  for (const int reading : {0, 1})
    EXPECT_EQ(precedents(books, "Z9", {.ShowBlanks = false, .Reading = reading}), "Rate A2 Rng");
}

TEST(ExactDrills, ListFormulasThatReadWhatTheyDoNotShow) {
  Books books(
      "A1=1; A2==WEBSERVICE(\"x\")+A1; A3==AddIn(A1); A4==INDIRECT(\"A\"&A1); A5==SUM(A1); "
      "Z9==SUM(A1:A5)");
  EXPECT_EQ(listed(drilled(books, "Z9")->OpaqueCells()), "A2 A3 A4");
  EXPECT_EQ(listed(drilled(books, "Z9", 0, conditions)->OpaqueCells()), "A2 A3");
  EXPECT_EQ(remark(books, everything, "AddIn(A1)"), "ADDIN reads what this formula does not show");
}

TEST(ExactDrills, StartFromSeriesAndNames) {
  Books books("A1=1; A2=2; name Rng=Sheet1!$A$1:$A$2; name Twice=Rng");
  const embedded::ChartSeries sales{"", "Sales", "", "Plan.xlsx!Twice", 1, 51};
  books.models[0]->sheets()[0]->charts.push_back({"Chart 1", {sales}});
  const auto series =
      books.opened[0]->Worksheets("Sheet1")->ChartObjects()[0]->Chart()->SeriesCollection()[0];
  const auto drill = make_ref<DrillDown>();
  drill->putref_DrillOptions(everything.make());
  drill->putref_StartUnderlyingObject(series);
  drill->DrillHere();
  EXPECT_EQ(tree(drill->StartModelPart()), "Sales(Twice(Rng(A1 A2)))");
}

TEST(ExactDrills, OfAWholeSheetCountItsUsedCells) {
  Books books("Data!A1=1; Data!B2=2; A1=3; Z9==COUNTA(Data!1:1048576)+A1");
  for (const int reading : {0, 1})
    EXPECT_EQ(precedents(books, "Z9", {.Reading = reading}), "Data!A1 Data!B1 Data!A2 Data!B2 A1");
}

TEST(ExactDrills, HoldUnknownPartsOfBooksThatAreNotOpened) {
  Books books("A1=1; name Rate=Sheet1!$A$1");
  const struct {
    const char* formula;
    const char* found;
  } rows[] = {
      {"=A1+'/no/where/[Far.xlsx]S'!$A$1:$A$2", "A1 ?[Far.xlsx]S!A1:A2"},
      {"='/no/where/Far.xlsx'!Rate", "?[Far.xlsx]Rate"},
      {"='/it''s/[Far''s.xlsx]S'!A1", "?[Far's.xlsx]S!A1"},
      {"=IF(A1>0,'/no/where/[Far.xlsx]S'!A1,B1)", "?[Far.xlsx]S!A1"},
  };
  for (const auto& row : rows) {
    books.enter(std::string("Z9=") + row.formula);
    const auto drill = drill_from(books, "Z9", used);
    drill->AskToOpenBook.add([](auto&, bool& choice) { choice = false; });
    drill->DrillHere();
    EXPECT_EQ(listed(drill->StartModelPart()->DirectPrecedents()), row.found) << row.formula;
  }
}

}  // namespace
}  // namespace qto::test
