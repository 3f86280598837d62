#include <gtest/gtest.h>

#include "qto/automation/variant_list.hpp"
#include "qto/com/conversion.hpp"
#include "qto/server/tables/enumerator.hpp"
#include "tests/server/late_bound.hpp"
#include "tests/support/text_book.hpp"

namespace qto::server {
namespace {

using test::Books;

/// "B7" in A1 form, the values of an array by rows, a name where a class is all there is to see.
std::string shown(const Variant& value) {
  if (value.is_empty()) return "-";
  if (value.is_null()) return "Null";
  if (const auto* error = value.get_if<ErrorValue>()) return std::string(error_text(*error));
  if (value.is_array()) {
    std::string out;
    for (const Variant& item : value.array().items()) out += (out.empty() ? "" : "|") + shown(item);
    return out;
  }
  if (value.is_object()) {
    const Ref<Object> object = value.object();
    if (const auto range = ref_cast<host::Range>(object)) return range->Address(false, false);
    return object ? std::string(object->TypeName()) : "Nothing";
  }
  Variant text = value;
  return convert(text, {Shape::text, ""}) == Conversion::done ? text.text() : "?";
}

struct Step {
  const char* member;
  std::vector<Variant> values;
};
/// Follows members from an object; what the last one answers, or its error number.
std::string follow(Ref<Object> from, const std::vector<Step>& steps) {
  Variant reached(from);
  const std::string failed = error_of([&] {
    for (const Step& step : steps) {
      const LateBound object(reached.object());
      CallArguments arguments{step.values, {}, {}};
      reached =
          invoke(*object.table, *object.object, step.member, call_get | call_method, arguments);
    }
  });
  return failed == "none" ? shown(reached) : failed;
}

/// Two sheets, a name on each level, a chart sheet, a chart on a sheet, a pivot table.
struct Desk : Books {
  Desk()
      : Books(
            "A1=2; B1=3; C1==A1*B1; A2=text; B2==1/0; name Rate=Sheet1!$A$1; "
            "Other!A1=5; name Other!Local=Other!$A$1") {
    embedded::Book& model = *models.front();
    embedded::ChartModel chart{"Chart 1",
                               {{"Sheet1!$A$2", "Sales", "", "Sheet1!$A$1:$B$1", 1, 51}}};
    model.find_sheet("Sheet1")->charts.push_back(chart);
    auto& diagram = model.add_sheet("Diagram", embedded::SheetKind::chart);
    chart.name.clear();
    diagram.charts.push_back(chart);
  }
  Ref<Object> sheet() { return opened.front()->Worksheets("Sheet1"); }
};

const Variant text(const char* t) { return Variant(t); }

TEST(HostSurface, RangesAnswerByName) {
  Desk desk;
  const struct {
    const char* range;
    std::vector<Step> steps;
    const char* answer;
  } cases[] = {
      {"C1", {{"Formula", {}}}, "=A1*B1"},
      {"C1", {{"Value", {}}}, "6"},
      {"A1:B2", {{"Value", {}}}, "2|3|text|#DIV/0!"},
      {"A1:C1", {{"Formula", {}}}, "2|3|=A1*B1"},
      {"A1:B1", {{"Value2", {}}}, "2|3"},
      {"A1", {{"Value2", {}}}, "2"},
      {"B2:C4", {{"Address", {}}}, "$B$2:$C$4"},
      {"B2:C4", {{"Address", {Variant(false), Variant(), Variant(-4150)}}}, "R[1]C[1]:R[3]C[2]"},
      {"B2:C4", {{"AddressLocal", {Variant(false), Variant(false)}}}, "B2:C4"},
      {"B2:C4", {{"Cells", {}}, {"Count", {}}}, "6"},
      {"B2:C4", {{"Cells", {Variant(3)}}}, "B3"},
      {"B2:C4", {{"Cells", {Variant(2), Variant(2)}}}, "C3"},
      {"B2:C4", {{"Cells", {Variant(0), Variant("A")}}}, "B1"},
      {"B2:C4", {{"Cells", {Variant(1), Variant(-2)}}}, "800A03EC"},
      {"B2:C4", {{"Rows", {}}, {"Count", {}}}, "3"},
      {"B2:C4", {{"Rows", {Variant(2)}}}, "B3:C3"},
      {"B2:C4", {{"Columns", {}}, {"Item", {text("B")}}}, "C2:C4"},
      {"B2:C4", {{"Columns", {Variant(3)}}}, "800A0009"},
      {"B2:C4", {{"Areas", {}}, {"Count", {}}}, "1"},
      {"B2:C4", {{"EntireRow", {}}}, "2:4"},
      {"B2:C4", {{"EntireColumn", {}}, {"Hidden", {}}}, "False"},
      {"B2:C4", {{"Hidden", {}}}, "800A03EC"},
      {"A1", {{"Name", {}}, {"Name", {}}}, "Rate"},
      {"A2", {{"Name", {}}}, "800A03EC"},
      {"A1", {{"End", {Variant(host::xlToRight)}}}, "C1"},
      {"A1", {{"Worksheet", {}}, {"Name", {}}}, "Sheet1"},
      {"C1", {{"FormulaR1C1Local", {}}}, "=RC[-2]*RC[-1]"},
      {"A:XFD", {{"Count", {}}}, "17179869184"},
      {"A:XFD", {{"Formula", {}}}, "800A03EC"},
      {"C1", {{"Colour", {}}}, "80020006"},
      {"C1", {{"Row", {Variant(1)}}}, "8002000E"},
  };
  for (const auto& c : cases)
    EXPECT_EQ(follow(desk.range(c.range), c.steps), c.answer)
        << c.range << "." << c.steps.front().member;
}

TEST(HostSurface, SheetsAndBooksAnswerByName) {
  Desk desk;
  const Ref<Object> app(desk.app.ref()), book(desk.opened.front()), sheet = desk.sheet();
  const struct {
    Ref<Object> from;
    std::vector<Step> steps;
    const char* answer;
  } cases[] = {
      {sheet, {{"Range", {text("A1:B2")}}}, "A1:B2"},
      {sheet, {{"Range", {text("C4"), text("B2")}}}, "B2:C4"},
      {sheet, {{"Range", {Variant(desk.range("B2")), text("A4")}}}, "A2:B4"},
      {sheet, {{"Range", {Variant(5)}}}, "80020005/0"},
      {sheet, {{"Range", {text("Rate")}}}, "800A03EC"},
      {sheet, {{"Cells", {Variant(2), Variant(3)}}}, "C2"},
      {sheet, {{"Rows", {Variant(3)}}}, "3:3"},
      {sheet, {{"Columns", {}}, {"Count", {}}}, "16384"},
      {sheet, {{"UsedRange", {}}}, "A1:C2"},
      {sheet, {{"Evaluate", {text("A1+1")}}}, "3"},
      {sheet, {{"Evaluate", {text("A1:B1")}}}, "A1:B1"},
      {sheet, {{"Evaluate", {text("1+")}}}, "#NAME?"},
      {sheet, {{"ValueInCell", {text("A1:A5"), Variant(1), Variant(3)}}}, "2"},
      {sheet, {{"RangeInCell", {text("A1:C1"), Variant(7), Variant(2)}}}, "A1:C1"},
      {sheet, {{"ValueInCell", {text("A1"), Variant(0), Variant(3)}}}, "800A03EC"},
      {sheet, {{"CircularReference", {}}}, "Nothing"},
      {sheet, {{"Names", {}}, {"Count", {}}}, "0"},
      {sheet, {{"ChartObjects", {text("chart 1")}}, {"Chart", {}}, {"Name", {}}}, "Sheet1 Chart 1"},
      {sheet, {{"ChartObjects", {Variant(2)}}}, "800A0009"},
      {sheet, {{"PivotTables", {}}, {"Count", {}}}, "0"},
      {book, {{"Sheets", {}}, {"Count", {}}}, "3"},
      {book, {{"Worksheets", {}}, {"Count", {}}}, "2"},
      {book, {{"Worksheets", {text("other")}}, {"Index", {}}}, "2"},
      {book, {{"Sheets", {Variant(3)}}}, "Chart"},
      {book, {{"Sheets", {Variant(4)}}}, "800A0009"},
      {book,
       {{"Sheets", {text("Diagram")}}, {"SeriesCollection", {Variant(1)}}, {"Formula", {}}},
       "=SERIES(Sheet1!$A$2,,Sheet1!$A$1:$B$1,1)"},
      {book, {{"Names", {text("rate")}}, {"RefersToR1C1Local", {}}}, "=Sheet1!R1C1"},
      {book, {{"Names", {}}, {"Count", {}}}, "2"},
      {book,
       {{"Worksheets", {text("Other")}}, {"Names", {Variant(1)}}, {"NameLocal", {}}},
       "Other!Local"},
      {book, {{"LinkSources", {Variant(1)}}}, "-"},
      {book, {{"AcceptLabelsInFormulas", {}}}, "False"},
      {app, {{"Workbooks", {text("PLAN.XLSX")}}, {"Name", {}}}, "Plan.xlsx"},
      {app, {{"Workbooks", {text("none")}}}, "800A0009"},
      {app, {{"Names", {text("Rate")}}, {"RefersTo", {}}}, "=Sheet1!$A$1"},
      {app, {{"ActiveWindow", {}}, {"ActivePane", {}}, {"VisibleRange", {}}}, "A1:T40"},
      {app, {{"ActiveChart", {}}}, "Nothing"},
      {app, {{"Intersect", {Variant(desk.range("A1:C3")), Variant(desk.range("B2:D4"))}}}, "B2:C3"},
      {app, {{"Intersect", {Variant(desk.range("A1")), Variant(desk.range("B2"))}}}, "Nothing"},
      {app, {{"Intersect", {Variant(desk.range("A1")), Variant()}}}, "80020005/1"},
      {app, {{"ConvertFormula", {text("R2C3"), Variant(-4150), Variant(1)}}}, "$C$2"},
      {app,
       {{"WorksheetFunction", {}},
        {"Match", {Variant(3), Variant(desk.range("A1:B1")), Variant(0)}}},
       "2"},
      {app,
       {{"WorksheetFunction", {}}, {"Match", {Variant(9), Variant(desk.range("A1")), Variant(0)}}},
       "800A03EC"},
      {app,
       {{"WorksheetFunction", {}}, {"CountIf", {Variant(desk.range("A1:C1")), text(">2")}}},
       "2"},
  };
  for (const auto& c : cases)
    EXPECT_EQ(follow(c.from, c.steps), c.answer) << c.steps.front().member;
}

TEST(HostSurface, CollectionsAreWalked) {
  Desk desk;
  const auto walked = [](const LateBound& list) {
    CallArguments none;
    const auto walk = ref_cast<Enumerator>(
        invoke(*list.table, *list.object, enumerator_id, call_get, none).object());
    std::string out;
    for (Variant item; walk->next(item);) out += shown(item) + " ";
    return out;
  };
  EXPECT_EQ(walked(LateBound(desk.range("B1:C2"))), "B1 C1 B2 C2 ");
  const LateBound book(desk.opened.front());
  EXPECT_EQ(walked(book.object_of("Sheets")), "Worksheet Worksheet Chart ");
  EXPECT_EQ(walked(book.object_of("Names")), "Name Name ");
  EXPECT_EQ(walked(LateBound(desk.range("A1:B2")).object_of("Rows")), "A1:B1 A2:B2 ");
}

TEST(HostSurface, WhatCanBeChangedIsChanged) {
  Desk desk;
  const LateBound app(desk.app.ref()), book(desk.opened.front()), sheet(desk.sheet());
  const LateBound other(book.get("Worksheets", {Variant("Other")}).object());
  app.run("Goto", {Variant(desk.range("Other!D50")), Variant(true)});
  EXPECT_EQ(app.get("ActiveSheet").object(), other.object);
  EXPECT_EQ(shown(app.get("Selection")), "D50");
  const LateBound window = app.object_of("ActiveWindow");
  EXPECT_EQ(window.get("ScrollRow"), Variant(50));
  window.put("ScrollRow", Variant(10));
  const LateBound pane = window.object_of("ActivePane");
  CallArguments up{{Variant(3)}, {{1, 0}}, {}};
  invoke(*pane.table, *pane.object, "SmallScroll", call_method, up);
  EXPECT_EQ(window.get("ScrollRow"), Variant(7));

  const LateBound rows(desk.range("2:2"));
  rows.put("Hidden", Variant(true));
  EXPECT_EQ(rows.get("Hidden"), Variant(true));
  EXPECT_TRUE(LateBound(desk.range("1:2")).get("Hidden").is_null());
  sheet.run("Activate");
  LateBound(sheet.get("ChartObjects", {Variant(1)}).object()).run("Activate");
  EXPECT_EQ(shown(app.get("ActiveChart")), "Chart");
  LateBound(app.object_of("ActiveChart").get("SeriesCollection", {Variant("text")}).object())
      .run("Select");
  EXPECT_EQ(shown(app.get("Selection")), "Series");
  app.object_of("ActiveChart").object_of("ChartArea").run("Select");
  EXPECT_EQ(shown(app.get("Selection")), "Chart");

  book.object_of("Names").run("Add", {Variant("Two"), Variant("=2")});
  sheet.object_of("Names").run("Add", {Variant("Three"), Variant("=3")});
  EXPECT_EQ(sheet.run("Evaluate", {Variant("Two*Three")}), Variant(6.0));
  EXPECT_EQ(sheet.object_of("Names").get("Count"), Variant(1));
  EXPECT_EQ(error_of([&] { other.object_of("Names").get("Item", {Variant("Three")}); }),
            "800A03EC");
}

TEST(HostSurface, LinkSourcesAreAListFromOne) {
  embedded::Application app;
  const LateBound books(app.Workbooks());
  const std::string folder = QTO_SOURCE_DIR "/examples/workbooks/linked/";
  CallArguments open{
      {Variant(folder + "group.xlsx"), Variant(true), Variant("")}, {{2, 1}, {4, 2}}, {}};
  const LateBound book(invoke(*books.table, *books.object, "Open", call_method, open).object());
  const Variant links = book.run("LinkSources");
  ASSERT_TRUE(links.is_array());
  EXPECT_TRUE(dynamic_cast<const VariantList*>(&links.array()));
  EXPECT_GT(links.array().columns(), 1);
  EXPECT_EQ(book.run("LinkSources", {Variant(9)}), Variant());
}

}  // namespace
}  // namespace qto::server
