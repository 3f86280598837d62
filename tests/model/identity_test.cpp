#include <gtest/gtest.h>

#include "qto/hosts/embedded/objects/editing/sheet_edits.hpp"
#include "qto/links/main.hpp"
#include "qto/model/series_formula.hpp"
#include "tests/support/text_book.hpp"

namespace qto::test {
namespace {

constexpr std::int32_t wrong_object = -2147221503;
constexpr std::int32_t out_of_range = -2147221500;

class Identity : public testing::Test {
 protected:
  Identity() { Main::set_shared_application(books_.app); }
  ~Identity() override { Main::set_shared_application(nullptr); }

  void open(std::string_view text, std::string path = "C:\\Models") {
    books_.add(text, "Plan.xls", std::move(path));
  }
  static Ref<ModelPart> part(const Ref<Object>& object, std::string_view type,
                             std::string_view unknown_name = {}) {
    auto made = make_ref<ModelPart>();
    made->Create(object, type, unknown_name);
    return made;
  }
  /// Two series: embedded on Sheet1 and on the chart sheet Diagram; the first with a surface twin.
  void add_charts() {
    const embedded::ChartSeries sales{"", "Sales", "", "Sheet1!$B$2:$D$2", 1, 51};
    const embedded::ChartSeries surface{"", "Ground", "", "Sheet1!$B$2:$D$2", 2, 83};
    auto& model = *books_.models[0];
    model.sheets()[0]->charts.push_back({"Chart 1", {sales, surface}});
    model.add_sheet("Diagram", embedded::SheetKind::chart).charts.push_back({"", {sales}});
  }
  Ref<host::Series> embedded_series(int position) {
    return books_.opened[0]->Worksheets(1)->ChartObjects("Chart 1")->Chart()->SeriesCollection().at(
        position);
  }

  Books books_;
};

TEST_F(Identity, NewPartsAreUnknown) {
  const auto made = make_ref<ModelPart>();
  EXPECT_TRUE(made->IsUnknown());
  EXPECT_TRUE(made->Exists());
  EXPECT_FALSE(made->IsConstant());
  EXPECT_FALSE(made->ResultsSet());
  EXPECT_EQ(made->ObjectType(), "");
  EXPECT_EQ(made->DirectPrecedents(), nullptr);
  EXPECT_EQ(made->AllPrecedents(), nullptr);
  EXPECT_EQ(made->ExcelApplication(), books_.app.ref());
}

TEST_F(Identity, KeysNamePathBookSheetChartAndAddress) {
  open("A1=1; B2=1; B7==A1; Inputs!B7==A1; name Rate=Sheet1!$A$1; name Inputs!Own=Inputs!$A$1");
  add_charts();
  const auto book = books_.opened[0];
  const struct {
    Ref<Object> object;
    const char* type;
    const char* key;
  } rows[] = {
      {books_.range("Inputs!B7"), "Range", "'C:\\Models\\[Plan.xls]Inputs'!B7"},
      {books_.range("B2:D9"), "Range", "'C:\\Models\\[Plan.xls]Sheet1'!B2:D9"},
      {book->Names("Rate"), "Name", "'C:\\Models/[Plan.xls]'!Rate"},
      {books_.opened[0]->Worksheets("Inputs")->Names("Own"), "Name",
       "'C:\\Models/[Plan.xls]Inputs'!Inputs!Own"},
      {embedded_series(0), "Series", "'C:\\Models/[Plan.xls]Sheet1'(Chart 1)!Sales"},
      {ref_cast<host::Chart>(book->Sheets("Diagram"))->SeriesCollection()[0], "Series",
       "'C:\\Models/[Plan.xls]Diagram'!Sales"},
      {nullptr, "!LINK", "Excel|x!y"},
  };
  for (const auto& row : rows) {
    const auto made = part(row.object, row.type, "Excel|x!y");
    EXPECT_EQ(made->ObjectType(), row.type);
    EXPECT_EQ(made->UniqueKey(), row.key);
    EXPECT_EQ(made->Key(), PartKey::of_text(row.key));
    EXPECT_EQ(made->IsUnknown(), !row.object);
  }
}

TEST_F(Identity, OfAnInternetBookUsesSlashes) {
  open("A1=1", "http://host/x");
  const auto made = part(books_.range("A1"), "Range");
  EXPECT_FALSE(made->LocalFile());
  EXPECT_EQ(made->UniqueKey(), "'http://host/x/[Plan.xls]Sheet1'!A1");
}

TEST_F(Identity, RelativeNamesAreKeyedByTheCellThatUsesThem) {
  open("A1=1; name Next=Sheet1!B1");  // seen from A1
  const auto sheet = books_.opened[0]->Worksheets(1);
  sheet->Activate();
  books_.range("C3")->Select();
  for (const auto& [parent, refers_to] :
       {std::pair{"B7", "=Sheet1!"}, std::pair{"C7", "=Sheet1!"}}) {
    auto made = make_ref<ModelPart>();
    made->putref_ParentRange(books_.range(parent));
    made->Create(books_.opened[0]->Names("Next"), "Name");
    EXPECT_EQ(made->UniqueKey(),
              "[Plan.xls]Sheet1!" + std::string(parent) + "-'C:\\Models/[Plan.xls]'!Next");
    EXPECT_TRUE(made->Formula().starts_with(refers_to));
    EXPECT_EQ(ref_cast<host::Range>(books_.app->Selection())->Address(false, false), "C3");
  }
  EXPECT_TRUE(books_.app->ScreenUpdating());
}

/// The name Next of Plan.xls, that fails in one of its readings.
class FlakyName final : public host::DefinedName {
 public:
  FlakyName(Ref<host::DefinedName> real, int fails_at)
      : real_(std::move(real)), countdown_(fails_at) {}
  Ref<host::HostObject> Parent() const override { return real_->Parent(); }
  bool exists() const noexcept override { return true; }
  std::string Name() const override { return real_->Name(); }
  std::string NameLocal() const override { return real_->NameLocal(); }
  int Index() const override { return real_->Index(); }
  bool Visible() const override { return true; }
  std::string RefersTo() const override { return read(&host::DefinedName::RefersTo); }
  std::string RefersToLocal() const override { return read(&host::DefinedName::RefersToLocal); }
  std::string RefersToR1C1Local() const override { return real_->RefersToR1C1Local(); }
  bool failed() const noexcept { return countdown_ <= 0; }

 private:
  Ref<host::Application> application() const override { return real_->Application(); }
  std::string read(std::string (host::DefinedName::*member)() const) const {
    if (--countdown_ == 0) throw host::HostFailure(host::general_failure, "the host is busy");
    return (real_.get()->*member)();
  }
  Ref<host::DefinedName> real_;
  mutable int countdown_;
};

TEST_F(Identity, ReadingARelativeNameLeavesNoTraceEvenWhenTheHostFails) {
  open("A1=1; Other!B2=2; Third!C3=3; name Next=Sheet1!B1");
  const auto book = books_.opened[0];
  const auto selected = [&] {
    std::string out = books_.app->ActiveWorkbook()->Name();
    out += " " + books_.app->ActiveSheet()->Name();
    for (const auto& sheet : books_.models[0]->sheets())
      out += " " + sheet->name + "!" + qto::address_of(sheet->selection);
    return out;
  };
  for (const char* address : {"Other!B2", "Third!C3"}) {
    books_.range(address)->Worksheet()->Activate();
    books_.range(address)->Select();
  }
  const auto far = books_.add("A1=1", "Far.xls");
  int failures = 0;
  for (int n = 1;; ++n) {
    for (const auto& active : {far, book}) {
      active->Activate();
      const std::string before = selected();
      const Reports reports;
      const auto name = make_ref<FlakyName>(book->Names("Next"), n);
      const auto made = make_ref<ModelPart>();
      made->putref_ParentRange(books_.range("Other!D5"));
      made->Create(name, "Name");
      EXPECT_EQ(selected(), before) << n;
      EXPECT_TRUE(books_.app->ScreenUpdating() && books_.app->EnableEvents() &&
                  books_.app->DisplayAlerts());
      EXPECT_EQ(reports.text(), name->failed() ? " !1004" : "");
      if (name->failed()) {
        ++failures;
        continue;
      }
      EXPECT_EQ(made->Formula(), "=Sheet1!E5");
      EXPECT_EQ(selected(), before);
    }
    if (failures < 2 * n) break;
  }
  EXPECT_EQ(failures, 8);  // two readings, the one from the parent, and the local one
}

TEST_F(Identity, RelativeNamesAreReadFromHiddenSheetsToo) {
  open("A1=1; Calc!B2=2; name Next=Sheet1!B1");
  books_.opened[0]->Sheets("Calc")->put_Visible(host::xlSheetVeryHidden);
  const Reports reports;
  auto made = make_ref<ModelPart>();
  made->putref_ParentRange(books_.range("Calc!D5"));
  made->Create(books_.opened[0]->Names("Next"), "Name");
  EXPECT_EQ(made->Formula(), "=Sheet1!E5");
  books_.opened[0]->Sheets("Calc")->put_Visible(host::xlSheetVisible);
  books_.opened[0]->Sheets("Sheet1")->put_Visible(host::xlSheetHidden);
  made = make_ref<ModelPart>();
  made->putref_ParentRange(books_.range("Calc!D5"));
  made->Create(books_.opened[0]->Names("Next"), "Name");
  EXPECT_EQ(made->Formula(), "=Sheet1!E5");
  EXPECT_EQ(reports.text(), "");
}

TEST_F(Identity, ARelativeNameWithoutAParentIsReported) {
  open("A1=1; name Next=Sheet1!B1");
  const Reports reports;
  const auto made = part(books_.opened[0]->Names("Next"), "Name");
  EXPECT_EQ(made->UniqueKey(), "");
  EXPECT_EQ(reports.text(), " !91");
  auto parts = make_ref<ModelParts>();
  auto added = made;
  parts->AddExisting(added);
  EXPECT_EQ(parts->Count(), 0);
}

TEST_F(Identity, UnsupportedAndMismatchedObjects) {
  open("A1=1");
  EXPECT_EQ(raised_by([&] { part(books_.range("A1"), "Chart"); }), wrong_object);
  EXPECT_EQ(raised_by([&] { part(books_.range("A1"), "range"); }), wrong_object);
  EXPECT_EQ(raised_by([&] { part(books_.range("A1"), ""); }), wrong_object);
  for (const char* type : {"Name", "Series"})
    EXPECT_EQ(raised_by([&] { part(books_.range("A1"), type); }), wrong_object) << type;
  for (const char* type : {"Range", "Pivot Table", "Name", "Series"})
    EXPECT_EQ(raised_by([&] { part(books_.opened[0], type); }), wrong_object) << type;
  const auto made = part(books_.range("A1"), "Range");
  EXPECT_EQ(raised_by([&] { made->Create(books_.opened[0], "Name"); }), wrong_object);
  EXPECT_EQ(made->AddressLong(qtoaddressSheet), "'Sheet1'!A1");  // as it was
  EXPECT_EQ(made->Formula(), "1");
}

TEST_F(Identity, SettersAreForUnknownParts) {
  open("A1=1");
  const auto known = part(books_.range("A1"), "Range");
  EXPECT_EQ(raised_by([&] { known->put_WorkBookName("x"); }), out_of_range);
  EXPECT_EQ(raised_by([&] { known->put_WorkBookPath("x"); }), out_of_range);
  EXPECT_EQ(raised_by([&] { known->put_WorkSheetName("x"); }), out_of_range);
  EXPECT_EQ(raised_by([&] { known->put_AddressShort("x"); }), out_of_range);

  const auto unknown = part(nullptr, "Range", "[Other.xls]Data!A1");
  EXPECT_EQ(unknown->AddressShort(), "[Other.xls]Data!A1");
  EXPECT_EQ(unknown->AddressShortLocal(), "[Other.xls]Data!A1");
  EXPECT_EQ(unknown->value(), Variant(""));
  EXPECT_EQ(unknown->Text(), "");
  EXPECT_TRUE(unknown->HasConstant());
  unknown->put_WorkBookPath("D:\\Data\\");
  unknown->put_WorkBookName("Other.xls");
  unknown->put_WorkSheetName("Data");
  unknown->put_AddressShort("A1");
  EXPECT_TRUE(unknown->LocalFile());
  EXPECT_EQ(unknown->WorkBookFullName(), "D:\\Data\\Other.xls");
  EXPECT_EQ(unknown->UniqueKey(), "'D:\\Data\\[Other.xls]Data'!A1");
  unknown->put_WorkBookPath("http://host/x/");
  EXPECT_FALSE(unknown->LocalFile());
  EXPECT_EQ(unknown->WorkBookFullName(), "http://host/x/Other.xls");
  EXPECT_EQ(unknown->UniqueKey(), "'D:\\Data\\[Other.xls]Data'!A1");  // fixed when first read
  EXPECT_EQ(unknown->Sheet(), nullptr);
}

TEST_F(Identity, LongAddressesByQualifier) {
  open("A1=1; Inputs!B7=1; name Rate=Sheet1!$A$1");
  add_charts();
  const struct {
    Ref<ModelPart> part;
    const char* sheet;
    const char* book;
    const char* path;
    const char* chart;  // "" where that is refused
  } rows[] = {
      {part(books_.range("Inputs!B7"), "Range"), "'Inputs'!B7", "'[Plan.xls]Inputs'!B7",
       "'C:\\Models\\[Plan.xls]Inputs'!B7", ""},
      {part(books_.opened[0]->Names("Rate"), "Name"), "Rate", "'[Plan.xls]'!Rate",
       "'C:\\Models/[Plan.xls]'!Rate", ""},
      {part(embedded_series(0), "Series"), "'Sheet1'(Chart 1)!Sales",
       "'[Plan.xls]Sheet1'(Chart 1)!Sales", "'C:\\Models/[Plan.xls]Sheet1'(Chart 1)!Sales",
       "(Chart 1)!Sales"},
      {part(nullptr, "!LINK", "a|b!c"), "a|b!c", "a|b!c", "a|b!c", "a|b!c"},
  };
  for (const auto& row : rows) {
    EXPECT_EQ(row.part->AddressLong(qtoaddressSheet), row.sheet);
    EXPECT_EQ(row.part->AddressLong(qtoaddressBook), row.book);
    EXPECT_EQ(row.part->AddressLong(qtoaddressPath), row.path);
    if (*row.chart)
      EXPECT_EQ(row.part->AddressLong(qtoAddressChart), row.chart);
    else
      EXPECT_EQ(raised_by([&] { row.part->AddressLong(qtoAddressChart); }), out_of_range);
  }
  for (const int qualifier : {0, 5})
    EXPECT_EQ(raised_by([&] { rows[0].part->AddressLong(qtoAddressType(qualifier)); }),
              out_of_range);
}

TEST_F(Identity, SeriesReadTheirValuesReference) {
  open("A1=1");
  add_charts();
  const auto sales = part(embedded_series(0), "Series");
  EXPECT_EQ(sales->Formula(), "=Sheet1!$B$2:$D$2");
  EXPECT_FALSE(sales->HasConstant());
  EXPECT_TRUE(sales->value().is_null());
  const auto surface = part(embedded_series(1), "Series");
  EXPECT_EQ(surface->Formula(), "");
  EXPECT_TRUE(surface->HasConstant());
  const auto drill = make_ref<DrillDown>();
  drill->putref_StartUnderlyingObject(embedded_series(0));
  drill->FindInputs();
  EXPECT_EQ(drill->InputCells()->Count(), 3);
  EXPECT_EQ(drill->StartModelPart()->Workbook(), books_.opened[0]);
}

TEST_F(Identity, SeriesArgumentsAreToldApart) {
  const struct {
    const char* formula;
    const char* values;
  } rows[] = {
      {"=SERIES(Sheet1!$A$2,Sheet1!$B$1:$D$1,Sheet1!$B$2:$D$2,1)", "Sheet1!$B$2:$D$2"},
      {"=SERIES(,,Sheet1!$B$2,1,Sheet1!$B$3)", "Sheet1!$B$2"},
      {"=SERIES(,,(Sheet1!$B$2,Sheet1!$D$2:$D$4),1)", "(Sheet1!$B$2,Sheet1!$D$2:$D$4)"},
      {"=SERIES(\"a, \"\"b\"\" (c\",{\"x,y\",\"z\"},{1,2},1)", "{1,2}"},
      {"=SERIES(,,'It''s, (so)'!$A$1,1)", "'It''s, (so)'!$A$1"},
      {"=SERIES(,,,1)", ""},
  };
  for (const auto& row : rows) {
    const auto arguments = series_arguments(row.formula);
    ASSERT_GE(arguments.size(), 4u) << row.formula;
    EXPECT_EQ(arguments[2], row.values);
  }
  for (const char* broken :
       {"", "=SERIES", "=SERIES(a,b", "=SERIES('a,b,c,1)", "=SERIES({a,b,c,1)"})
    EXPECT_TRUE(series_arguments(broken).empty()) << broken;
}

TEST_F(Identity, SeriesOfSeveralRangesRestOnAllOfThem) {
  open("B2=1; D2=2; D3=3; D4=4; Sheet5!A1=7");
  auto& charts = books_.models[0]->sheets()[0]->charts;
  charts.push_back({"Chart 1", {}});
  const auto inputs_of = [&](const char* values) {
    charts[0].series = {{"\"a, b\"", "a, b", "", values, 1, 51}};
    const Reports reports;
    const auto drill = make_ref<DrillDown>();
    drill->putref_StartUnderlyingObject(embedded_series(0));
    drill->FindInputs();
    return drill->StartModelPart()->Formula() + " " + listed(drill->InputCells()) + reports.text();
  };
  EXPECT_EQ(inputs_of("(Sheet1!$B$2,Sheet1!$D$2:$D$4)"),
            "=(Sheet1!$B$2,Sheet1!$D$2:$D$4) [Plan.xls]B2 [Plan.xls]D2 [Plan.xls]D3 [Plan.xls]D4");
  EXPECT_EQ(inputs_of("Sheet5!$A$1"), "=Sheet5!$A$1 [Plan.xls]Sheet5!A1");
  EXPECT_EQ(inputs_of("{1,2}"), "={1,2} [Plan.xls]a, b");
}

TEST_F(Identity, PivotTablesTellTheirSource) {
  open("A1=1; B3=5; F9=1");
  auto& pivots = books_.models[0]->sheets()[0]->pivots;
  pivots.push_back({"P1", {{1, 1}, {5, 2}}, "Sheet1!R1C1:R9C3"});
  pivots.push_back({"P2", {{3, 2}, {8, 4}}, "Other!R1C1"});
  EXPECT_EQ(Main::inpivottable(books_.range("A1")), "Sheet1!R1C1:R9C3");
  EXPECT_EQ(Main::inpivottable(books_.range("B3")), "Other!R1C1");  // the last one decides
  EXPECT_EQ(Main::inpivottable(books_.range("F9")), "");
  const auto made = part(books_.range("B3"), "Pivot Table");
  EXPECT_EQ(made->Formula(), "Other!R1C1");
  EXPECT_EQ(made->value(), Variant(5.0));
  EXPECT_EQ(made->UniqueKey(), "'C:\\Models/[Plan.xls]Sheet1'!B3");
  const auto drill = make_ref<DrillDown>();
  drill->putref_StartUnderlyingObject(books_.range("B3"));  // a constant, but in a pivot table
  drill->FindInputs();
  EXPECT_EQ(listed(drill->InputCells()), "[Plan.xls]B3");
}

// Parts whose object goes away

TEST_F(Identity, APartWhoseSheetIsGoneIsLost) {
  open("A1=1; Inputs!B7==Sheet1!A1");
  const auto made = part(books_.range("Inputs!B7"), "Range");
  made->SetResultsValues();
  embedded::delete_sheet(books_.opened[0]->Worksheets("Inputs"));
  EXPECT_EQ(made->UnderlyingObject(), nullptr);
  EXPECT_TRUE(made->IsUnknown());
  EXPECT_FALSE(made->Exists());
  EXPECT_TRUE(made->CheckedForPrecedents());
  EXPECT_TRUE(made->IsConstant());
  EXPECT_EQ(made->Title(), "");
  EXPECT_EQ(made->Formula(), "");
  EXPECT_EQ(made->AddressShort(), "B7");
  EXPECT_EQ(made->WorkSheetName(), "Inputs");
}

TEST_F(Identity, ARangeIsFoundAgainOnASheetOfItsName) {
  open("A1=1; Inputs!B7==Sheet1!A1");
  const auto made = part(books_.range("Inputs!B7"), "Range");
  embedded::delete_sheet(books_.opened[0]->Worksheets("Inputs"));
  books_.enter("Inputs!B7=5");
  int results = 0;
  made->AfterSetResults.add([&] { ++results; });
  made->SetResultsValues();
  EXPECT_EQ(results, 1);
  EXPECT_FALSE(made->IsUnknown());
  EXPECT_TRUE(made->Exists());
  EXPECT_EQ(made->Formula(), "5");
  EXPECT_EQ(made->value(), Variant(5.0));
}

TEST_F(Identity, AKeyStaysWhenItsSheetIsRenamed) {
  open("A1=1; Inputs!B7=2");
  const auto read_before = part(books_.range("Inputs!B7"), "Range");
  const auto read_after = part(books_.range("Inputs!B7"), "Range");
  const std::string key = read_before->UniqueKey();
  embedded::rename_sheet(books_.opened[0]->Worksheets("Inputs"), "Data");
  EXPECT_EQ(read_before->UniqueKey(), key);
  EXPECT_EQ(read_after->UniqueKey(), key);  // the sheet's name is that of the time of creation
  EXPECT_EQ(read_after->Key(), PartKey::of_text(key));
  EXPECT_EQ(part(books_.range("Data!B7"), "Range")->UniqueKey(), "'C:\\Models\\[Plan.xls]Data'!B7");
}

TEST_F(Identity, APartOfAClosedBookIsLost) {
  open("A1=1; B1==A1");
  const auto made = part(books_.range("B1"), "Range");
  const std::string key = made->UniqueKey();
  books_.opened[0]->Close(false);
  EXPECT_EQ(made->UnderlyingObject(), nullptr);
  EXPECT_FALSE(made->Exists());
  EXPECT_EQ(made->UniqueKey(), key);
}

TEST_F(Identity, UnknownMeansConstant) {
  const auto made = make_ref<ModelPart>();
  made->put_IsUnknown(true);
  made->put_CheckedForPrecedents(true);
  EXPECT_TRUE(made->IsConstant());
  made->put_IsUnknown(false);
  EXPECT_TRUE(made->IsConstant());
}

}  // namespace
}  // namespace qto::test
