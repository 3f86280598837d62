#include <gmock/gmock.h>

#include <filesystem>
#include <fstream>
#include <set>

#include "qto/diagnostics/mail_report.hpp"
#include "qto/diagnostics/procedures.hpp"
#include "qto/links/link_list.hpp"
#include "qto/links/main.hpp"
#include "qto/parser/parser.hpp"
#include "tests/support/book_on_disk.hpp"
#include "tests/support/diagnostics_fixtures.hpp"
#include "tests/support/text_book.hpp"

/// Drills and clients' calls that together pass through every procedure, so that each one in the
/// list is seen to register.
namespace qto::test {
namespace {

class EveryProcedure : public testing::Test {
 protected:
  void drill_everything() {
    folder_.put_book("Far.xlsx", "A1=1; name Rate=Sheet1!$A$1");
    const std::string far = "'" + folder_.path() + "/[Far.xlsx]Sheet1'!";
    books_.add(
        "A1=1; A2=0; A3=5; B1==A1+A2; C1==IF(A1>0,B1,A3)+VLOOKUP(1,A1:B3,2)+LOOKUP(1,A1:A3)"
        "+INDEX(A1:A3,2)+SUMIF(A1:A3,1)+MATCH(5,A1:A3,0); C2==HLOOKUP(1,A1:A3,3); "
        "C3==OFFSET(A1,1,0)+INDIRECT(\"A\"&3); name Rate=Sheet1!$A$1; "
        "Other!A1=2; name Other!Local=Other!$A$1; D1==Rate+Other!Local+SUM(Sheet1:Other!A1); "
        "D2==WINWORD|'D:\\Docs\\R.doc'!Mark; D3==Nowhere+1; D4==" +
        far + "A1+" + far + "Rate; A4==C1+C2+C3+D1+D2+D3+D4+1.5");
    for (const bool minimal : {false, true}) {
      const auto options = make_ref<DrillOptions>();
      options->ShowAll();
      if (minimal) options->ShowMinimal();
      const auto drill = make_ref<DrillDown>();
      drill->putref_DrillOptions(options);
      drill->put_MaxItems(3);
      drill->MaxItemsExceeded.add([](auto, auto, bool& stop, auto) { stop = false; });
      drill->putref_StartUnderlyingObject(books_.range("A4"));
      drill->DrillHere();
      drill->FindInputs();
      drill->TraceError();
      drill->BooksOpened()->CloseBooks();
    }
    // Exactly, down to a bound, and once round a circle.
    books_.enter("Q1==Q2+IF(A1>0,Q3,1); Q2==Q3; Q3==Q2");
    const auto exact = make_ref<DrillDown>();
    auto choosing = make_ref<DrillOptions>();
    choosing->put_Reading(qtoReadExact);
    choosing->put_ParseIf(qtodrillusedsection);
    exact->putref_DrillOptions(choosing);
    exact->put_MaximumDepth(3);
    exact->putref_StartUnderlyingObject(books_.range("Q1"));
    exact->DrillHere();
    books_.enter("Q3=1");
    const auto errors = make_ref<DrillDown>();
    errors->putref_StartUnderlyingObject(books_.range("A4"));
    books_.add("A1=1", "Far.xlsx", "/elsewhere");  // a book of that name is open already
    errors->DrillHere();
  }

  void touch(DrillDown& drill) {
    (void)drill.InputCells(), (void)drill.ErrorCells(), (void)drill.StartUnderlyingObject();
    (void)drill.BooksNotOpened(), (void)drill.PartsAnalysed(), (void)drill.DrillOptions();
    (void)drill.ExceededMaxItems(), (void)drill.MaxItems();
    (void)drill.OpaqueCells(), (void)drill.Circles();
    drill.put_MaximumDepth(drill.MaximumDepth());
    drill.put_IgnoreConstantIfZeroOrOne(drill.IgnoreConstantIfZeroOrOne());
  }

  void touch(DrillOptions& options) {
    options.put_ShowBlanks(options.ShowBlanks());
    options.put_ShowZeros(options.ShowZeros());
    options.put_ShowDates(options.ShowDates());
    options.put_ParseIf(options.ParseIf());
    options.put_ParseLookup(options.ParseLookup());
    options.put_ParseSumif(options.ParseSumif());
    options.put_ParseIndirect(options.ParseIndirect());
    options.put_ParseOffset(options.ParseOffset());
    options.put_ParseIndex(options.ParseIndex());
    options.put_ParseMatch(options.ParseMatch());
    options.put_Reading(options.Reading());
  }

  void touch(ModelPart& part) {
    part.SetResultsValues();
    part.ForceResultsRecalc();
    part.CheckForChanges();
    part.put_Title(part.Title());
    part.put_Exists(part.Exists());
    part.put_IntelligentDrillingUsed(part.IntelligentDrillingUsed());
    part.put_FormulaContainsConstant(part.FormulaContainsConstant());
    (void)part.IsConstant(), (void)part.HasConstant(), (void)part.HasError();
    (void)part.ResultsSet();
    (void)part.LocalFile(), (void)part.AddressShortLocal(), (void)part.Text(), (void)part.Formula();
    (void)part.AddressLong(qtoaddressPath), (void)part.AddressLongLocal(qtoaddressBook);
    (void)part.DrillRemark();
    (void)part.FormulaLocal(), (void)part.FormulaHidden(), (void)part.EmbeddedChartName();
    (void)part.ExcelApplication(), (void)part.Sheet(), (void)part.ObjectType();
    part.putref_DirectPrecedents(Ref<ModelParts>(part.DirectPrecedents()));
    part.putref_AllPrecedents(part.AllPrecedents());
    (void)part.WorkBookFullName(), (void)part.value();
    part.put_IsUnknown(part.IsUnknown());
    const auto unknown = make_ref<ModelPart>();
    unknown->Create(nullptr, "Range", "A1");
    unknown->put_AddressShort("B2");
  }

  void touch_collections() {
    const auto parts = make_ref<ModelParts>();
    auto part = make_ref<ModelPart>();
    part->Create(books_.range("A1"), "Range");
    parts->AddExisting(part);
    (void)parts->Item(1), (void)parts->Count();
    (void)parts->NewEnum();
    parts->Remove(1);
    const auto books = make_ref<LinkedBooks>();
    const auto book = make_ref<LinkedBook>();
    book->put_Path("/data");
    book->put_Name("Far.xlsx");
    book->put_Password(book->Password());
    book->put_WhyNotOpened(book->WhyNotOpened());
    (void)book->Opened(), (void)book->IsLocalFile(), (void)book->Path(), (void)book->Name();
    book->OpenIt(books_.app);
    books->AddExisting(book);
    (void)books->Item(1), (void)books->Count();
    books->CloseBooks();
    books->Remove(1);
    const auto links = make_ref<LinkList>();
    links->putref_Workbook(books_.opened[0]);
    (void)links->Workbook();
    for (std::int32_t i = 1; i <= links->CountLinks() + 1; ++i) (void)links->Links(i);
  }

  void create_of_every_kind() {
    embedded::Book& model = *books_.models[0];
    model.sheets()[0]->pivots.push_back({"Pivot", {{20, 1}, {22, 2}}, "Sheet1!R1C1:R9C3"});
    const embedded::ChartSeries sales{"", "Sales", "", "Sheet1!$A$1:$A$3", 1, 51};
    model.sheets()[0]->charts.push_back({"Chart 1", {sales}});
    const auto series =
        books_.opened[0]->Worksheets("Sheet1")->ChartObjects()[0]->Chart()->SeriesCollection()[0];
    for (const auto& [object, type] :
         {std::pair<Ref<Object>, const char*>{books_.range("A1:A3"), "Range"},
          {books_.range("A20"), "Pivot Table"},
          {series, "Series"}}) {
      const auto part = make_ref<ModelPart>();
      part->Create(object, type);
      touch(*part);
      (void)part->SelectItem();
    }
  }

  void report() {
    ScriptedDialog dialog([](const auto& content) { return content.sent ? 7 : 8; });
    (void)make_ref<LinkList>()->Links(1);
  }

  BookFolder folder_;
  Books books_;
};

TEST_F(EveryProcedure, IsSeenToRegister) {
  std::set<std::string> seen;
  {
    const TraceListener listener([&](std::string_view line, diagnostics::TraceMarker marker) {
      if (marker == diagnostics::TraceMarker::leaving) seen.emplace(line);
    });
    drill_everything();
    const auto drill = drill_from(books_, "A4");
    touch(*drill);
    touch(*make_ref<DrillOptions>());
    touch(*drill->StartModelPart());
    create_of_every_kind();
    touch_collections();
    EXPECT_TRUE(Parser().is_book_open("Plan.xlsx"));
    report();
  }
  std::set<std::string> listed;
  for (const auto& [module, member] : diagnostics::procedures())
    listed.insert(std::string(module) + "." + std::string(member));
  // The outputs cannot trace themselves.
  listed.erase("Diagnostics.write_trace_log");
  listed.erase("Diagnostics.send_to_viewer");
  EXPECT_THAT(seen, testing::ContainerEq(listed));
}

}  // namespace
}  // namespace qto::test
