#include <gtest/gtest.h>

#include <algorithm>
#include <map>
#include <set>

#include "qto/links/main.hpp"
#include "tests/engine/faulty_host.hpp"
#include "tests/support/diagnostics_fixtures.hpp"
#include "tests/support/text_book.hpp"

/// Every call of the host fails once, one after the other, in whole drills and under every outcome.
/// Afterwards everything is balanced, what the failure did not touch is right, and the next drill
/// gives the full answer.
namespace qto::test {
namespace {

using diagnostics::Outcome;

constexpr Outcome outcomes[] = {Outcome::end_program,     Outcome::next_statement,
                                Outcome::retry_statement, Outcome::leave,
                                Outcome::leave_also,      Outcome::send_report};

enum class Operation { drill, inputs, errors };

/// The direct precedents of every part, by labels.
using Lists = std::map<std::string, std::set<std::string>>;

void collect(const Ref<ModelPart>& start, Lists& lists) {
  std::vector<Ref<ModelPart>> open{start};
  while (!open.empty()) {
    const Ref<ModelPart> part = std::move(open.back());
    open.pop_back();
    if (lists.contains(label(*part))) continue;
    auto& names = lists[label(*part)];
    if (const auto& list = part->DirectPrecedents())
      list->for_each([&](ModelPart& item) {
        names.insert(label(item));
        open.emplace_back(&item);
      });
  }
}

/// Calls whose failure is an answer: the formula is hidden, the text denotes no range.
bool absorbed(const std::string& call) {
  return call == "Worksheet.append_cell_formula" || call == "Worksheet.range_in_cell" ||
         call == "Name.RefersTo";
}

class FailingHost : public testing::Test {
 protected:
  FailingHost()
      : books_(
            "A1=1; A2=0; A3=5; B1==A1+A2; B2==IF(A1>0,B1,A3)+VLOOKUP(1,A1:B1,2)"
            "+INDEX(A1:A3,2)+SUMIF(A1:A3,1,A1:A3)+MATCH(5,A1:A3,0); "
            "B3==OFFSET(A1,1,0)+INDIRECT(\"A\"&3); "
            "Other!A1==Sheet1!B1*2; Other!A2=7; name Rate=Other!$A$1; name Other!Local=Other!$A$2; "
            "name Beside=Sheet1!C1; "
            "B4==Rate*Other!Local+Beside+SUM(Sheet1:Other!A1); C1==#REF!+A1; C2==1/A2; "
            "C3==WINWORD|'D:\\Docs\\R.doc'!Mark; B5==B2+B3+B4+C3+C1+IF(A2=0,0,C2)"),
        host_(books_.app.ref()) {
    books_.range("Other!C4")->Worksheet()->Activate();
    books_.range("Other!C4")->Select();
  }

  /// Runs an operation; true when the client got neither an error nor the end of the program.
  bool run(Operation operation) {
    ended_ = false;
    diagnostics::set_end_program([this] { ended_ = true; });
    drill_ = make_ref<DrillDown>();
    drill_->putref_DrillOptions(
        Options{1, 1, 1, 5, 5, 1, 6, true, operation != Operation::inputs, true}.make());
    const auto sheet = host_.application()->Workbooks()->find(1)->find_worksheet("Sheet1");
    drill_->putref_StartUnderlyingObject(
        sheet->find_range(operation == Operation::errors ? "C2" : "B5"));
    try {
      if (operation == Operation::drill) drill_->DrillHere();
      if (operation == Operation::inputs) drill_->FindInputs();
      if (operation == Operation::errors) drill_->TraceError();
    } catch (const AutomationError& error) {
      EXPECT_EQ(error.number, -2147221503);  // the start object was not accepted
    }
    diagnostics::set_end_program({});
    return !ended_;
  }

  void expect_balance() {
    EXPECT_EQ(diagnostics::call_count(), 0);
    EXPECT_EQ(diagnostics::trace_depth(), 0);
    EXPECT_EQ(parents_, 0);
    EXPECT_TRUE(books_.app->ScreenUpdating());
    EXPECT_TRUE(books_.app->EnableEvents());
    EXPECT_TRUE(books_.app->DisplayAlerts());
    EXPECT_EQ(books_.app->ActiveSheet()->Name(), "Other");
    const auto selected = ref_cast<host::Range>(books_.app->Selection());
    ASSERT_TRUE(selected);
    EXPECT_EQ(selected->Worksheet()->Name() + selected->Address(), "Other$C$4");
  }

  Books books_;
  FaultyHost host_;
  Ref<DrillDown> drill_;
  bool ended_ = false;
  int parents_ = 0;  // what is on the parser's stack of parents
};

TEST_F(FailingHost, AtEveryCallLeavesEverythingBalanced) {
  const TraceListener listener([this](std::string_view line, diagnostics::TraceMarker marker) {
    if (marker != diagnostics::TraceMarker::leaving) return;
    if (line == "Parser.AddParentRange") ++parents_;
    if (line == "Parser.RemoveParentRange") --parents_;
  });
  for (const Operation operation : {Operation::drill, Operation::inputs, Operation::errors}) {
    host_.fail_at(0);
    {
      const ScriptedDialog dialog(Outcome::leave);
      ASSERT_TRUE(run(operation));
    }
    Lists whole;
    collect(drill_->StartModelPart(), whole);
    const std::int64_t calls = host_.calls();
    EXPECT_GT(calls, 5);
    for (const Outcome outcome : outcomes) {
      // One of the ways to leave is enough for the other walks.
      if (operation != Operation::drill && outcome > Outcome::leave) continue;
      for (std::int64_t n = 1; n <= calls; ++n) {
        const ScriptedDialog dialog(outcome);
        host_.fail_at(n);
        run(operation);
        const std::string failed = host_.failed();
        host_.fail_at(0);
        SCOPED_TRACE("outcome " + std::to_string(static_cast<int>(outcome)) + ", call " +
                     std::to_string(n) + " " + failed);
        expect_balance();
        if (HasFailure()) return;
        Lists lists;
        collect(drill_->StartModelPart(), lists);
        // What differs from the whole answer was reported, and nothing is there that feeds nothing.
        const bool reported =
            absorbed(failed) || std::ranges::any_of(dialog.reports, [](const auto& report) {
              return report.description == "the host failed";
            });
        for (const auto& [part, names] : lists) {
          EXPECT_TRUE(whole.contains(part) || reported) << part;
          const bool as_it_is = names.empty() || !whole.contains(part) || names == whole[part];
          EXPECT_TRUE(as_it_is || reported) << part;
        }
      }
    }
    // A drill after all that is whole.
    host_.fail_at(0);
    const ScriptedDialog dialog(Outcome::leave);
    run(operation);
    Lists again;
    collect(drill_->StartModelPart(), again);
    EXPECT_EQ(again, whole);
  }
}

TEST_F(FailingHost, ThatFailsFromSomeCallOnEndsEveryDrill) {
  for (const Operation operation : {Operation::drill, Operation::inputs}) {
    host_.fail_at(0);
    {
      const ScriptedDialog dialog(Outcome::leave);
      run(operation);
    }
    const std::int64_t calls = host_.calls();
    for (const Outcome outcome : outcomes) {
      for (std::int64_t n = 1; n <= calls; n += 3) {
        const ScriptedDialog dialog(outcome);
        host_.fail_at(n, true);
        run(operation);
        EXPECT_LT(dialog.reports.size(), 2000u);
      }
    }
  }
}

TEST_F(FailingHost, IsNamedInTheReportWithTheFormulaCell) {
  host_.fail_at(0);
  {
    const ScriptedDialog dialog(Outcome::leave);
    run(Operation::drill);
  }
  const std::int64_t calls = host_.calls();
  std::size_t with_cell = 0;
  for (std::int64_t n = 1; n <= calls; ++n) {
    const ScriptedDialog dialog(Outcome::leave);
    host_.fail_at(n);
    run(Operation::drill);
    for (const auto& report : dialog.reports) {
      if (report.description != "the host failed") continue;
      EXPECT_EQ(report.host_call, host_.failed());
      with_cell += report.formula_cell.starts_with("[Plan.xlsx]Sheet1!");
    }
  }
  EXPECT_GT(with_cell, 5u);
}

TEST_F(FailingHost, ACellWithoutAValueIsReportedAndDrilled) {
  host_.fail_value_of(CellPos{1, 1});
  for (const Operation operation : {Operation::drill, Operation::inputs}) {
    const ScriptedDialog dialog(Outcome::leave);
    run(operation);
    EXPECT_GT(dialog.reports.size(), 0u);
    EXPECT_LT(dialog.reports.size(), 100u);
    EXPECT_TRUE(std::ranges::any_of(
        dialog.reports, [](const auto& report) { return report.host_call == "Range.Value"; }));
    if (operation != Operation::inputs) continue;
    std::string found = " " + listed(drill_->InputCells()) + " ";
    EXPECT_NE(found.find(" A1 "), std::string::npos) << found;
  }
}

}  // namespace
}  // namespace qto::test
