#include "qto/hosts/embedded/objects/editing/sheet_edits.hpp"
#include "tests/objects/desk.hpp"

namespace qto::embedded {
namespace {

TEST(Lifetime, OneHandlePerSheetAndBook) {
  Desk desk;
  EXPECT_EQ(desk.book->Worksheets("SHEET1"), desk.sheet);
  EXPECT_EQ(desk.at("A1")->Worksheet(), desk.sheet);
  EXPECT_EQ(desk.sheet->Workbook(), desk.book);
  EXPECT_EQ(desk.app.Workbooks()->Item("book1"), desk.book);
  EXPECT_EQ(desk.at("A1")->Application(), desk.app.ref());
  EXPECT_EQ(desk.sheet->Parent()->TypeName(), "Workbook");
  EXPECT_EQ(desk.book->Parent()->TypeName(), "Application");
  const auto stamp = desk.sheet->IdentityStamp();
  EXPECT_NE(stamp, 0u);
  desk.sheet = nullptr;  // a new handle is the same sheet
  EXPECT_EQ(desk.book->Worksheets(1)->IdentityStamp(), stamp);
}

TEST(Lifetime, AHandleKeepsItsBookWhenTheFacadeIsGone) {
  Ref<host::Range> cell;
  {
    const Desk desk;
    desk.put("A1", "5");
    cell = desk.at("A1");
  }
  EXPECT_TRUE(cell->exists());
  EXPECT_EQ(shown(cell->value()), "5");
  EXPECT_EQ(cell->Application()->Workbooks()->Count(), 1);
}

TEST(Lifetime, HandlesOfADeletedSheetAreDead) {
  Desk desk;
  const auto second = desk.book->AddWorksheet("Second");
  const auto cell = second->Range("A1");
  const auto name = second->AddName("Local", "=1");
  Sheet& model = sheet_of(second);
  model.charts.push_back({"Chart 1", {{"", "S", "", "Second!$A$1", 1, 51}}});
  model.pivots.push_back({"Pivot", {{1, 1}, {2, 2}}, "Second!A1:B9"});
  const auto chart = second->ChartObjects("chart 1");
  const auto series = chart->Chart()->SeriesCollection().at(0);
  const auto pivot = second->PivotTables().at(0);
  const auto embedded_chart = chart->Chart();
  delete_sheet(second);

  const Ref<host::HostObject> handles[] = {second, cell,           name, chart,
                                           series, embedded_chart, pivot};
  for (const auto& handle : handles) {
    EXPECT_FALSE(handle->exists()) << handle->TypeName();
    EXPECT_FAILS(handle->Application()) << handle->TypeName();
    EXPECT_FAILS(handle->Parent()) << handle->TypeName();
  }
  EXPECT_FAILS(cell->value());
  EXPECT_FAILS(cell->Formula());
  EXPECT_FAILS(cell->Address());
  EXPECT_FAILS(cell->put_value(1.0));
  EXPECT_FAILS(cell->Cells(1, 1));
  EXPECT_FAILS(cell->End(host::xlDown));
  EXPECT_FAILS(cell->Select());
  EXPECT_FALSE(cell->find_name());
  EXPECT_FAILS(second->Name());
  EXPECT_FAILS(second->Evaluate("A1"));
  EXPECT_FALSE(second->find_range("A1"));
  EXPECT_FALSE(second->find_name("Local"));
  EXPECT_EQ(second->IdentityStamp(), 0u);
  EXPECT_FAILS(name->RefersTo());
  EXPECT_EQ(name->Index(), 0);
  EXPECT_FAILS(series->Formula());
  EXPECT_FAILS(chart->Activate());
  EXPECT_FAILS(pivot->TableRange2());
  EXPECT_FAILS(desk.app->Goto(cell, true));
  EXPECT_TRUE(desk.sheet->exists());
}

TEST(Lifetime, HandlesOfAClosedBookAreDead) {
  Desk desk;
  const auto other = desk.app.Workbooks()->Add();
  const auto sheet = other->Worksheets(1);
  const auto cell = sheet->Range("A1");
  const auto name = other->AddName("Rate", "=1");
  const auto window = desk.app->ActiveWindow();
  const auto pane = window->ActivePane();
  EXPECT_FAILS(other->Close(true));  // nothing is ever saved
  other->Close(false);

  for (const Ref<host::HostObject>& handle :
       std::initializer_list<Ref<host::HostObject>>{other, sheet, cell, name, window, pane}) {
    EXPECT_FALSE(handle->exists()) << handle->TypeName();
    EXPECT_FAILS(handle->Application()) << handle->TypeName();
  }
  EXPECT_FAILS(other->Name());
  EXPECT_FAILS(other->Close(false));
  EXPECT_FAILS(other->Sheets(1));
  EXPECT_FALSE(other->find_sheet("Sheet1"));
  EXPECT_FALSE(other->find_name("Rate"));
  EXPECT_FAILS(cell->value());
  EXPECT_FAILS(window->ScrollRow());
  EXPECT_FAILS(pane->VisibleRange());
  EXPECT_EQ(desk.app->ActiveWorkbook(), desk.book);
  EXPECT_EQ(desk.app.Workbooks()->Count(), 1);
}

TEST(Lifetime, NoBookIsOpen) {
  Desk desk;
  desk.book->Close(false);
  EXPECT_FALSE(desk.app->ActiveWorkbook());
  EXPECT_FALSE(desk.app->ActiveSheet());
  EXPECT_FALSE(desk.app->Selection());
  EXPECT_FALSE(desk.app->ActiveWindow());
  EXPECT_FALSE(desk.app->ActiveChart());
  EXPECT_FALSE(desk.app->find_name("Rate"));
  EXPECT_FAILS(desk.app->Names("Rate"));
  EXPECT_EQ(desk.app.Workbooks()->Add()->Name(), "Book1");
}

}  // namespace
}  // namespace qto::embedded
