#include <gtest/gtest.h>

#include "qto/links/main.hpp"
#include "tests/support/text_book.hpp"

namespace qto::test {
namespace {

constexpr std::int32_t wrong_object = -2147221503;
constexpr std::int32_t no_formula = -2147221502;
constexpr std::int32_t circular = -2147221501;
constexpr std::int32_t out_of_range = -2147221500;

// Start objects

TEST(StartObject, MustBeOneFormulaCellASeriesOrAPart) {
  Books books("A1=5; B1==A1");
  const auto drill = make_ref<DrillDown>();
  const auto assign = [&](const Ref<Object>& object) {
    return raised_by([&] { drill->putref_StartUnderlyingObject(object); });
  };
  EXPECT_EQ(raised_by([&] { drill->DrillHere(); }), wrong_object);  // none yet
  EXPECT_EQ(assign(nullptr), wrong_object);
  EXPECT_EQ(assign(make_ref<DrillOptions>()), wrong_object);
  EXPECT_EQ(assign(books.opened[0]), wrong_object);
  EXPECT_EQ(assign(books.opened[0]->Worksheets(1)), wrong_object);
  EXPECT_EQ(assign(books.app.ref()), wrong_object);
  EXPECT_EQ(assign(books.range("A1:B1")), wrong_object);
  EXPECT_EQ(assign(books.range("A1")), no_formula);
  EXPECT_EQ(assign(books.range("C1")), no_formula);
  EXPECT_EQ(drill->StartUnderlyingObject(), nullptr);

  const auto cell = books.range("B1");
  EXPECT_EQ(assign(cell), 0);
  EXPECT_EQ(drill->StartUnderlyingObject(), cell);
  EXPECT_EQ(drill->StartModelPart()->AddressShort(), "B1");
  EXPECT_EQ(assign(books.range("A1")), no_formula);  // the last one accepted stays
  EXPECT_EQ(drill->StartUnderlyingObject(), cell);
  EXPECT_EQ(Main::shared_application(), books.app.ref());
}

TEST(StartObject, MayBeAPartOfAnEarlierDrill) {
  Books books("A1=5; B1==A1; C1==B1");
  const auto first = drill_from(books, "C1");
  first->DrillHere();
  const auto part = first->StartModelPart()->DirectPrecedents()->Item(1);
  const auto second = make_ref<DrillDown>();
  second->putref_StartUnderlyingObject(part);
  EXPECT_EQ(second->StartUnderlyingObject(), part);
  EXPECT_EQ(second->StartModelPart(), part);
  second->FindInputs();
  EXPECT_EQ(listed(second->InputCells()), "A1");
}

TEST(StartObject, APartThatIsUnknownIsRefused) {
  auto part = make_ref<ModelPart>();
  part->Create(nullptr, "Range", "A1");
  const auto drill = make_ref<DrillDown>();
  EXPECT_EQ(raised_by([&] { drill->putref_StartUnderlyingObject(part); }), wrong_object);
  EXPECT_EQ(drill->StartUnderlyingObject(), nullptr);
}

TEST(StartObject, ThatIsRefusedLeavesTheOneBefore) {
  Books books("A1=5; B1==A1");
  const auto other = books.add("A1=5; B1==B1", "Circular.xlsx");
  const auto drill = drill_from(books, "B1");
  EXPECT_NE(raised_by([&] { drill->putref_StartUnderlyingObject(books.range("A1", other)); }), 0);
  drill->FindInputs();
  EXPECT_EQ(listed(drill->InputCells()), "A1");
}

/// Objects of other servers may bear any class name.
TEST(StartObject, IsJudgedByWhatItIsNotByItsName) {
  struct Named : host::HostObject {
    Named(const char* class_name, Ref<host::Workbook> above)
        : name(class_name), workbook(std::move(above)) {}
    std::string_view TypeName() const noexcept override { return name; }
    Ref<host::HostObject> Parent() const override { return workbook; }
    bool exists() const noexcept override { return true; }
    Ref<host::Application> application() const override { return workbook->Application(); }
    const char* name;
    Ref<host::Workbook> workbook;
  };
  Books books("A1=5; B1==A1");
  const auto drill = make_ref<DrillDown>();
  for (const char* name : {"ModelPart", "Range", "Series", "Workbook"}) {
    const auto foreign = make_ref<Named>(name, books.opened[0]);
    EXPECT_EQ(raised_by([&] { drill->putref_StartUnderlyingObject(foreign); }), wrong_object)
        << name;
  }
}

TEST(Settings, RefuseNegativeNumbers) {
  const Reports reports;
  const auto drill = make_ref<DrillDown>();
  drill->put_MaximumDepth(3);
  drill->put_MaxItems(7);
  EXPECT_EQ(raised_by([&] { drill->put_MaxItems(-1); }), out_of_range);
  EXPECT_EQ(reports.text(), "");
  EXPECT_EQ(raised_by([&] { drill->put_MaximumDepth(-1); }), out_of_range);
  EXPECT_EQ(reports.text(), " !-2147221500");  // this one passes the error report on its way
  EXPECT_EQ(drill->MaximumDepth(), 3);
  EXPECT_EQ(drill->MaxItems(), 7);
}

// DrillHere

TEST(DrillHere, BuildsATreeOfSharedParts) {
  Books books("A1=1; B1==A1; C1==A1+B1; D1==B1+C1+A1");
  const auto drill = drill_from(books, "D1");
  drill->DrillHere();
  EXPECT_EQ(tree(drill->StartModelPart()), "D1(B1(A1) C1(A1 B1) A1)");
  EXPECT_EQ(drill->PartsAnalysed(), nullptr);
  EXPECT_EQ(drill->InputCells(), nullptr);
  EXPECT_EQ(drill->ErrorCells(), nullptr);
}

TEST(DrillHere, MovesAnEntryThatWasMetBeforeToTheEndOfItsList) {
  Books books("A1=1; B1==A1+2; C1==A1+B1+Z1; D1==B1+C1");
  const auto drill = drill_from(books, "D1");
  drill->DrillHere();
  // C1's own A1 and B1 are replaced, one after the other, by those met below B1 before.
  EXPECT_EQ(tree(drill->StartModelPart()), "D1(B1(A1) C1(Z1 A1 B1))");
}

TEST(DrillHere, GoesDownAsFarAsItIsTold) {
  Books books("A1=1; B1==A1; C1==B1; D1==C1+C2");
  const struct {
    int depth;
    const char* tree;
  } rows[] = {{1, "D1(C1 C2)"},
              {2, "D1(C1(B1) C2)"},
              {3, "D1(C1(B1(A1)) C2)"},
              {9, "D1(C1(B1(A1)) C2)"},
              {0, "D1(C1(B1(A1)) C2)"}};
  for (const auto& row : rows) {
    const auto drill = drill_from(books, "D1");
    drill->put_MaximumDepth(row.depth);
    std::string analysed;
    drill->BeforeGetPrecedents.add([&](auto& part, bool&) { analysed += label(*part); });
    drill->DrillHere();
    EXPECT_EQ(tree(drill->StartModelPart()), row.tree) << row.depth;
  }
}

TEST(DrillHere, RefusesACircleUnlessItsDepthIsBounded) {
  Books books("A1==B1; B1==A1; Z1==2; C1==Z1");
  const auto drill = drill_from(books, "C1");
  EXPECT_EQ(raised_by([&] { drill->DrillHere(); }), circular);
  EXPECT_EQ(raised_by([&] { drill->FindInputs(); }), circular);
  EXPECT_EQ(raised_by([&] { drill->TraceError(); }), circular);
  drill->put_MaximumDepth(5);
  drill->DrillHere();
  EXPECT_EQ(tree(drill->StartModelPart()), "C1(Z1)");
  EXPECT_EQ(raised_by([&] { drill->FindInputs(); }), circular);  // the depth is not its business

  const auto round = drill_from(books, "A1");
  round->put_MaximumDepth(9);
  round->DrillHere();
  EXPECT_EQ(tree(round->StartModelPart()), "A1(B1(A1(B1)))");  // the start part is met as another
}

TEST(DrillHere, DeterminesTheStartPartAnewAndKeepsTheRest) {
  Books books("A1=1; B1==A1; C1==B1");
  const auto drill = drill_from(books, "C1");
  int asked = 0;
  drill->BeforeGetPrecedents.add([&](auto&, bool&) { ++asked; });
  drill->DrillHere();
  EXPECT_EQ(asked, 2);  // A1 holds no formula
  books.enter("C1==A1+B1");
  drill->DrillHere();
  EXPECT_EQ(tree(drill->StartModelPart()), "C1(A1 B1(A1))");
}

TEST(DrillHere, ACancelledPartStaysALeaf) {
  Books books("A1=1; B1==A1; C1==B1");
  const auto drill = drill_from(books, "C1");
  drill->BeforeGetPrecedents.add([](auto& part, bool& cancel) { cancel = label(*part) == "B1"; });
  drill->DrillHere();
  EXPECT_EQ(tree(drill->StartModelPart()), "C1(B1)");
  const auto inputs = drill_from(books, "C1");
  inputs->BeforeGetPrecedents.add([](auto&, bool& cancel) { cancel = true; });
  inputs->FindInputs();
  EXPECT_EQ(listed(inputs->InputCells()), "C1");
}

TEST(DrillHere, AskedAboutAPartThatAHandlerTakesAwayItGoesOn) {
  Books books("A1=1; B1==A1; C1==B1");
  const auto drill = drill_from(books, "C1");
  drill->BeforeGetPrecedents.add([](auto& part, bool&) { part = nullptr; });
  drill->DrillHere();
  EXPECT_EQ(tree(drill->StartModelPart()), "C1(B1(A1))");
}

TEST(DrillHere, IsRefusedFromItsOwnEvents) {
  Books books("A1=1; B1==A1");
  const auto drill = drill_from(books, "B1");
  std::int32_t number = 0;
  drill->BeforeGetPrecedents.add(
      [&](auto&, bool&) { number = raised_by([&] { drill->FindInputs(); }); });
  drill->DrillHere();
  EXPECT_EQ(number, out_of_range);
  EXPECT_EQ(tree(drill->StartModelPart()), "B1(A1)");
}

TEST(DrillHere, GoesThroughNames) {
  Books books(
      "A1=1; A2=2; name Both=Sheet1!$A$1:$A$2; name Next=Sheet1!B1; B9==Both+Next; "
      "C9==Next*2; E9==B9+C9");
  books.app->ActiveWorkbook()->Worksheets(1)->Range("A1")->Select();
  const auto drill = drill_from(books, "E9");
  drill->DrillHere();
  // A relative name is another thing in every cell that uses it.
  EXPECT_EQ(tree(drill->StartModelPart()), "E9(B9(Both(A1 A2) Next(C9(Next(D9)))) C9)");
}

// FindInputs

TEST(FindInputs, CollectsLeavesAndFormulasWithConstants) {
  Books books(
      "A1=5; A2=text; B1==A1+5; B2==A1*1; B3==A1&A2; B4==PI(); B5==1+2; B6==B1+B2+B5; "
      "B7==A9+\"x\"");
  const struct {
    const char* start;
    const char* inputs;
    const char* ignoring;  // with zero-or-one constants ignored
  } rows[] = {{"B1", "B1 A1", "B1 A1"}, {"B2", "B2 A1", "A1"}, {"B3", "A1 A2", "A1 A2"},
              {"B4", "", ""},           {"B5", "B5", "B5"},    {"B6", "B1 A1 B2 B5", "B1 A1 B5"},
              {"B7", "B7 A9", "B7 A9"}};
  for (const auto& row : rows) {
    EXPECT_EQ(inputs(books, row.start), row.inputs) << row.start;
    const auto drill = drill_from(books, row.start);
    drill->put_IgnoreConstantIfZeroOrOne(true);
    drill->put_MaximumDepth(1);  // of no account here
    drill->FindInputs();
    EXPECT_EQ(listed(drill->InputCells()), row.ignoring) << row.start;
    EXPECT_EQ(drill->ErrorCells(), nullptr);
  }
}

TEST(FindInputs, ReportsUnresolvedReferencesAsInputs) {
  Books books("A1=1; B1==A1+'/no/where/[Far.xlsx]S'!C3");
  EXPECT_EQ(inputs(books, "B1"), "A1 ?[Far.xlsx]S!C3");
}

// TraceError

TEST(TraceError, FindsWhereTheErrorStarts) {
  Books books(
      "D1=#DIV/0!; A1=1; C1==A1; B1==D1; A2==B1+C1; A3==1/0; A4==C1+A3+B1; A5==A1; "
      "A6==NA()+D1");
  EXPECT_EQ(errors(books, "A2"), "D1");
  EXPECT_EQ(errors(books, "A4"), "A3 D1");
  EXPECT_EQ(errors(books, "A5"), "A5");  // nothing wrong below it
  EXPECT_EQ(errors(books, "A3"), "A3");
  EXPECT_EQ(errors(books, "A6"), "D1");
  const auto drill = drill_from(books, "A2");
  drill->TraceError();
  EXPECT_EQ(drill->InputCells(), nullptr);
}

// Limits

/// A1 to A<n> hold constants, C1 sums them, D1 too by way of another formula.
Books wide(int n) {
  Books books("C1==SUM(A1:A" + std::to_string(n) + "); D1==SUM(B1:B" + std::to_string(n) + ")");
  return books;
}

TEST(MaxItems, IsAnnouncedAtEveryMultipleAndAcrossDrills) {
  Books books = wide(350);
  const auto drill = drill_from(books, "C1");
  drill->put_MaxItems(100);
  std::string log;
  drill->MaxItemsExceeded.add([&](int limit, int items, bool& stop, int) {
    EXPECT_EQ(limit, drill->MaxItems());
    EXPECT_TRUE(stop);
    stop = false;
    log += std::to_string(items) + " ";
  });
  drill->DrillHere();
  EXPECT_EQ(log, "100 200 300 ");
  EXPECT_FALSE(drill->ExceededMaxItems());
  log.clear();
  drill->DrillHere();
  EXPECT_EQ(log, "");  // the threshold stands at 400
  drill->put_MaxItems(300);
  drill->DrillHere();
  EXPECT_EQ(log, "300 ");
  log.clear();
  drill->put_MaxItems(0);
  drill->DrillHere();
  EXPECT_EQ(log, "");
}

TEST(MaxItems, StopsTheDescentAndReturnsNormally) {
  Books books("A1=1; B1==A1; B2==A1; B3==A1; C1==B1+B2+B3");
  const auto drill = drill_from(books, "C1");
  drill->put_MaxItems(2);
  drill->FindInputs();
  EXPECT_TRUE(drill->ExceededMaxItems());
  EXPECT_EQ(listed(drill->InputCells()), "");
  EXPECT_EQ(tree(drill->StartModelPart()), "C1(B1(A1) B2 B3)");
  drill->put_MaxItems(0);
  drill->FindInputs();
  EXPECT_FALSE(drill->ExceededMaxItems());
}

// Labels, yielding, process-wide state

TEST(Labels, AreSwitchedOffOnceWithANotice) {
  Books books("A1=1; B1==A1");
  books.opened[0]->put_AcceptLabelsInFormulas(true);
  for (const bool alerts : {true, false}) {
    books.app->put_DisplayAlerts(alerts);
    books.opened[0]->put_AcceptLabelsInFormulas(true);
    const auto drill = drill_from(books, "B1");
    int notices = 0;
    drill->RemoveRowAndColumnLabels.add([&](const Ref<host::Workbook>& book) {
      ++notices;
      EXPECT_EQ(book, books.opened[0]);
      EXPECT_TRUE(book->AcceptLabelsInFormulas());
    });
    drill->DrillHere();
    drill->FindInputs();
    EXPECT_EQ(notices, 1);
    EXPECT_FALSE(books.opened[0]->AcceptLabelsInFormulas());
    EXPECT_EQ(books.app->DisplayAlerts(), alerts);
  }
}

TEST(Labels, TheirNoticeIsNoPlaceForAnotherOperation) {
  Books books("A1=1; B1==A1");
  books.opened[0]->put_AcceptLabelsInFormulas(true);
  const auto drill = drill_from(books, "B1");
  std::int32_t inner = 0;
  drill->RemoveRowAndColumnLabels.add(
      [&](const auto&) { inner = raised_by([&] { drill->FindInputs(); }); });
  drill->FindInputs();
  EXPECT_EQ(inner, out_of_range);
  EXPECT_EQ(listed(drill->InputCells()), "A1");
  drill->FindInputs();
  EXPECT_EQ(listed(drill->InputCells()), "A1");
}

TEST(TraceError, GoesThroughANameToWhereTheErrorArises) {
  Books books(
      "A1==Rate*2; B1==C1/D1; C1=1; D1==1/E1; E1=0; name Rate=Sheet1!$B$1; A2==SUM(Some); "
      "name Some=Sheet1!$B$1:$C$9; A3==Fine+D1; name Fine=Sheet1!$C$1");
  EXPECT_EQ(errors(books, "A1"), "D1");
  EXPECT_EQ(errors(books, "A2"), "D1");
  EXPECT_EQ(errors(books, "A3"), "D1");
}

TEST(LinkedBookLists, AreSharedAndEmptiedByANewDrill) {
  const auto first = make_ref<DrillDown>();
  first->BooksOpened()->AddExisting(make_ref<LinkedBook>());
  first->BooksNotOpened()->AddExisting(make_ref<LinkedBook>());
  const auto second = make_ref<DrillDown>();
  EXPECT_EQ(first->BooksOpened()->Count(), 0);
  EXPECT_EQ(first->BooksNotOpened(), second->BooksNotOpened());
}

TEST(DdeLink, IsAPartOfItsOwnAndAnEvent) {
  Books books("A1=1; B1==A1");
  // The engine reads what the host shows; a link is written by hand here.
  const auto drill = drill_from(books, "B1");
  std::string log;
  drill->DDEOLELink.add([&](const std::string& app, const std::string& doc, const std::string& item,
                            Ref<ModelPart>& part) {
    log += app + "/" + doc + "/" + item + "/" + std::string(part->ObjectType()) + "/" +
           part->UniqueKey();
  });
  books.enter("B1==A1+WINWORD|'D:\\Docs\\Report.doc'!Link1");
  if (!books.range("B1")->Formula().starts_with("=A1+WINWORD")) GTEST_SKIP();
  drill->DrillHere();
  EXPECT_EQ(log, "WINWORD/'D:\\Docs\\Report.doc'/Link1/!LINK/WINWORD|'D:\\Docs\\Report.doc'!Link1");
  EXPECT_EQ(listed(drill->StartModelPart()->DirectPrecedents()),
            "A1 ?WINWORD|'D:\\Docs\\Report.doc'!Link1");
}

}  // namespace
}  // namespace qto::test
