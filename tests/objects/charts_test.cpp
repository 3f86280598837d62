#include "tests/objects/desk.hpp"

namespace qto::embedded {
namespace {

/// A desk with an embedded chart on Sheet1 and the chart sheet Diagram after it.
struct ChartDesk : Desk {
  ChartDesk() {
    const ChartSeries sales{"Sheet1!$A$2", "Sales", "Sheet1!$B$1:$D$1", "Sheet1!$B$2:$D$2", 1, 51};
    const ChartSeries plain{"\"Plan\"", "Plan", "", "{1,2,3}", 2, 83};
    sheet_of(sheet).charts.push_back({"Chart 1", {sales, plain}});
    Sheet& diagram = book_of(book).add_sheet("Diagram", SheetKind::chart);
    diagram.charts.push_back({"", {sales}});
  }
};

TEST(Charts, SeriesFormulas) {
  const ChartDesk desk;
  const auto frame = desk.sheet->ChartObjects("CHART 1");
  EXPECT_EQ(frame->Name(), "Chart 1");
  EXPECT_EQ(frame->Parent(), desk.sheet);
  const auto chart = frame->Chart();
  EXPECT_EQ(chart->Name(), "Sheet1 Chart 1");
  EXPECT_EQ(chart->Parent()->TypeName(), "ChartObject");
  const auto series = chart->SeriesCollection();
  ASSERT_EQ(series.size(), 2u);
  EXPECT_EQ(series[0]->Name(), "Sales");
  EXPECT_EQ(series[0]->ChartType(), 51);
  EXPECT_EQ(series[0]->Parent()->TypeName(), "Chart");
  const char* formula = "=SERIES(Sheet1!$A$2,Sheet1!$B$1:$D$1,Sheet1!$B$2:$D$2,1)";
  EXPECT_EQ(series[0]->Formula(), formula);
  EXPECT_EQ(series[0]->FormulaLocal(), formula);
  EXPECT_EQ(series[0]->FormulaR1C1Local(),
            "=SERIES(Sheet1!R2C1,Sheet1!R1C2:R1C4,Sheet1!R2C2:R2C4,1)");
  EXPECT_EQ(series[1]->Formula(), "=SERIES(\"Plan\",,{1,2,3},2)");
  EXPECT_FAILS(desk.sheet->ChartObjects("Chart 2"));
  EXPECT_EQ(desk.sheet->ChartObjects().size(), 1u);
}

TEST(Charts, NamesAreWhatTheCellsShow) {
  const ChartDesk desk;
  const auto name = [&] {
    return desk.sheet->ChartObjects("Chart 1")->Chart()->SeriesCollection()[0]->Name();
  };
  EXPECT_EQ(name(), "Sales");  // as the file remembers, for the cell is empty
  desk.put("A2", "Turnover");
  EXPECT_EQ(name(), "Turnover");
  desk.put("A2", "=2020+5");
  EXPECT_EQ(name(), "2025");
  auto& formula = sheet_of(desk.sheet).charts[0].series[0].name_formula;
  desk.put("A3", "actual");
  formula = "Sheet1!$A$2:$A$4";
  EXPECT_EQ(name(), "2025 actual");
  for (const char* lost : {"#REF!", "Sheet1!$A:$A", "Gone!$A$1", "1+"}) {
    formula = lost;
    EXPECT_EQ(name(), "Sales") << lost;
  }
}

TEST(Charts, BubblesShowTheirSizes) {
  const ChartDesk desk;
  sheet_of(desk.sheet).charts[0].series[0].sizes_formula = "Sheet1!$B$3:$D$3";
  const auto chart = desk.sheet->ChartObjects("Chart 1")->Chart();
  EXPECT_EQ(chart->SeriesCollection()[0]->Formula(),
            "=SERIES(Sheet1!$A$2,Sheet1!$B$1:$D$1,Sheet1!$B$2:$D$2,1,Sheet1!$B$3:$D$3)");
}

TEST(Charts, ChartSheetsAreSheetsAndNoWorksheets) {
  const ChartDesk desk;
  EXPECT_EQ(desk.book->SheetsCount(), 2);
  EXPECT_EQ(desk.book->WorksheetsCount(), 1);
  const auto sheet = desk.book->Sheets("Diagram");
  EXPECT_EQ(sheet->TypeName(), "Chart");
  EXPECT_EQ(sheet->Index(), 2);
  EXPECT_EQ(sheet->Parent()->TypeName(), "Workbook");
  EXPECT_EQ(desk.book->Sheets(2), sheet);
  EXPECT_FALSE(desk.book->find_worksheet("Diagram"));
  EXPECT_FAILS(desk.book->Worksheets("Diagram"));
  EXPECT_FAILS(desk.book->Worksheets(2));
  EXPECT_FAILS(desk.book->Sheets(3));
  EXPECT_FAILS(desk.book->Sheets(0));
  EXPECT_EQ(ref_cast<host::Chart>(sheet)->SeriesCollection().size(), 1u);
}

TEST(Charts, SelectingASeries) {
  const ChartDesk desk;
  const auto frame = desk.sheet->ChartObjects("Chart 1");
  const auto series = frame->Chart()->SeriesCollection()[1];
  EXPECT_FALSE(desk.app.ref()->ActiveChart());
  frame->Activate();
  EXPECT_EQ(desk.app.ref()->ActiveChart()->Name(), "Sheet1 Chart 1");
  EXPECT_EQ(desk.app.ref()->Selection()->TypeName(), "Chart");
  series->Select();
  const auto selected = ref_cast<host::Series>(desk.app.ref()->Selection());
  ASSERT_TRUE(selected);
  EXPECT_EQ(selected->Name(), "Plan");
  desk.at("B2")->Select();
  EXPECT_FALSE(desk.app.ref()->ActiveChart());
  EXPECT_EQ(shown(Variant(desk.app.ref()->Selection())), "Sheet1!B2");

  desk.book->Sheets("Diagram")->Activate();
  EXPECT_EQ(desk.app.ref()->ActiveChart()->Name(), "Diagram");
  EXPECT_FAILS(series->Select());
  EXPECT_FAILS(desk.at("A1")->Select());
  EXPECT_FAILS(desk.app.ref()->ActiveWindow()->ActivePane()->VisibleRange());
}

TEST(Pivots, AnswerTheirRangeAndSource) {
  const Desk desk;
  sheet_of(desk.sheet).pivots.push_back({"PivotTable1", {{3, 1}, {9, 4}}, "Data!R1C1:R9C4"});
  const auto tables = desk.sheet->PivotTables();
  ASSERT_EQ(tables.size(), 1u);
  EXPECT_EQ(tables[0]->Name(), "PivotTable1");
  EXPECT_EQ(tables[0]->TableRange2()->Address(), "$A$3:$D$9");
  EXPECT_EQ(tables[0]->SourceData(), "Data!R1C1:R9C4");
  EXPECT_EQ(tables[0]->Parent(), desk.sheet);
}

}  // namespace
}  // namespace qto::embedded
