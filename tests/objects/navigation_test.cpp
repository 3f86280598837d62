#include "qto/hosts/embedded/visible_panes.hpp"
#include "tests/objects/desk.hpp"

namespace qto::embedded {
namespace {

constexpr std::int32_t right = host::xlToRight;
constexpr std::int32_t down = host::xlDown;
constexpr std::int32_t left = -4159;
constexpr std::int32_t up = -4162;

TEST(End, GoesWhereControlAndAnArrowGo) {
  const Desk desk;
  // B2:B4 and B7 filled, C2 and E2 beside; D9 holds a formula that gives "".
  for (const char* cell : {"B2", "B3", "B4", "B7", "C2", "E2"}) desk.put(cell, "1");
  desk.put("D9", "=\"\"");
  desk.at("B5")->put_NumberFormat("0.00");  // styled and empty is not filled
  struct Case {
    const char* from;
    std::int32_t direction;
    const char* to;
  };
  const Case cases[] = {
      {"B2", down, "$B$4"},  // end of its block
      {"B4", down, "$B$7"},  // from a block's end to the next filled cell
      {"B5", down, "$B$7"},  // from an empty cell
      {"B7", down, "$B$1048576"}, {"B1", down, "$B$2"},
      {"A1", down, "$A$1048576"}, {"D1", down, "$D$9"},
      {"B2", right, "$C$2"},      {"C2", right, "$E$2"},
      {"E2", right, "$XFD$2"},    {"A2", right, "$B$2"},
      {"B4", up, "$B$2"},         {"B7", up, "$B$4"},
      {"B2", up, "$B$1"},         {"E2", left, "$C$2"},
      {"C2", left, "$B$2"},       {"B2", left, "$A$2"},
      {"A1", left, "$A$1"},       {"B1048576", down, "$B$1048576"},
      {"B2:C9", down, "$B$4"},  // the first cell counts
  };
  for (const Case& c : cases)
    EXPECT_EQ(desk.at(c.from)->End(c.direction)->Address(), c.to) << c.from << ' ' << c.direction;
  EXPECT_FAILS(desk.at("A1")->End(7));
}

TEST(Hidden, OfEntireRowsAndColumns) {
  const Desk desk;
  EXPECT_EQ(desk.at("B2:B5")->EntireRow()->Hidden(), false);
  desk.at("3:4")->put_Hidden(true);
  EXPECT_EQ(desk.at("3:4")->Hidden(), true);
  EXPECT_EQ(desk.at("B2:B5")->EntireRow()->Hidden(), std::nullopt);
  EXPECT_EQ(desk.at("A1")->EntireColumn()->Hidden(), false);
  desk.at("A:XFD")->put_Hidden(true);
  EXPECT_EQ(desk.at("Q1")->EntireColumn()->Hidden(), true);
  EXPECT_FAILS(desk.at("B2:B5")->Hidden());
  EXPECT_FAILS(desk.at("B2")->put_Hidden(false));
}

TEST(View, SelectingFollowsTheActiveSheet) {
  Desk desk;
  const auto second = desk.book->AddWorksheet("Second");
  desk.at("B2:C3")->Select();
  EXPECT_EQ(shown(Variant(desk.app->Selection())), "Sheet1!B2:C3");
  EXPECT_FAILS(second->Range("A1")->Select());
  second->Activate();
  EXPECT_EQ(desk.app->ActiveSheet()->Name(), "Second");
  EXPECT_EQ(shown(Variant(desk.app->Selection())), "Second!A1");
  EXPECT_FAILS(desk.at("A1")->Select());
  desk.sheet->Select();
  EXPECT_EQ(shown(Variant(desk.app->Selection())), "Sheet1!B2:C3");  // each sheet keeps its own

  const auto other = desk.app.Workbooks()->Add();
  EXPECT_EQ(desk.app->ActiveWorkbook(), other);
  EXPECT_FAILS(desk.sheet->Select());
  desk.book->Activate();
  EXPECT_EQ(desk.app->ActiveSheet()->Name(), "Sheet1");
}

TEST(View, HiddenSheetsCannotBeActivated) {
  Desk desk;
  const auto second = desk.book->AddWorksheet("Second");
  desk.sheet->put_Visible(host::xlSheetHidden);
  EXPECT_EQ(desk.sheet->Visible(), host::xlSheetHidden);
  EXPECT_EQ(desk.app->ActiveSheet()->Name(), "Second");
  EXPECT_FAILS(desk.sheet->Activate());
  EXPECT_FAILS(desk.sheet->Select());
  EXPECT_FAILS(desk.app->Goto(desk.at("A1"), true));
  EXPECT_FAILS(second->put_Visible(host::xlSheetVeryHidden));  // the last one that shows
  EXPECT_FAILS(second->put_Visible(7));
  book_of(desk.book).structure.enabled = true;
  EXPECT_FAILS(desk.sheet->put_Visible(host::xlSheetVisible));
  book_of(desk.book).structure.enabled = false;
  desk.sheet->put_Visible(host::xlSheetVisible);
  desk.sheet->Activate();
  EXPECT_EQ(desk.app->ActiveSheet()->Name(), "Sheet1");
}

TEST(View, GotoSelectsAndScrolls) {
  Desk desk;
  desk.app.set_window_size(10, 5);
  const auto second = desk.book->AddWorksheet("Second");
  const auto pane = desk.app->ActiveWindow()->ActivePane();
  EXPECT_EQ(pane->VisibleRange()->Address(), "$A$1:$E$10");
  desk.app->Goto(second->Range("H100"), true);
  EXPECT_EQ(shown(Variant(desk.app->Selection())), "Second!H100");
  EXPECT_EQ(pane->VisibleRange()->Address(), "$H$100:$L$109");
  desk.app->Goto(second->Range("J105"), false);  // shows already
  EXPECT_EQ(pane->VisibleRange()->Address(), "$H$100:$L$109");
  desk.app->Goto(second->Range("J3"), false);
  EXPECT_EQ(pane->VisibleRange()->Address(), "$H$3:$L$12");
  desk.sheet->Activate();
  EXPECT_EQ(pane->VisibleRange()->Address(), "$A$1:$E$10");
}

TEST(View, VisibleRangePassesOverHiddenLines) {
  Desk desk;
  desk.app.set_window_size(4, 3);
  desk.at("2:5")->put_Hidden(true);
  desk.at("B:B")->put_Hidden(true);
  const auto window = desk.app->ActiveWindow();
  const auto pane = window->ActivePane();
  EXPECT_EQ(pane->VisibleRange()->Address(), "$A$1:$D$8");
  pane->SmallScroll(-2, -1);
  EXPECT_EQ(window->ScrollRow(), 3);
  EXPECT_EQ(window->ScrollColumn(), 2);
  pane->SmallScroll(2'147'483'647, 2'147'483'647);
  EXPECT_EQ(window->ScrollRow(), 1);
  pane->SmallScroll(-2'147'483'647 - 1, 0);
  EXPECT_EQ(window->ScrollRow(), 1'048'576);
  EXPECT_EQ(pane->VisibleRange()->Address(), "$A$1048576:$D$1048576");
  window->put_ScrollRow(20);
  window->put_ScrollColumn(30);
  EXPECT_EQ(pane->VisibleRange()->Address(), "$AD$20:$AF$23");
  EXPECT_FAILS(window->put_ScrollRow(0));
  EXPECT_FAILS(window->put_ScrollColumn(16'385));
}

TEST(View, TallRowsAndWideColumnsLeaveRoomForFewer) {
  Desk desk;
  desk.app.set_window_size(10, 5);
  embedded::SheetLayout& layout = sheet_of(desk.sheet).layout;
  const auto pane = desk.app->ActiveWindow()->ActivePane();
  layout.set_row({2, 100, false});
  layout.set_columns(2, 3, {20, false});
  EXPECT_EQ(pane->VisibleRange()->Address(), "$A$1:$C$5");  // the last ones in part
  layout.set_row({2, 400, false});
  EXPECT_EQ(pane->VisibleRange()->Address(), "$A$1:$C$2");
  layout.default_height = 30;
  desk.app->ActiveWindow()->put_ScrollRow(10);
  EXPECT_EQ(pane->VisibleRange()->Address(), "$A$10:$C$14");
}

TEST(View, FrozenPanesStayAndTheRestScrolls) {
  Desk desk;
  desk.app.set_window_size(10, 5);
  embedded::Sheet& sheet = sheet_of(desk.sheet);
  sheet.frozen = {{1, 1}, 3, 1};
  sheet.scroll = {4, 2};
  const auto window = desk.app->ActiveWindow();
  const auto pane = window->ActivePane();
  const auto in_view = [&] { return pane->VisibleRange()->Address(false, false); };
  EXPECT_EQ(in_view(), "A1:A3");  // the pane of A1, which is selected
  desk.app->Goto(desk.at("J100"), true);
  EXPECT_EQ(in_view(), "J100:M106");
  desk.app->Goto(desk.at("J2"), true);
  EXPECT_EQ(in_view(), "J1:M3");
  EXPECT_EQ(window->ScrollRow(), 100);
  desk.app->Goto(desk.at("A50"), true);
  EXPECT_EQ(in_view(), "A50:A56");
  window->put_ScrollRow(1);
  window->put_ScrollColumn(1);
  EXPECT_EQ(window->ScrollRow(), 4);
  EXPECT_EQ(window->ScrollColumn(), 2);
  pane->SmallScroll(5, 5);
  EXPECT_EQ(window->ScrollRow(), 4);
  std::string all;
  for (const Rect& block : visible_panes(desk.app)) all += qto::address_of(block) + " ";
  EXPECT_EQ(all, "A1:A3 B1:E3 A4:A10 B4:E10 ");
  sheet.frozen = {{1, 1}, 200, 0};  // higher than the window: one line scrolls all the same
  desk.app->Goto(desk.at("B300"), true);
  EXPECT_EQ(in_view(), "B300:F300");
}

TEST(View, AMillionRowsAreHiddenAndShownAtOnce) {
  Desk desk;
  embedded::SheetLayout& layout = sheet_of(desk.sheet).layout;
  for (int row = 500'001; row <= 600'000; ++row) layout.set_row({row, 20, false});
  const auto all = desk.at("C:C")->EntireRow();
  all->put_Hidden(true);
  EXPECT_EQ(all->Hidden(), true);
  EXPECT_EQ(all->EntireColumn()->Hidden(), false);
  desk.at("2:500001")->put_Hidden(false);
  EXPECT_EQ(all->Hidden(), std::nullopt);
  EXPECT_EQ(desk.at("2:500001")->Hidden(), false);
  EXPECT_EQ(layout.row(500'001).height, 20);
  EXPECT_EQ(layout.row_height(500'002), 0);
  all->put_Hidden(false);
  EXPECT_EQ(layout.row_height(500'002), 20);
  EXPECT_EQ(layout.row_height(7), 15);
}

TEST(View, ABookOpensOnTheSheetThatWasInFront) {
  Desk desk;
  for (const auto visibility : {SheetVisibility::visible, SheetVisibility::hidden}) {
    auto book = std::make_unique<Book>();
    book->name = visibility == SheetVisibility::visible ? "A.xlsx" : "B.xlsx";
    book->add_sheet("One");
    book->add_sheet("Two").visibility = visibility;
    book->active_sheet = 1;
    desk.app.adopt(std::move(book));
    EXPECT_EQ(desk.app->ActiveSheet()->Name(),
              visibility == SheetVisibility::visible ? "Two" : "One");
  }
}

}  // namespace
}  // namespace qto::embedded
