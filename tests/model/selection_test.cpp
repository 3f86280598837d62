#include <gtest/gtest.h>

#include "qto/hosts/embedded/book/book.hpp"
#include "qto/links/main.hpp"
#include "qto/model/model_part.hpp"
#include "tests/support/text_book.hpp"

namespace qto::test {
namespace {

std::string place_of(const Ref<Object>& object) {
  if (const auto range = ref_cast<host::Range>(object))
    return range->Worksheet()->Name() + "!" + range->Address(false, false);
  if (const auto series = ref_cast<host::Series>(object)) return series->Name();
  if (const auto sheet = ref_cast<host::Sheet>(object)) return sheet->Name();
  return object ? "?" : "nothing";
}

class Selection : public testing::Test {
 protected:
  Selection() {
    books_.add("A1=1; B7==A1; H200=5; Costs!C3=2; name Rate=Sheet1!$A$1");
    books_.app.set_window_size(20, 10);
    Main::set_shared_application(books_.app);
  }
  ~Selection() override { Main::set_shared_application(nullptr); }

  /// A part that answers AskToUnhide and writes down what it was asked.
  Ref<ModelPart> part(const Ref<Object>& object, std::string_view type = "Range") {
    auto made = make_ref<ModelPart>();
    made->Create(object, type);
    made->SetResultsValues();
    made->AskToUnhide.add([this](Ref<Object>& hidden, const std::string& address,
                                 Ref<Object>& sheet, bool& unhide, std::string& password) {
      EXPECT_FALSE(unhide);
      EXPECT_EQ(password, "");
      asked_ += place_of(hidden) + " " + address + " " + place_of(sheet) + ";";
      unhide = answer_;
      password = password_;
    });
    return made;
  }
  Ref<ModelPart> cell(std::string_view address) { return part(books_.range(address)); }
  Ref<host::Range> lines(std::string_view address) { return books_.range(address); }
  embedded::Sheet& sheet(int position) { return *books_.models[0]->sheets()[position]; }
  /// Protects Costs; `hash` is that of a password, or "".
  void protect(const char* hash, bool format_columns = false) {
    auto& protection = sheet(1).protection;
    protection.enabled = true;
    protection.hash = hash;
    protection.format_columns = format_columns;
  }
  std::string selected() { return place_of(books_.app->Selection()); }
  std::string in_view() {
    return books_.app->ActiveWindow()->ActivePane()->VisibleRange()->Address(false, false);
  }
  bool settings_are_on() {
    return books_.app->ScreenUpdating() && books_.app->EnableEvents() &&
           books_.app->DisplayAlerts();
  }

  Books books_;
  std::string asked_;
  bool answer_ = true;
  std::string password_;
};

TEST_F(Selection, ARangeComesToTheMiddleOfTheWindow) {
  const struct {
    const char* item;
    const char* in_view;
  } rows[] = {
      {"H200", "C190:L209"},        // half the window above and to the left
      {"B7", "A1:J20"},             // never above row 1 or left of column A
      {"H13:I14", "C3:L22"},        // by its first cell
      {"K15", "F5:O24"},            // half a row rounds to the even neighbour
      {"A1:Z400", "A1:J20"},        // larger than the window: its first cell shows
      {"D65600", "C65599:L65618"},  // beyond the last row that is scrolled to at once
      {"XFD1048576", "XFC1048575:XFD1048576"},
      {"C:C", "A1:J20"},
  };
  for (const auto& row : rows) {
    EXPECT_EQ(cell(row.item)->SelectItem(), qtoSelectOK);
    EXPECT_EQ(selected(), std::string("Sheet1!") + row.item);
    EXPECT_EQ(in_view(), row.in_view) << row.item;
  }
  EXPECT_EQ(cell("Costs!C3")->SelectItem(), qtoSelectOK);
  EXPECT_EQ(selected(), "Costs!C3");
  EXPECT_TRUE(settings_are_on());
  EXPECT_EQ(asked_, "");
}

TEST_F(Selection, AnOddWindowRoundsHalvesToTheEvenNeighbour) {
  books_.app.set_window_size(5, 3);
  EXPECT_EQ(cell("K10")->SelectItem(), qtoSelectOK);
  EXPECT_EQ(in_view(), "J8:L12");  // 10 - 2.5 to 8, 11 - 1.5 to 10
  EXPECT_EQ(cell("L11")->SelectItem(), qtoSelectOK);
  EXPECT_EQ(in_view(), "J8:L12");  // 11 - 2.5 to 8, 12 - 1.5 to 10
}

TEST_F(Selection, GoesToTheBookOfThePart) {
  const auto item = cell("B7");
  books_.add("A1=1", "Other.xlsx");
  EXPECT_EQ(item->SelectItem(), qtoSelectOK);
  EXPECT_EQ(books_.app->ActiveWorkbook()->Name(), "Plan.xlsx");
  EXPECT_EQ(selected(), "Sheet1!B7");
}

TEST_F(Selection, ClosedBooksNamesAndUnknownParts) {
  const auto name = part(books_.opened[0]->Names("Rate"), "Name");
  EXPECT_EQ(name->SelectItem(), qtoNotSelectableObject);
  auto unknown = make_ref<ModelPart>();
  unknown->Create(nullptr, "Range", "[Far.xlsx]Sheet1!A1");
  EXPECT_EQ(unknown->SelectItem(), qtoBookNotOpen);
  const auto lost = cell("Costs!C3");
  const auto known = cell("B7");
  books_.models[0]->remove_sheet(sheet(1));
  books_.opened[0]->Close(false);
  EXPECT_EQ(known->SelectItem(), qtoBookNotOpen);
  EXPECT_EQ(lost->SelectItem(), qtoBookNotOpen);
  EXPECT_EQ(asked_, "");
}

TEST_F(Selection, HiddenLinesAndSheetsAreShownOnlyWhenAllowed) {
  const auto item = cell("Costs!C3");
  for (const auto visible : {host::xlSheetHidden, host::xlSheetVeryHidden}) {
    books_.range("Costs!2:9")->put_Hidden(true);
    books_.range("Costs!C:D")->put_Hidden(true);
    books_.opened[0]->Sheets("Costs")->put_Visible(visible);
    answer_ = false;
    EXPECT_EQ(item->SelectItem(), qtoItemHidden);
    EXPECT_TRUE(sheet(1).layout.row_hidden(3));
    EXPECT_EQ(books_.opened[0]->Sheets("Costs")->Visible(), visible);
    answer_ = true;
    EXPECT_EQ(item->SelectItem(), qtoSelectOK);
    EXPECT_EQ(std::exchange(asked_, ""), "Costs!C3 C3 Costs;Costs!C3 C3 Costs;");
    EXPECT_EQ(selected(), "Costs!C3");
    EXPECT_FALSE(sheet(1).layout.row_hidden(3) || sheet(1).layout.column_hidden(3));
    EXPECT_TRUE(sheet(1).layout.row_hidden(4) && sheet(1).layout.column_hidden(4));
    EXPECT_EQ(item->SelectItem(), qtoSelectOK);  // shows now
    EXPECT_EQ(asked_, "");
  }
}

TEST_F(Selection, PartlyHiddenBlocksCountAsShown) {
  books_.range("3:5")->put_Hidden(true);
  EXPECT_EQ(cell("B2:B6")->SelectItem(), qtoSelectOK);
  EXPECT_EQ(asked_, "");
  EXPECT_EQ(cell("B3:B5")->SelectItem(), qtoSelectOK);
  EXPECT_EQ(asked_, "Sheet1!B3:B5 B3:B5 Sheet1;");
}

TEST_F(Selection, ProtectionYieldsToItsPasswordOnly) {
  const struct {
    const char* hash;  // the legacy hash of "password", or none
    const char* password;
    qtoReasonNotSelect result;
  } rows[] = {{"83AF", "", qtoCouldNotUnhide},
              {"83AF", "Password", qtoCouldNotUnhide},
              {"83AF", "password", qtoSelectOK},
              {"", "", qtoCouldNotUnhide},  // without an answer nothing is unprotected
              {"", "any", qtoSelectOK}};
  const auto item = cell("Costs!C3");
  for (const auto& row : rows) {
    sheet(1).protection = {};
    books_.range("Costs!C:C")->put_Hidden(true);
    protect(row.hash);
    password_ = row.password;
    EXPECT_EQ(item->SelectItem(), row.result) << row.hash << ' ' << row.password;
    EXPECT_EQ(sheet(1).protection.enabled, row.result != qtoSelectOK);
    EXPECT_EQ(sheet(1).layout.column_hidden(3), row.result != qtoSelectOK);
  }
}

TEST_F(Selection, AProtectionMayLeaveLinesToEverybody) {
  books_.range("Costs!C:C")->put_Hidden(true);
  protect("83AF", true);
  EXPECT_EQ(cell("Costs!C3")->SelectItem(), qtoSelectOK);
  sheet(1).protection = {};
  books_.range("Costs!3:3")->put_Hidden(true);
  protect("83AF", true);
  EXPECT_EQ(cell("Costs!C3")->SelectItem(), qtoCouldNotUnhide);
}

TEST_F(Selection, AProtectedStructureKeepsItsSheetsHidden) {
  books_.opened[0]->Sheets("Costs")->put_Visible(host::xlSheetHidden);
  books_.models[0]->structure.enabled = true;
  EXPECT_EQ(cell("Costs!C3")->SelectItem(), qtoCouldNotUnhide);
  EXPECT_EQ(selected(), "Sheet1!A1");
}

TEST_F(Selection, AHandlerMayPutAnotherRangeInItsPlace) {
  const auto item = cell("B7");
  const std::string key = item->UniqueKey();
  books_.range("7:7")->put_Hidden(true);
  const int token =
      item->AskToUnhide.add([&](Ref<Object>& hidden, const std::string&, Ref<Object>&, bool&,
                                std::string&) { hidden = books_.range("Costs!D9"); });
  EXPECT_EQ(item->SelectItem(), qtoSelectOK);
  EXPECT_EQ(selected(), "Costs!D9");
  EXPECT_EQ(place_of(item->UnderlyingObject()), "Costs!D9");
  EXPECT_EQ(item->AddressShort(), "B7");
  EXPECT_EQ(item->UniqueKey(), key);
  EXPECT_TRUE(sheet(0).layout.row_hidden(7));
  item->AskToUnhide.remove(token);
}

TEST_F(Selection, AnAnswerThatIsNoRangeIsReportedAndNotTaken) {
  const auto item = cell("B7");
  books_.range("7:7")->put_Hidden(true);
  const int token = item->AskToUnhide.add(
      [&](Ref<Object>& hidden, const std::string&, Ref<Object>&, bool& unhide, std::string&) {
        hidden = books_.opened[0]->Worksheets(1);
        unhide = true;
      });
  const Reports reports;
  EXPECT_EQ(item->SelectItem(), qtoNotSelectableObject);
  EXPECT_EQ(reports.text(), " !13");
  EXPECT_EQ(place_of(item->UnderlyingObject()), "Sheet1!B7");
  EXPECT_EQ(item->Formula(), "=A1");
  item->AskToUnhide.remove(token);
}

/// A cell of a host that refuses what the application asks of it.
TEST_F(Selection, ARangeThatCannotBeShownLeavesTheSettingsOn) {
  class Stubborn final : public host::Range {
   public:
    explicit Stubborn(Ref<host::Range> real) : real_(std::move(real)) {}
    Ref<host::HostObject> Parent() const override { return real_->Parent(); }
    bool exists() const noexcept override { return true; }
    Ref<host::Worksheet> Worksheet() const override { return real_->Worksheet(); }
    Rect block() const noexcept override { return real_->block(); }
    Ref<host::Range> Cells(int row, int column) const override { return real_->Cells(row, column); }
    Ref<host::Range> Rows(int k) const override { return real_->Rows(k); }
    Ref<host::Range> Columns(int k) const override { return real_->Columns(k); }
    std::string Address(bool r, bool c, int style, bool external) const override {
      return real_->Address(r, c, style, external);
    }
    std::string AddressLocal(bool r, bool c, int style, bool external) const override {
      return real_->AddressLocal(r, c, style, external);
    }
    bool HasFormula() const override { return false; }
    std::string Formula() const override { return ""; }
    std::string FormulaLocal() const override { return ""; }
    std::string FormulaR1C1Local() const override { return ""; }
    Variant value() const override { return {}; }
    std::string Text() const override { return ""; }
    Ref<host::DefinedName> find_name() const override { return nullptr; }
    Ref<host::Range> End(int direction) const override { return real_->End(direction); }
    Ref<host::Range> EntireRow() const override { return real_->EntireRow(); }
    Ref<host::Range> EntireColumn() const override { return real_->EntireColumn(); }
    std::optional<bool> Hidden() const override { return real_->Hidden(); }
    void put_Hidden(bool) override {}
    void Select() override {}
    void put_value(const Variant&) override {}
    void put_Formula(std::string_view) override {}
    void put_FormulaArray(std::string_view) override {}
    std::string NumberFormat() const override { return ""; }
    void put_NumberFormat(std::string_view) override {}

   private:
    Ref<host::Application> application() const override { return real_->Application(); }
    Ref<host::Range> real_;
  };
  const auto item = part(make_ref<Stubborn>(books_.range("B7:B8")));
  const Reports reports;
  EXPECT_EQ(item->SelectItem(), qtoNotSelectableObject);
  EXPECT_TRUE(settings_are_on());
  EXPECT_EQ(reports.text(), "");
  EXPECT_EQ(selected(), "Sheet1!A1");
}

TEST_F(Selection, Series) {
  const embedded::ChartSeries sales{"", "Sales", "", "Sheet1!$B$2:$D$2", 1, 51};
  sheet(1).charts.push_back({"Chart 1", {sales}});
  books_.models[0]
      ->add_sheet("Diagram", embedded::SheetKind::chart)
      .charts.push_back({"", {sales}});
  const auto book = books_.opened[0];
  const auto on_sheet = part(
      book->Worksheets("Costs")->ChartObjects("Chart 1")->Chart()->SeriesCollection()[0], "Series");
  const auto diagram = ref_cast<host::Chart>(book->Sheets("Diagram"));
  const auto on_chart = part(diagram->SeriesCollection()[0], "Series");
  books_.add("A1=1", "Other.xlsx");
  EXPECT_EQ(on_sheet->SelectItem(), qtoSelectOK);
  EXPECT_EQ(books_.app->ActiveSheet()->Name(), "Costs");
  EXPECT_EQ(books_.app->ActiveChart()->Name(), "Costs Chart 1");
  EXPECT_EQ(selected(), "Sales");

  diagram->put_Visible(host::xlSheetVeryHidden);
  answer_ = false;
  EXPECT_EQ(on_chart->SelectItem(), qtoItemHidden);
  EXPECT_EQ(asked_, "Diagram Diagram Diagram;");
  answer_ = true;
  books_.models[0]->structure.enabled = true;
  EXPECT_EQ(on_chart->SelectItem(), qtoCouldNotUnhide);
  books_.models[0]->structure.enabled = false;
  EXPECT_EQ(on_chart->SelectItem(), qtoSelectOK);
  EXPECT_EQ(books_.app->ActiveSheet()->Name(), "Diagram");
  EXPECT_EQ(selected(), "Sales");
}

TEST_F(Selection, ASeriesThatIsGoneIsReported) {
  const embedded::ChartSeries sales{"", "Sales", "", "Sheet1!$B$2:$D$2", 1, 51};
  sheet(1).charts.push_back({"Chart 1", {sales}});
  const auto item = part(books_.opened[0]
                             ->Worksheets("Costs")
                             ->ChartObjects("Chart 1")
                             ->Chart()
                             ->SeriesCollection()[0],
                         "Series");
  sheet(1).charts.front().name = "Renamed";
  const Reports reports;
  EXPECT_EQ(item->SelectItem(), qtoNotSelectableObject);
  EXPECT_EQ(reports.text(), " !9");
}

TEST_F(Selection, PivotCellsAreSelectedAsRanges) {
  sheet(1).pivots.push_back({"Pivot", {{2, 2}, {5, 4}}, "Sheet1!R1C1:R9C2"});
  const auto item = part(books_.range("Costs!C3"), "Pivot Table");
  EXPECT_EQ(item->Formula(), "Sheet1!R1C1:R9C2");
  EXPECT_EQ(item->SelectItem(), qtoSelectOK);
  EXPECT_EQ(selected(), "Costs!C3");
}

}  // namespace
}  // namespace qto::test
