// The same drills on the same books, the host driven as itself and by name.

#include <gtest/gtest.h>

#include "qto/hosts/embedded/book/sheet.hpp"
#include "qto/links/main.hpp"
#include "tests/late_bound/both_ways.hpp"

namespace qto::test {
namespace {

/// All three drills from a start, with events answered and books opened; what came of it as text.
struct Drilled {
  explicit Drilled(const Ref<Object>& start, const Options& options = {}) {
    const Reports reports;
    auto drill = make_ref<DrillDown>();
    drill->putref_DrillOptions(options.make());
    drill->AskToOpenBook.add(
        [this](auto& part, bool&) { text += "ask " + part->WorkBookName() + "\n"; });
    drill->AskForPassword.add([](auto&, std::string& password) { password = "sterling"; });
    drill->BeforeInternetAccess.add([](auto&, auto&, bool& cancel) { cancel = true; });
    drill->AfterOpenBookAttempt.add(
        [this](const std::string& path, const std::string& name, qtoReasonNotOpened reason) {
          text += "after " + path + " " + name + " " + std::to_string(reason) + "\n";
        });
    const auto run = [&](auto operation) {
      text += std::to_string(static_cast<std::uint32_t>(raised_by([&] { operation(); }))) + "\n";
    };
    run([&] { drill->putref_StartUnderlyingObject(start); });
    run([&] { drill->DrillHere(); });
    if (drill->StartModelPart()) text += family(drill->StartModelPart());
    run([&] { drill->FindInputs(); });
    text += "inputs\n" + portraits(drill->InputCells());
    run([&] { drill->TraceError(); });
    text += "errors\n" + portraits(drill->ErrorCells());
    text += "opened " + std::to_string(Main::BooksOpened()->Count()) + "\n" + reports.text();
  }
  std::string text;
};

std::string drilled(Driven& host, const Ref<Object>& native, const Options& options = {}) {
  return Drilled(host.given(native), options).text;
}

TEST(DrillsByName, TheExampleGivesTheSame) {
  const std::string path = QTO_SOURCE_DIR "/examples/workbooks/plan.xlsx";
  Driven direct(false), by_name(true);
  const auto native = direct.books.app.Workbooks()->Open(path);
  const auto remote = by_name.books.app.Workbooks()->Open(path);
  Options used;
  used.ParseIf = used.ParseLookup = used.ParseIndex = 1;
  int formulas = 0;
  for (const char* name : {"Summary", "Costs", "Cash flow"}) {
    const auto sheet = native->Worksheets(name);
    const Rect block = sheet->UsedRange()->block();
    for (std::int32_t row = block.first.row; row <= block.last.row; ++row) {
      const CellPos pos{row, name == std::string("Summary") ? 2 : 4};
      if (!sheet->cell_has_formula(pos)) continue;
      ++formulas;
      const auto options = row % 2 == 0 ? used : Options{};
      ASSERT_EQ(drilled(by_name, remote->Worksheets(name)->Cells(pos.row, pos.column), options),
                drilled(direct, sheet->Cells(pos.row, pos.column), options))
          << name << " row " << row;
    }
  }
  EXPECT_GT(formulas, 20);
}

TEST(DrillsByName, LinkedBooksAreOpenedTheSame) {
  const std::string path = QTO_SOURCE_DIR "/examples/workbooks/linked/group.xlsx";
  for (const char* address :
       {"B3", "B4", "B5", "B6", "B7", "B9", "B10", "B11", "B13", "B14", "B15"}) {
    Driven direct(false), by_name(true);
    const auto start = [&](Driven& host) {
      return host.books.app.Workbooks()->Open(path)->Worksheets(1)->Range(address);
    };
    ASSERT_EQ(drilled(by_name, start(by_name)), drilled(direct, start(direct))) << address;
    EXPECT_EQ(by_name.books.app.Workbooks()->Count(), direct.books.app.Workbooks()->Count());
    Main::set_shared_application(nullptr);
    Main::reset_books();
  }
}

const char* const everything =
    "A1=2; A2=3; A3=text; A4==1/0; A5==A4+A1; B1==SUM(A1:A3); B2==Rate*Other!A1; "
    "B3==IF(A1>1,A2,A5); B4==VLOOKUP(3,A1:C3,1,FALSE); B5==INDEX(A1:A3,MATCH(3,A1:A3,0)); "
    "B6==SUM(Sheet1:Third!A1); B7==OFFSET(A1,1,0); B8==INDIRECT(\"A\"&2); B9==Relative; "
    "B10==SUMIF(A1:A2,\">2\",B1:B2); B11==A1:A9; B12==Missing+1; B13==Other!Local*2; "
    "B14==SUM(A1:A3 A2:B2); C1=TRUE; C2==B1&\" \"&A3; D1=Total; D2==B1; E1==CHOOSE(2,A1,A2); "
    "name Rate=Sheet1!$A$1; Other!A1=5; name Other!Local=Other!$A$1; Third!A1==Sheet1!B1; "
    "name Relative=Sheet1!A2";

TEST(DrillsByName, FormulasOfEveryKindGiveTheSame) {
  for (const char* cell :
       {"A5",  "B1",  "B2",  "B3",  "B4", "B5", "B6", "B7", "B8",       "B9",   "B10",
        "B11", "B12", "B13", "B14", "C2", "D2", "E1", "A1", "Third!A1", "A1:B2"}) {
    for (int choice = 0; choice < 3; ++choice) {
      Options options;
      options.ParseIf = options.ParseLookup = options.ParseSumif = choice;
      options.ParseIndex = choice > 0;
      options.ParseIndirect = options.ParseOffset = 3 + choice;
      Driven direct(false), by_name(true);
      direct.books.add(everything);
      by_name.books.add(everything);
      ASSERT_EQ(drilled(by_name, by_name.books.range(cell), options),
                drilled(direct, direct.books.range(cell), options))
          << cell << " " << choice;
    }
  }
}

/// A chart on a sheet, a chart sheet, and a pivot table over cells that others refer to.
void add_pictures(Books& books) {
  embedded::Book& model = *books.models.front();
  embedded::Sheet& sheet = *model.find_sheet("Sheet1");
  const embedded::ChartSeries series{"Sheet1!$D$1", "Total", "", "Sheet1!$A$1:$A$3", 1, 51};
  sheet.charts.push_back({"Chart 1", {series}});
  model.add_sheet("Diagram", embedded::SheetKind::chart).charts.push_back({"", {series}});
}

TEST(DrillsByName, SeriesGiveTheSame) {
  std::string results[2];
  for (const bool named : {false, true}) {
    Driven host(named);
    host.books.add(everything);
    add_pictures(host.books);
    const auto book = host.books.opened.front();
    const auto on_sheet =
        book->Worksheets("Sheet1")->ChartObjects("Chart 1")->Chart()->SeriesCollection()[0];
    const auto on_chart_sheet =
        ref_cast<host::Chart>(book->Sheets("Diagram"))->SeriesCollection()[0];
    results[named] = drilled(host, on_sheet) + drilled(host, on_chart_sheet);
  }
  EXPECT_EQ(results[1], results[0]);
  EXPECT_NE(results[0].find("Series"), std::string::npos);
}

TEST(DrillsByName, PivotTablesGiveTheSame) {
  std::string results[2];
  for (const bool named : {false, true}) {
    Driven host(named);
    host.books.add("A1=2; A13=4; B13=5; B15==A13*2+A1");
    host.books.models.front()->find_sheet("Sheet1")->pivots.push_back(
        {"Pivot", {{12, 1}, {14, 2}}, "Sheet1!R1C1:R3C2"});
    results[named] =
        drilled(host, host.books.range("A13")) + drilled(host, host.books.range("B15"));
    const auto tables = host.given(host.books.opened.front())->Worksheets(1)->PivotTables();
    ASSERT_EQ(tables.size(), 1u);
    results[named] += tables[0]->Name() + tables[0]->SourceData();
  }
  EXPECT_EQ(results[1], results[0]);
  EXPECT_EQ(results[0].substr(0, 2), "0\n");  // no formula is asked for inside a pivot table
}

TEST(DrillsByName, LargeRangesGiveTheSame) {
  std::string results[2];
  for (const bool named : {false, true}) {
    Driven host(named);
    host.books.add("A1=2; A5000==A1/0; B1==SUM(A1:A6000); B2==SUM(C1:C6000)+A5000");
    const auto traced = [&](const char* start) {
      const auto drill = make_ref<DrillDown>();
      drill->putref_StartUnderlyingObject(host.given(host.books.range(start)));
      drill->TraceError();
      return portraits(drill->ErrorCells());
    };
    results[named] = traced("B1");
    results[named] += traced("B2");
  }
  EXPECT_EQ(results[1], results[0]);
  EXPECT_NE(results[0].find("A5000"), std::string::npos);
}

TEST(DrillsByName, PartsAreSelectedTheSame) {
  std::string results[2];
  for (const bool named : {false, true}) {
    Driven host(named);
    host.books.add(everything);
    add_pictures(host.books);
    const auto book = host.books.opened.front();
    book->Worksheets("Other")->put_Visible(host::xlSheetHidden);
    host.books.range("3:3")->put_Hidden(true);
    std::string& out = results[named];
    for (const char* cell : {"B2", "B1", "B6"}) {
      auto drill = make_ref<DrillDown>();
      drill->putref_StartUnderlyingObject(host.given(host.books.range(cell)));
      drill->DrillHere();
      drill->StartModelPart()->DirectPrecedents()->for_each([&](ModelPart& part) {
        bool asked = false;
        const int token = part.AskToUnhide.add(
            [&](auto&, const std::string& what, auto&, bool& allowed, std::string&) {
              asked = allowed = true;
              out += "ask " + what + " ";
            });
        out += part.AddressShort() + " " + std::to_string(part.SelectItem());
        part.AskToUnhide.remove(token);
        const auto selected = ref_cast<host::Range>(host.books.app->Selection());
        out += " " + (selected ? selected->Address(true, true, host::xlA1, true) : "-") + "\n";
      });
    }
    const auto series =
        book->Worksheets("Sheet1")->ChartObjects("Chart 1")->Chart()->SeriesCollection()[0];
    auto drill = make_ref<DrillDown>();
    drill->putref_StartUnderlyingObject(host.given(series));
    out += std::to_string(drill->StartModelPart()->SelectItem());
    out += host.books.app->Selection()->TypeName();
  }
  EXPECT_EQ(results[1], results[0]);
  EXPECT_NE(results[0].find("ask"), std::string::npos);
}

TEST(DrillsByName, CirclesAreRefusedTheSame) {
  for (const bool named : {false, true}) {
    Driven host(named);
    host.books.add("A1==B1; B1==A1");
    auto drill = make_ref<DrillDown>();
    drill->putref_StartUnderlyingObject(host.given(host.books.range("A1")));
    EXPECT_EQ(raised_by([&] { drill->FindInputs(); }),
              static_cast<std::int32_t>(ErrorNumber::circular_reference));
  }
}

}  // namespace
}  // namespace qto::test
