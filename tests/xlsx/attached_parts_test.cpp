// Tables, linked books, pivot tables and charts.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>

#include "qto/hosts/embedded/xlsx/chart_kind.hpp"
#include "tests/support/local_path.hpp"
#include "tests/xlsx/book_file.hpp"

namespace qto::test {
namespace {

using namespace embedded;

TEST(Tables, ColumnsAndRows) {
  BookFile file;
  file.sheet("<sheetData/><tableParts><tablePart r:id='t1'/><tablePart r:id='t2'/></tableParts>")
      .links("xl/sheet1.xml", {{"t1", "table", "table1.xml"}, {"t2", "table", "table2.xml"}})
      .part("xl/table1.xml",
            root("table name='Inner' displayName='\\Sales' ref='B2:C5' totalsRowCount='1'",
                 "<tableColumns><tableColumn name='Net_x000a_amount'/><tableColumn name='2007'/>"
                 "</tableColumns>"))
      .part("xl/table2.xml",
            root("table name='Second' ref='E1:E2' headerRowCount='0' totalsRowCount='99999999999'",
                 "<tableColumns><tableColumn name='a&amp;b'/></tableColumns>"));
  const auto book = file.open();
  const Table* sales = book->find_table("\\sales");
  ASSERT_TRUE(sales);
  EXPECT_EQ(sales->sheet, book->find_sheet("Sheet1"));
  EXPECT_EQ(address_of(*sales->data()), "B3:C4");
  EXPECT_THAT(sales->columns, testing::ElementsAre("Net\namount", "2007"));
  const Table* second = book->find_table("Second");
  ASSERT_TRUE(second);
  EXPECT_EQ(second->header_rows, 0);
  EXPECT_FALSE(second->data());
}

TEST(Filters, RowsThatTheyHide) {
  const std::string rows =
      "<sheetData><row r='2' hidden='1'/><row r='3'/><row r='9' hidden='1'/></sheetData>";
  const std::string criterion =
      "<filterColumn colId='0'><filters><filter val='x'/></filters></filterColumn>";
  const auto filtered = [&](const std::string& filter) {
    const auto book = BookFile().sheet(rows + filter).open();
    std::string out;
    for (int row = 1; row <= 9; ++row)
      if (sheet_of(*book, "Sheet1").layout.row_filtered_out(row)) out += std::to_string(row);
    return out;
  };
  EXPECT_EQ(filtered(""), "");
  EXPECT_EQ(filtered("<autoFilter ref='A1:B5'/>"), "");
  EXPECT_EQ(filtered("<autoFilter ref='A1:B5'><filterColumn colId='0' hiddenButton='1'/>"
                     "</autoFilter>"),
            "");
  EXPECT_EQ(filtered("<autoFilter ref='A1:B5'>" + criterion + "</autoFilter>"), "2");
  EXPECT_EQ(filtered("<autoFilter ref='A2:B9'>" + criterion + criterion + "</autoFilter>"), "9");
  EXPECT_EQ(filtered("<customSheetViews><customSheetView><autoFilter ref='A1:B5'>" + criterion +
                     "</autoFilter></customSheetView></customSheetViews>"),
            "");

  BookFile file;
  file.sheet(rows + "<tableParts><tablePart r:id='t1'/></tableParts>")
      .links("xl/sheet1.xml", {{"t1", "table", "table1.xml"}})
      .part("xl/table1.xml", root("table displayName='T' ref='A1:A5'",
                                  "<autoFilter ref='A1:A5'>" + criterion + "</autoFilter>"));
  EXPECT_TRUE(sheet_of(*file.open(), "Sheet1").layout.row_filtered_out(2));
}

BookFile linked_book(const std::string& content, const std::vector<Link>& links) {
  BookFile file;
  file.workbook(
      "<sheets><sheet name='Sheet1' sheetId='1' r:id='r1'/></sheets>"
      "<externalReferences><externalReference r:id='none'/>"
      "<externalReference r:id='x1'/></externalReferences>",
      {"worksheet"});
  file.part("xl/externalLinks/externalLink1.xml", root("externalLink", content));
  file.links("xl/externalLinks/externalLink1.xml", links);
  return file;
}

TEST(LinkedBooks, KeepSheetsValuesAndNames) {
  const auto book =
      linked_book(
          "<externalBook r:id='b'><sheetNames><sheetName val='One'/><sheetName val='Two &amp; 3'/>"
          "</sheetNames><definedNames><definedName name='Rate' refersTo='=One!$A$1' sheetId='1'/>"
          "</definedNames><sheetDataSet><sheetData sheetId='1'><row r='2'><cell r='B2'><v>7</v>"
          "</cell><cell r='C2' t='str'><v>x</v></cell><cell r='D2' t='b'><v>1</v></cell>"
          "<cell r='E2' t='e'><v>#REF!</v></cell><cell r='XFE2'><v>1</v></cell></row></sheetData>"
          "<sheetData sheetId='8'><row><cell r='A1'><v>1</v></cell></row></sheetData>"
          "</sheetDataSet></externalBook>",
          {{"b", "externalLinkPath", "file:///D:\\Data\\Book2.xlsx", true}})
          .open();
  ASSERT_EQ(book->externals.size(), 2u);
  EXPECT_EQ(book->externals[0].name, "");
  const ExternalBook& link = book->externals[1];
  EXPECT_EQ(link.kind, ExternalBook::Kind::workbook);
  EXPECT_EQ(link.folder, "D:\\Data\\");
  EXPECT_EQ(link.name, "Book2.xlsx");
  EXPECT_THAT(link.sheets, testing::ElementsAre("One", "Two & 3"));
  ASSERT_EQ(link.values.size(), 2u);
  EXPECT_EQ(link.values[1].size(), 4u);
  const auto value = [&](const char* cell) {
    return link.values[1].at(ExternalBook::key(parse_cell(cell)->pos));
  };
  EXPECT_EQ(value("B2"), Variant(7.0));
  EXPECT_EQ(value("C2").text(), "x");
  EXPECT_EQ(value("D2"), Variant(true));
  EXPECT_EQ(value("E2"), Variant(ErrorValue::ref));
  ASSERT_EQ(link.names.size(), 1u);
  EXPECT_EQ(link.names[0].refers_to, "One!$A$1");
  EXPECT_EQ(link.names[0].sheet, "Two & 3");
}

TEST(LinkedBooks, WithoutAPathOrRelationship) {
  const auto missing =
      linked_book("<externalBook r:id='b'/>", {{"b", "xlPathMissing", "Book2.xlsx", true}}).open();
  EXPECT_EQ(missing->externals[1].name, "Book2.xlsx");
  EXPECT_EQ(missing->externals[1].folder, "");
  EXPECT_EQ(linked_book("<externalBook r:id='b'/>", {}).open()->externals[1].name, "");
  const auto beside =
      linked_book("<externalBook r:id='b'/>", {{"b", "externalLinkPath", "Book2.xlsx", true}})
          .open();
  EXPECT_EQ(beside->externals[1].folder, beside->path + local_path("/"));
}

TEST(LinkedBooks, OtherApplications) {
  const auto dde = linked_book("<ddeLink ddeService='App' ddeTopic='Doc'/>", {}).open();
  EXPECT_EQ(dde->externals[1].kind, ExternalBook::Kind::dde);
  EXPECT_EQ(dde->externals[1].application, "App");
  EXPECT_EQ(dde->externals[1].document, "Doc");
  const auto ole = linked_book("<oleLink r:id='o' progId='Word.Document'/>",
                               {{"o", "oleObject", "file:///C:\\a.doc", true}})
                       .open();
  EXPECT_EQ(ole->externals[1].kind, ExternalBook::Kind::ole);
  EXPECT_EQ(ole->externals[1].document, "C:\\a.doc");
}

TEST(Pivots, RangeHoldsPageFieldsAndSourceIsInR1C1) {
  struct Case {
    const char* location;
    const char* source;
    const char* range;
    const char* text;
  };
  for (const Case& c :
       {Case{"ref='A3:B6'", "ref='A1:D10' sheet='Data'", "A3:B6", "Data!R1C1:R10C4"},
        {"ref='A4:C6' rowPageCount='2' colPageCount='1'", "ref='A1' sheet='My data'", "A1:C6",
         "'My data'!R1C1"},
        {"ref='C9' rowPageCount='1' colPageCount='2'", "name='Sales'", "C7:G9", "Sales"},
        {"ref='A1' rowPageCount='5' colPageCount='99999999'", "", "A1:XFB1", "unknown source"},
        {"ref='A1:B2'", "ref='A1:B2' sheet='S' r:id='f'", "A1:B2",
         "'D:\\[Far.xlsx]S'!R1C1:R2C2"}}) {
    BookFile file;
    file.links("xl/sheet1.xml", {{"p", "pivotTable", "pivots/pivot1.xml"}})
        .part("xl/pivots/pivot1.xml", root("pivotTableDefinition name='Pivot'",
                                           "<location " + std::string(c.location) + "/>"))
        .links("xl/pivots/pivot1.xml", {{"c", "pivotCacheDefinition", "cache1.xml"}})
        .part("xl/pivots/cache1.xml",
              root("pivotCacheDefinition", "<cacheSource type='worksheet'><worksheetSource " +
                                               std::string(c.source) + "/></cacheSource>"))
        .links("xl/pivots/cache1.xml", {{"f", "externalLinkPath", "file:///D:\\Far.xlsx", true}});
    const auto book = file.open();
    const Sheet& sheet = sheet_of(*book, "Sheet1");
    ASSERT_EQ(sheet.pivots.size(), 1u);
    EXPECT_EQ(sheet.pivots[0].name, "Pivot");
    EXPECT_EQ(address_of(sheet.pivots[0].table_range), c.range);
    EXPECT_EQ(sheet.pivots[0].source, c.text);
  }
}

TEST(Pivots, ExternalAndConsolidatedSources) {
  const struct {
    const char* cache;
    const char* text;
  } rows[] = {
      {"<cacheSource type='external' connectionId='2'/>", "Sales_x: SELECT * FROM sales"},
      {"<cacheSource type='external' connectionId='3'/>", "Model"},
      {"<cacheSource type='external' connectionId='9'/>", "external"},
      {"<cacheSource type='external'/>", "external"},
      {"<cacheSource type='scenario'/>", "scenario"},
      {"<cacheSource type='worksheet'/>", "unknown source"},
      {"<cacheSource type='consolidation'><consolidation><rangeSets count='2'>"
       "<rangeSet ref='A1:B2' sheet='One'/><rangeSet name='Two'/></rangeSets></consolidation>"
       "</cacheSource>",
       "One!R1C1:R2C2, Two"},
  };
  for (const auto& row : rows) {
    BookFile file;
    file.links("xl/sheet1.xml", {{"p", "pivotTable", "pivot1.xml"}})
        .part("xl/pivot1.xml", root("pivotTableDefinition name='P'", "<location ref='A3:B6'/>"))
        .links("xl/pivot1.xml", {{"c", "pivotCacheDefinition", "cache1.xml"}})
        .part("xl/cache1.xml", root("pivotCacheDefinition", row.cache))
        .part(
            "xl/connections.xml",
            root("connections",
                 "<connection id='2' name='Sales_x'><dbPr connection='secret' "
                 "command='SELECT * FROM sales'/></connection><connection id='3' name='Model'/>"));
    EXPECT_EQ(sheet_of(*file.open(), "Sheet1").pivots.at(0).source, row.text) << row.cache;
  }
}

constexpr std::string_view chart_space = "http://schemas.openxmlformats.org/drawingml/2006/chart";

std::string chart(const std::string& groups) {
  return "<c:chartSpace xmlns:c='" + std::string(chart_space) +
         "'><c:chart><c:title><c:tx><c:strRef><c:f>S!$Z$1</c:f></c:strRef></c:tx></c:title>"
         "<c:plotArea>" +
         groups + "</c:plotArea></c:chart></c:chartSpace>";
}

BookFile charted(const std::string& groups) {
  BookFile file;
  file.sheet("<sheetData/><drawing r:id='d'/>")
      .links("xl/sheet1.xml", {{"d", "drawing", "drawing1.xml"}})
      .part("xl/drawing1.xml",
            "<d:wsDr xmlns:d='http://schemas.openxmlformats.org/drawingml/2006/spreadsheetDrawing'"
            " xmlns:r='" +
                std::string(rel_space) +
                "'><d:pic><d:cNvPr name='Picture'/></d:pic>"
                "<d:graphicFrame><d:cNvPr id='2' name='Chart &amp; 1'/><c:chart xmlns:c='" +
                std::string(chart_space) +
                "' r:id='c1'/></d:graphicFrame><d:graphicFrame>"
                "<d:cNvPr name='Lost'/><c:chart xmlns:c='" +
                std::string(chart_space) + "' r:id='c9'/></d:graphicFrame></d:wsDr>")
      .links("xl/drawing1.xml", {{"c1", "chart", "chart1.xml"}})
      .part("xl/chart1.xml", chart(groups));
  return file;
}

TEST(Charts, SeriesWithTheirArguments) {
  const auto book =
      charted(
          "<c:barChart><c:barDir val='col'/><c:grouping val='clustered'/>"
          "<c:ser><c:order val='1'/><c:tx><c:strRef><c:f>S!$B$1</c:f><c:strCache><c:pt><c:v>Cost"
          "</c:v></c:pt></c:strCache></c:strRef></c:tx><c:dLbls><c:dLbl><c:tx><c:strRef><c:f>"
          "S!$X$9</c:f></c:strRef></c:tx></c:dLbl></c:dLbls><c:errBars><c:plus><c:numRef><c:f>"
          "S!$X$8</c:f></c:numRef></c:plus></c:errBars><c:cat><c:multiLvlStrRef><c:f>S!$A$2:$A$4"
          "</c:f></c:multiLvlStrRef></c:cat><c:val><c:numRef><c:f>S!$B$2:$B$4</c:f><c:numCache>"
          "<c:pt><c:v>1</c:v></c:pt></c:numCache></c:numRef></c:val></c:ser>"
          "<c:ser><c:order val='0'/><c:tx><c:v>Own &quot;name&quot;</c:v></c:tx><c:cat><c:strLit>"
          "<c:pt><c:v>a</c:v></c:pt><c:pt><c:v>b</c:v></c:pt></c:strLit></c:cat><c:val><c:numLit>"
          "<c:pt><c:v>1</c:v></c:pt><c:pt><c:v>2.5</c:v></c:pt></c:numLit></c:val></c:ser>"
          "</c:barChart><c:scatterChart><c:scatterStyle val='lineMarker'/><c:ser>"
          "<c:order val='2'/><c:xVal><c:numRef><c:f>S!$C$2</c:f></c:numRef></c:xVal><c:yVal>"
          "<c:numRef><c:f>(S!$D$2,S!$D$4)</c:f></c:numRef></c:yVal></c:ser></c:scatterChart>")
          .open();
  const Sheet& sheet = sheet_of(*book, "Sheet1");
  ASSERT_EQ(sheet.charts.size(), 1u);
  EXPECT_EQ(sheet.charts[0].name, "Chart & 1");
  const auto& series = sheet.charts[0].series;
  ASSERT_EQ(series.size(), 3u);
  EXPECT_EQ(series[0].name, "Own \"name\"");
  EXPECT_EQ(series[0].name_formula, "\"Own \"\"name\"\"\"");
  EXPECT_EQ(series[0].category_formula, "{\"a\",\"b\"}");
  EXPECT_EQ(series[0].values_formula, "{1,2.5}");
  EXPECT_EQ(series[0].order, 1);
  EXPECT_EQ(series[0].chart_type, 51);
  EXPECT_EQ(series[1].name, "Cost");
  EXPECT_EQ(series[1].name_formula, "S!$B$1");
  EXPECT_EQ(series[1].category_formula, "S!$A$2:$A$4");
  EXPECT_EQ(series[1].values_formula, "S!$B$2:$B$4");
  EXPECT_EQ(series[1].order, 2);
  EXPECT_EQ(series[2].name, "Series3");
  EXPECT_EQ(series[2].name_formula, "");
  EXPECT_EQ(series[2].category_formula, "S!$C$2");
  EXPECT_EQ(series[2].values_formula, "(S!$D$2,S!$D$4)");
  EXPECT_EQ(series[2].chart_type, 74);
}

TEST(Charts, ChartSheetsHoldTheirChartWithoutAName) {
  BookFile file = charted("<c:surfaceChart><c:wireframe val='1'/><c:ser/></c:surfaceChart>");
  file.edit("xl/_rels/workbook.xml.rels", "/worksheet", "/chartsheet");
  const auto book = file.open();
  const Sheet& sheet = sheet_of(*book, "Sheet1");
  EXPECT_EQ(sheet.kind, SheetKind::chart);
  ASSERT_EQ(sheet.charts.size(), 1u);
  EXPECT_EQ(sheet.charts[0].name, "");
  EXPECT_EQ(sheet.charts[0].series.at(0).chart_type, 86);
}

TEST(Charts, EveryKindIsReadFromItsElements) {
  const std::string ser = "<c:ser><c:order val='0'/></c:ser>";
  const std::string smooth = "<c:ser><c:order val='0'/><c:smooth val='1'/></c:ser>";
  const std::string plain =
      "<c:ser><c:order val='0'/><c:marker><c:symbol val='none'/></c:marker></c:ser>";
  const std::string apart = "<c:ser><c:order val='0'/><c:explosion val='25'/></c:ser>";
  const auto grouping = [](const std::string& kind) { return "<c:grouping val='" + kind + "'/>"; };
  const std::string stacked = grouping("stacked");
  const std::string percent = grouping("percentStacked");
  const std::string standard = grouping("standard");
  const std::string bars = "<c:barDir val='bar'/>";
  const struct {
    std::string element, content;
    int type;
  } rows[] = {
      {"areaChart", standard + ser, 1},
      {"areaChart", percent + ser, 77},
      {"area3DChart", standard + ser, -4098},
      {"area3DChart", stacked + ser, 78},
      {"barChart", "<c:barDir val='col'/>" + grouping("clustered") + ser, 51},
      {"barChart", "<c:barDir val='col'/>" + stacked + ser, 52},
      {"barChart", bars + grouping("clustered") + ser, 57},
      {"barChart", bars + percent + ser, 59},
      {"bar3DChart", bars + stacked + ser + "<c:shape val='box'/>", 61},
      {"bar3DChart", standard + ser, -4100},
      {"bar3DChart", grouping("clustered") + ser + "<c:shape val='cylinder'/>", 92},
      {"bar3DChart", grouping("clustered") + ser + "<c:shape val='pyramid'/>", 106},
      {"bubbleChart", ser, 15},
      {"bubbleChart", "<c:ser><c:order val='0'/><c:bubble3D val='1'/></c:ser>", 87},
      {"doughnutChart", ser, -4120},
      {"doughnutChart", apart, 80},
      {"lineChart", standard + ser + "<c:marker val='1'/>", 65},
      {"lineChart", standard + plain + "<c:marker val='1'/>", 4},
      {"lineChart", stacked + ser, 63},
      {"line3DChart", standard + ser, -4101},
      {"ofPieChart", "<c:ofPieType val='pie'/>" + ser, 68},
      {"ofPieChart", "<c:ofPieType val='bar'/>" + ser, 71},
      {"pieChart", ser, 5},
      {"pieChart", apart, 69},
      {"pie3DChart", ser, -4102},
      {"radarChart", "<c:radarStyle val='standard'/>" + ser, -4151},
      {"radarChart", "<c:radarStyle val='marker'/>" + ser, 81},
      {"radarChart", "<c:radarStyle val='filled'/>" + ser, 82},
      {"scatterChart", "<c:scatterStyle val='lineMarker'/>" + ser, 74},
      {"scatterChart", "<c:scatterStyle val='lineMarker'/>" + plain, 75},
      {"scatterChart", "<c:scatterStyle val='smoothMarker'/>" + smooth, 72},
      {"stockChart", ser + ser + ser, 88},
      {"stockChart", ser + ser + ser + ser, 89},
      {"surface3DChart", ser, 83},
      {"surface3DChart", "<c:wireframe val='1'/>" + ser, 84},
      {"surfaceChart", "<c:wireframe val='0'/>" + ser, 85},
      {"surfaceChart", "<c:wireframe val='1'/>" + ser, 86},
  };
  for (const auto& row : rows) {
    const auto book =
        charted("<c:" + row.element + ">" + row.content + "</c:" + row.element + ">").open();
    const auto& series = sheet_of(*book, "Sheet1").charts.at(0).series;
    ASSERT_FALSE(series.empty());
    EXPECT_EQ(series[0].chart_type, row.type) << row.element << row.content;
  }
}

TEST(Charts, GroupsOnSeveralAxesComeOneAfterTheOther) {
  const auto group = [](const char* element, int order, const char* values, const char* axis) {
    return "<c:" + std::string(element) + "><c:ser><c:order val='" + std::to_string(order) +
           "'/><c:val><c:numRef><c:f>" + values + "</c:f></c:numRef></c:val></c:ser><c:axId val='" +
           axis + "'/></c:" + element + ">";
  };
  const auto book =
      charted(group("barChart", 2, "S!$A$1", "1") + group("lineChart", 0, "S!$B$1", "1") +
              group("lineChart", 1, "S!$C$1", "2") + "<c:valAx/><c:valAx/>")
          .open();
  std::string read;
  for (const ChartSeries& series : sheet_of(*book, "Sheet1").charts.at(0).series)
    read += series.values_formula + " " + std::to_string(series.order) + " " +
            std::to_string(series.chart_type) + ";";
  EXPECT_EQ(read, "S!$A$1 3 51;S!$B$1 1 4;S!$C$1 2 4;");
}

TEST(Charts, BubblesHaveSizes) {
  const auto book =
      charted(
          "<c:bubbleChart><c:ser><c:order val='0'/><c:xVal><c:numRef><c:f>S!$A$1:$A$3</c:f>"
          "</c:numRef></c:xVal><c:yVal><c:numRef><c:f>S!$B$1:$B$3</c:f></c:numRef></c:yVal>"
          "<c:bubbleSize><c:numRef><c:f>S!$C$1:$C$3</c:f></c:numRef></c:bubbleSize></c:ser>"
          "</c:bubbleChart>")
          .open();
  EXPECT_EQ(sheet_of(*book, "Sheet1").charts.at(0).series.at(0).sizes_formula, "S!$C$1:$C$3");
}

TEST(Charts, TypesByGroupAndSeries) {
  const auto type = [](ChartGroup group, SeriesLook look = {}) {
    return chart_type_of(group, look);
  };
  EXPECT_EQ(type({.element = "barChart", .grouping = "percentStacked", .horizontal = true}), 59);
  EXPECT_EQ(type({.element = "bar3DChart", .grouping = "standard"}), -4100);
  EXPECT_EQ(type({.element = "bar3DChart", .grouping = "stacked", .shape = "cone"}), 100);
  EXPECT_EQ(type({.element = "bar3DChart", .shape = "pyramid", .horizontal = true}), 109);
  EXPECT_EQ(type({.element = "lineChart", .grouping = "standard", .markers = true}), 65);
  EXPECT_EQ(type({.element = "lineChart", .markers = true}, {.no_marker = true}), 4);
  EXPECT_EQ(type({.element = "areaChart", .grouping = "stacked"}), 76);
  EXPECT_EQ(type({.element = "pieChart"}, {.exploded = true}), 69);
  EXPECT_EQ(type({.element = "doughnutChart"}), -4120);
  EXPECT_EQ(type({.element = "scatterChart", .style = "smoothMarker"}), 72);
  EXPECT_EQ(type({.element = "radarChart", .style = "filled"}), 82);
  EXPECT_EQ(type({.element = "surface3DChart"}), 83);
  EXPECT_EQ(type({.element = "surface3DChart", .wireframe = true}), 84);
  EXPECT_EQ(type({.element = "surfaceChart"}), 85);
}

}  // namespace
}  // namespace qto::test
