// The contents of a book, and pictures of its parts.

#include <gmock/gmock.h>

#include <nlohmann/json.hpp>

#include "tests/cli/run_command.hpp"
#include "tests/xlsx/book_file.hpp"

namespace qto::test {
namespace {

using nlohmann::json;
using testing::HasSubstr;
using testing::Not;

constexpr std::string_view chart_space = "http://schemas.openxmlformats.org/drawingml/2006/chart";

std::string series(int order, const std::string& name, const std::string& values) {
  return "<c:ser><c:order val='" + std::to_string(order) + "'/><c:tx>" + name +
         "</c:tx><c:cat><c:strRef><c:f>Report!$B$1:$D$1</c:f></c:strRef></c:cat><c:val><c:numRef>"
         "<c:f>" +
         values + "</c:f></c:numRef></c:val></c:ser>";
}

std::string drawing(const std::string& name) {
  return "<d:wsDr xmlns:d='http://schemas.openxmlformats.org/drawingml/2006/spreadsheetDrawing'"
         " xmlns:r='" +
         std::string(rel_space) + "'><d:graphicFrame><d:cNvPr name='" + name +
         "'/><c:chart xmlns:c='" + std::string(chart_space) +
         "' r:id='c1'/></d:graphicFrame></d:wsDr>";
}

std::string chart(const std::string& groups) {
  return "<c:chartSpace xmlns:c='" + std::string(chart_space) + "'><c:chart><c:plotArea>" + groups +
         "</c:plotArea></c:chart></c:chartSpace>";
}

/// Report (charts), Hidden (very hidden), Locked (protected, "password", column B hidden), Diagram.
TemporaryFile report() {
  BookFile file;
  file.workbook(
      "<sheets><sheet name='Report' sheetId='1' r:id='r1'/>"
      "<sheet name='Hidden' sheetId='2' state='veryHidden' r:id='r2'/>"
      "<sheet name='Locked' sheetId='3' r:id='r3'/>"
      "<sheet name='Dia gram' sheetId='4' r:id='r4'/></sheets><definedNames>"
      "<definedName name='Rate'>Report!$B$2</definedName><definedName name='Secret'"
      " hidden='1'>1</definedName><definedName name='Fixed'>0.05</definedName>"
      "</definedNames>",
      {"worksheet", "worksheet", "worksheet", "chartsheet"});
  file.part(
          "xl/sheet1.xml",
          root("worksheet",
               "<sheetData><row r='1'><c r='B1' t='str'><v>North</v></c><c r='C1' t='str'><v>South"
               "</v></c><c r='D1' t='str'><v>West</v></c></row><row r='2'><c r='A2' t='str'><v>"
               "Sales of goods and of services to everybody else</v></c><c r='B2'><v>1</v></c>"
               "<c r='C2'><f>B2*2</f><v>2</v></c><c r='D2'><v>-1</v></c></row>"
               "<row r='3' hidden='1'><c r='A3' t='str'><v>Cost</v></c><c r='C3'><f>1/0</f>"
               "</c></row><row r='4'><c r='A4' t='str'><v>A long remark that runs on</v></c></row>"
               "<row r='5'><c r='D5' t='b'><v>1</v></c></row></sheetData><drawing r:id='d'/>"))
      .links("xl/sheet1.xml", {{"d", "drawing", "drawing1.xml"}, {"p", "pivotTable", "pivot1.xml"}})
      .part("xl/drawing1.xml", drawing("Chart 1"))
      .links("xl/drawing1.xml", {{"c1", "chart", "chart1.xml"}})
      .part("xl/chart1.xml",
            chart("<c:barChart>" +
                  series(0, "<c:strRef><c:f>Report!$A$2</c:f></c:strRef>", "Report!$B$2:$D$2") +
                  series(1, "<c:v>Twice</c:v>", "(Report!$B$2,Report!$D$2)") +
                  "</c:barChart><c:surfaceChart>" + series(2, "<c:v>Twice</c:v>", "Report!$B$2") +
                  "</c:surfaceChart>"))
      .part("xl/pivot1.xml", root("pivotTableDefinition name='Pivot'", "<location ref='F3:G6'/>"))
      .part("xl/sheet2.xml", root("worksheet",
                                  "<sheetData><row r='1'><c r='A1'><v>5</v></c></row>"
                                  "</sheetData>"))
      .part("xl/sheet3.xml",
            root("worksheet",
                 "<cols><col min='2' max='2' hidden='1'/></cols><sheetData><row r='1'>"
                 "<c r='B1'><v>7</v></c></row></sheetData>"
                 "<sheetProtection sheet='1' password='83AF'/>"))
      .part("xl/sheet4.xml", root("chartsheet", "<drawing r:id='d'/>"))
      .links("xl/sheet4.xml", {{"d", "drawing", "drawing2.xml"}})
      .part("xl/drawing2.xml", drawing("Chart 9"))
      .links("xl/drawing2.xml", {{"c1", "chart", "chart2.xml"}})
      .part("xl/chart2.xml",
            chart("<c:pieChart>" + series(0, "<c:v>Pie</c:v>", "Report!$C$2") + "</c:pieChart>"));
  return {"report.xlsx", file.bytes()};
}

TEST(Contents, list_what_can_be_drilled) {
  const TemporaryFile book = report();
  const Outcome text = run_qto({"part", book.path()});
  EXPECT_EQ(text.status, 0) << text.err;
  EXPECT_THAT(text.out, HasSubstr("Sheets\n"
                                  "  Report    A1:D5\n"
                                  "  Hidden    A1           very hidden\n"
                                  "  Locked    B1\n"
                                  "  Dia gram  chart sheet\n"
                                  "\nNames\n"
                                  "  Rate   =Report!$B$2\n"
                                  "  Fixed  =0.05\n"));
  for (const char* line :
       {"Report(Chart 1)!Sales of goods and of services to everybody else  column",
        "Report(Chart 1)!Twice", "Report(Chart 1)!#3", "'Dia gram'!Pie",
        "=SERIES(\"Pie\",Report!$B$1:$D$1,Report!$C$2,1)", "Report!F3:G6", "unknown source"})
    EXPECT_THAT(text.out, HasSubstr(line));

  const auto answer = json::parse(run_qto({"part", book.path(), "--json"}).out);
  EXPECT_EQ(answer["operation"], "part");
  EXPECT_EQ(answer["Sheets"].size(), 4u);
  EXPECT_EQ(answer["Sheets"][1]["Visible"], 2);
  EXPECT_EQ(answer["Names"].size(), 2u);
  EXPECT_EQ(answer["PivotTables"][0]["Item"], "Report!F3:G6");
  // Everything that is listed can be asked about under the name that it has in the list.
  int series = 0;
  for (const auto& one : answer["Charts"])
    for (const auto& item : one["Series"]) {
      const Outcome drilled =
          run_qto({"inputs", book.path(), item["Item"].get<std::string>(), "--json"});
      EXPECT_EQ(drilled.status, 0) << item << drilled.out;
      EXPECT_EQ(json::parse(drilled.out)["start"]["ObjectType"], "Series");
      EXPECT_EQ(run_qto({"show", book.path(), item["Item"].get<std::string>()}).status, 0);
      ++series;
    }
  EXPECT_EQ(series, 4);
}

TEST(Show, draws_the_cells_around_an_item) {
  const TemporaryFile book = report();
  const Outcome shown = run_qto({"show", book.path(), "Report!C2"});
  EXPECT_EQ(shown.status, 0) << shown.err;
  EXPECT_EQ(shown.out,
            "Report!C2  Sales of goods and of services to every…\n"
            "=B2*2 → 2\n"
            "\n"
            "        A                                                     B      C     D\n"
            "   1 │                                                    North  South  West\n"
            "▸  2 │  Sales of goods and of services to everybody else      1 [    2]   -1\n"
            "     ┊  row 3 is hidden\n"
            "   4 │  A long remark that runs on\n"
            "   5 │                                                                  TRUE\n");
}

TEST(Show, refuses_what_is_hidden_until_it_may_be_shown) {
  const TemporaryFile book = report();
  const struct {
    std::vector<std::string> arguments;
    int status;
    const char* text;
  } rows[] = {
      {{"Report!C3"}, 2, "Report!C3: row 3 is hidden. --unhide shows it"},
      {{"Report!C3", "--unhide"}, 0, "In the book row 3 is hidden."},
      {{"Hidden!A1"}, 2, "sheet Hidden is hidden"},
      {{"Hidden!A1", "--unhide"}, 0, "▸  1 │ [  5]"},
      {{"Locked!B1", "--unhide"}, 2, "column B is hidden, and the sheet is protected"},
      {{"Locked!B1", "--unhide", "--password", "nonsense"}, 2, "the password is not that"},
      {{"Locked!B1", "--unhide", "--password", "password"}, 0, "▸  1 │      [  7]"},
      {{"Rate"}, 0, "Report!B2"},
      {{"Fixed"}, 1, "Fixed stands for 0.05, which is no cell that could be shown"},
      {{"Nowhere!A1"}, 1, "has no sheet 'Nowhere'"},
      {{"Report!C1:D5"},
       0,
       "▸  1 │                                                    North [South  West]"},
  };
  for (const auto& row : rows) {
    std::vector<std::string> arguments{"show", book.path()};
    arguments.insert(arguments.end(), row.arguments.begin(), row.arguments.end());
    const Outcome shown = run_qto(arguments);
    EXPECT_EQ(shown.status, row.status) << row.arguments[0];
    EXPECT_THAT(shown.out + shown.err, HasSubstr(row.text));
  }
}

TEST(Show, draws_the_chart_of_a_series) {
  const TemporaryFile book = report();
  const Outcome shown = run_qto({"show", book.path(), "Report(Chart 1)!Twice"});
  EXPECT_EQ(shown.status, 0) << shown.err;
  EXPECT_THAT(shown.out, HasSubstr("▸ Twice"));
  EXPECT_THAT(shown.out, HasSubstr("surface  =SERIES("));
  EXPECT_THAT(shown.out, HasSubstr("  North   1  "));
  EXPECT_THAT(shown.out, HasSubstr("  South  -1  ▇▇"));
  const auto answer =
      json::parse(run_qto({"show", book.path(), "Report(Chart 1)!Twice", "--json"}).out);
  EXPECT_EQ(answer["operation"], "show");
  EXPECT_EQ(answer["PointCount"], 2);
  EXPECT_EQ(answer["Points"][0]["Category"], "North");
  EXPECT_EQ(answer["Series"][1]["Selected"], true);
  EXPECT_EQ(answer["Series"][2]["Selected"], false);
}

TEST(Show, as_json) {
  const TemporaryFile book = report();
  const auto answer = json::parse(run_qto({"show", book.path(), "Report!C2", "--json"}).out);
  EXPECT_EQ(answer["start"]["AddressShort"], "C2");
  EXPECT_EQ(answer["Columns"], json({"A", "B", "C", "D"}));
  EXPECT_EQ(answer["Rows"], json({1, 2, 4, 5}));
  EXPECT_EQ(answer["Texts"][1][2], "2");
  EXPECT_EQ(answer["HiddenRows"], json({"3:3"}));
  EXPECT_EQ(answer["HiddenColumns"], json::array());
}

TEST(Show, keeps_to_eighty_columns) {
  for (const char* item : {"Summary!C7", "Debt!B7", "Revenue!D8", "Assumptions!B7"}) {
    const Outcome shown = run_qto({"show", plan(), item});
    EXPECT_EQ(shown.status, 0);
    std::size_t at = 0;
    for (std::size_t end = shown.out.find('\n'); end != std::string::npos;
         at = end + 1, end = shown.out.find('\n', at)) {
      std::size_t letters = 0;
      for (std::size_t i = at; i < end; ++i)
        letters += (static_cast<unsigned char>(shown.out[i]) & 0xC0) != 0x80;
      EXPECT_LE(letters, 80u) << shown.out.substr(at, end - at);
    }
    EXPECT_THAT(shown.out, HasSubstr("["));
    EXPECT_THAT(shown.out, Not(HasSubstr("\x1b")));
  }
}

}  // namespace
}  // namespace qto::test
