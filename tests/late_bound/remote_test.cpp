#include <gtest/gtest.h>

#include "qto/com/errors.hpp"
#include "tests/late_bound/both_ways.hpp"

namespace qto::test {
namespace {

/// A book behind server.
struct Remote : testing::Test {
  Driven host{true};
  Ref<host::Workbook> book = host.given(
      host.books.add("A1=2; A2=text; A3=TRUE; A4==1/0; B1==A1*3; B2==A1:A4; C1=2024-05-06; "
                     "name Rate=Sheet1!$A$1; Other!A1=7; name Other!Local=Other!$A$1"));
  Ref<host::Worksheet> sheet = book->Worksheets("Sheet1");
  Ref<host::Application> app = book->Application();
};

struct Failed {
  std::int32_t number = 0;
  std::string call;
};
template <class Statement>
Failed failure_of(Statement&& run) {
  try {
    run();
  } catch (const host::HostFailure& failure) {
    return {failure.number, failure.call};
  }
  return {};
}

TEST_F(Remote, OneProxyStandsForOneObject) {
  EXPECT_EQ(book->Worksheets(1), sheet);
  EXPECT_EQ(book->Sheets("sheet1"), sheet);
  EXPECT_EQ(app->Workbooks()->find("PLAN.xlsx"), book);
  EXPECT_EQ(sheet->Parent(), book);
  EXPECT_EQ(app->ActiveSheet()->Application(), app);
  EXPECT_EQ(host.given(host.books.app.ref()), app);
  EXPECT_EQ(app->Parent(), app);
  EXPECT_NE(book->Worksheets("Other"), sheet);
  EXPECT_EQ(sheet->IdentityStamp(), book->Worksheets(1)->IdentityStamp());
  EXPECT_NE(sheet->IdentityStamp(), book->Worksheets("Other")->IdentityStamp());
  const auto range = sheet->Range("A1");
  EXPECT_EQ(range->Worksheet(), sheet);
  const std::size_t held = host.server.held();
  for (int i = 0; i < 3; ++i) (void)sheet->Range("A1")->value();
  EXPECT_EQ(host.server.held(), held);
}

TEST_F(Remote, ValuesCrossInBothDirections) {
  const auto native = host.books.opened.front()->Worksheets("Sheet1");
  for (const char* address : {"A1", "A2", "A3", "A4", "B1", "C1", "D9", "A1:C4"})
    EXPECT_EQ(sheet->Range(address)->value(), native->Range(address)->value()) << address;
  const Variant values[] = {Variant(1.5),
                            Variant(-7),
                            Variant("näme"),
                            Variant(true),
                            Variant(Date{45000.5}),
                            Variant(ErrorValue::na),
                            Variant("")};
  for (const Variant& value : values) {
    native->Range("F1")->put_value(value);
    const Variant expected = native->Range("F1")->value();
    native->Range("F1")->put_value(Variant());
    sheet->Range("F1")->put_value(value);
    EXPECT_EQ(sheet->Range("F1")->value(), expected) << value.type_name();
    EXPECT_EQ(native->Range("F1")->value(), expected) << value.type_name();
  }
  EXPECT_EQ(sheet->Evaluate("A1:A2").type_name(), "Range");
  EXPECT_EQ(sheet->Evaluate("A1+1"), Variant(3.0));
  EXPECT_TRUE(sheet->Evaluate("").is_empty());
}

TEST_F(Remote, RangesKnowTheirPlaces) {
  const auto range = sheet->Range("B2:C4");
  EXPECT_EQ(range->Address(), "$B$2:$C$4");
  EXPECT_EQ(range->Address(false, false, host::xlA1, true), "[Plan.xlsx]Sheet1!B2:C4");
  EXPECT_EQ(range->Cells(2, 2)->Address(), "$C$3");
  EXPECT_EQ(range->Rows(3)->Address(), "$B$4:$C$4");
  EXPECT_EQ(range->Columns(1)->Address(), "$B$2:$B$4");
  EXPECT_EQ(range->CellsCount(), 6);
  EXPECT_EQ(range->EntireRow()->Address(), "$2:$4");
  EXPECT_EQ(range->EntireColumn()->Hidden(), std::optional(false));
  EXPECT_EQ(sheet->Range("A1")->End(host::xlDown)->Address(), "$A$4");
  EXPECT_EQ(sheet->UsedRange()->block(), (Rect{{1, 1}, {4, 3}}));
  EXPECT_EQ(sheet->Range("A1")->find_name()->Name(), "Rate");
  EXPECT_FALSE(sheet->Range("A2")->find_name());
  EXPECT_EQ(app->Intersect(range, sheet->Range("C3:D9"))->Address(), "$C$3:$C$4");
  EXPECT_FALSE(app->Intersect(range, sheet->Range("A1")));
  EXPECT_FALSE(sheet->find_range("Rate"));  // names are no addresses
  EXPECT_FALSE(sheet->find_range("XFE1"));
  EXPECT_EQ(app->WorksheetFunction()->Match(Variant("text"), sheet->Range("A1:A4"), 0), 2.0);
  EXPECT_FALSE(app->WorksheetFunction()->Match(Variant(99), sheet->Range("A1:A4"), 0));
  EXPECT_EQ(app->WorksheetFunction()->CountIf(sheet->Range("A1:B1"), Variant(">1")), 2.0);
  EXPECT_EQ(app->ConvertFormula("R[1]C", host::xlR1C1, host::xlA1, range), "B3");
}

TEST_F(Remote, NamesAreProbedAndCalled) {
  EXPECT_EQ(book->find_name("rate")->RefersTo(), "=Sheet1!$A$1");
  EXPECT_FALSE(book->find_name("Local"));
  EXPECT_FALSE(sheet->find_name("Local"));
  EXPECT_EQ(book->Worksheets("Other")->find_name("Local")->Name(), "Other!Local");
  EXPECT_EQ(book->AllNames().size(), 2u);
  EXPECT_EQ(app->find_name("Rate")->Parent(), book);
  const auto added = book->AddName("Two", "=2");
  ASSERT_TRUE(book->find_name("Two"));
  EXPECT_EQ(book->find_name("Two")->Index(), added->Index());
  EXPECT_FALSE(book->find_sheet("none"));
  EXPECT_FALSE(app->Workbooks()->find("none"));
  EXPECT_TRUE(book->LinkSources(host::link_type_workbooks).empty());
}

TEST_F(Remote, FailuresCarryNumberAndCall) {
  const Failed none = failure_of([&] { book->Worksheets("none"); });
  EXPECT_EQ(none.number, host::no_such_member);
  EXPECT_EQ(none.call, "Worksheets.Item");
  EXPECT_EQ(failure_of([&] { sheet->Range("A1:B2")->Text().c_str(); }).number, 0);
  EXPECT_EQ(failure_of([&] { book->Names("none"); }).number, host::general_failure);
  EXPECT_EQ(failure_of([&] { sheet->Range("nowhere"); }).number, host::general_failure);
  EXPECT_EQ(failure_of([&] { sheet->Range("A1:B2")->Formula(); }).number, 13);  // an array
  EXPECT_EQ(failure_of([&] { app->Workbooks()->Open("/nowhere/none.xlsx"); }).number,
            host::general_failure);
  EXPECT_NE(failure_of([&] { app->Intersect(sheet->Range("A1"), nullptr); }).number, 0);
  host.server.fail_at(1, false, com::failure(0x80010108));
  EXPECT_EQ(failure_of([&] { (void)book->Name(); }).number, static_cast<std::int32_t>(0x80010108));
}

TEST_F(Remote, ObjectsThatAreGoneSaySo) {
  const auto range = sheet->Range("A1");
  (void)range->value();
  EXPECT_TRUE(range->exists() && sheet->exists() && book->exists());
  book->Close(false);
  EXPECT_FALSE(range->exists());
  EXPECT_FALSE(sheet->exists());
  EXPECT_FALSE(book->exists());
  EXPECT_TRUE(app->exists());
  EXPECT_NE(failure_of([&] { (void)range->value(); }).number, 0);
  EXPECT_NE(failure_of([&] { (void)range->block(); }).number, 0);
  EXPECT_EQ(sheet->IdentityStamp(), 0u);
}

TEST_F(Remote, AnApplicationThatEvaluatesForSheetsAloneIsEnough) {
  const std::pair<const char*, CellPos> pieces[] = {
      {"A1:A4", {2, 2}}, {"A1:C1", {9, 2}}, {"A1:A4", {9, 9}}, {"A1:C2", {1, 1}}, {"A1", {5, 5}}};
  std::vector<Variant> known;
  for (const auto& [piece, cell] : pieces) known.push_back(sheet->value_in_cell(cell, piece));
  Driven plain(true);
  plain.server.hidden = {u"ValueInCell", u"RangeInCell"};
  const auto other =
      plain.given(plain.books.add("A1=2; A2=text; A3=TRUE; A4==1/0; B1==A1*3; "
                                  "B2==A1:A4; C1=2024-05-06"));
  const auto plain_sheet = other->Worksheets(1);
  for (std::size_t i = 0; i < known.size(); ++i)
    EXPECT_EQ(plain_sheet->value_in_cell(pieces[i].second, pieces[i].first), known[i])
        << pieces[i].first;
  EXPECT_EQ(plain_sheet->value_in_cell({1, 1}, "A1+1"), Variant(3.0));
  EXPECT_EQ(plain_sheet->range_in_cell({9, 9}, "A1:A4")->Address(), "$A$1:$A$4");
}

TEST_F(Remote, OtherClassesAreRefused) {
  const auto drill = make_ref<DrillDown>();
  const auto refused = [&](const Ref<Object>& object) {
    return static_cast<std::uint32_t>(
        raised_by([&] { drill->putref_StartUnderlyingObject(object); }));
  };
  EXPECT_EQ(refused(sheet), 0x80040001);
  EXPECT_EQ(refused(app), 0x80040001);
  EXPECT_EQ(refused(book->find_name("Rate")), 0x80040001);
  EXPECT_EQ(refused(sheet->Range("A1:A2")), 0x80040001);
  EXPECT_EQ(refused(sheet->Range("A1")), 0x80040002);
  const auto options = host.server.stub_of(make_ref<DrillOptions>());
  const Ref<Object> foreign = late_bound::proxy_of(*options.get());
  EXPECT_EQ(foreign->TypeName(), "DrillOptions");
  EXPECT_EQ(refused(foreign), 0x80040001);
}

/// Runs a drill while the n-th call fails; the inputs, or what was reported.
std::string inputs_with_fault(std::int64_t n, bool always, std::int64_t* calls = nullptr) {
  Driven host(true);
  host.books.add(
      "A1=2; A2=3; B1==SUM(A1:A2)*Rate; C1==IF(B1>1,Other!A1,A2)+B1; Other!A1=5; "
      "name Rate=Sheet1!$A$1");
  const Ref<host::Range> start = host.given(host.books.range("C1"));
  const Reports reports;
  const auto drill = make_ref<DrillDown>();
  host.server.fail_at(n, always);
  (void)raised_by([&] {
    drill->putref_StartUnderlyingObject(start);
    drill->FindInputs();
  });
  if (calls) *calls = host.server.calls;
  host.server.fail_at(0);
  return listed(drill->InputCells()) + reports.text();
}

TEST(RemoteFaults, AFailingCallIsReportedOrMakesNoDifference) {
  std::int64_t calls = 0;
  const std::string whole = inputs_with_fault(0, false, &calls);
  EXPECT_EQ(whole.find(" !"), std::string::npos) << whole;
  EXPECT_NE(whole.find("Other!A1"), std::string::npos) << whole;
  ASSERT_GT(calls, 50);
  int reported = 0, silent = 0;
  for (std::int64_t n = 1; n <= calls; ++n) {
    const std::string result = inputs_with_fault(n, false);
    const bool told = result.find(" !") != std::string::npos;
    if (told)
      ++reported;
    else if (result != whole)
      ++silent;
  }
  EXPECT_GT(reported, 20);
  // A probe that fails says "not there", as the host interface has it.
  EXPECT_LT(silent, calls / 5) << "of " << calls;
}

TEST(RemoteFaults, AnApplicationThatGoesAwayEndsTheDrill) {
  std::int64_t calls = 0;
  inputs_with_fault(0, false, &calls);
  for (std::int64_t n = 1; n <= calls; n += 3) (void)inputs_with_fault(n, true);
}

}  // namespace
}  // namespace qto::test
