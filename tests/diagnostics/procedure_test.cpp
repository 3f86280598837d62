#include "qto/diagnostics/procedure.hpp"

#include <gtest/gtest.h>

#include <new>
#include <vector>

#include "qto/automation/error.hpp"
#include "qto/diagnostics/error_report.hpp"
#include "tests/support/diagnostics_fixtures.hpp"

namespace qto {
namespace {

using diagnostics::ErrorReport;
using diagnostics::Outcome;
using test::ScriptedDialog;

[[noreturn]] void fail() { throw NumberedFailure(1004, "no such range"); }

TEST(Procedure, LeavesByDefaultAndTellsWhoListens) {
  int heard = 0;
  const int token =
      diagnostics::error_reported().add([&](const ErrorReport& report) { heard = report.number; });
  Procedure proc("Parser", "is_range");
  EXPECT_FALSE(proc.step(fail));
  EXPECT_EQ(heard, 1004);
  diagnostics::error_reported().remove(token);
}

TEST(Procedure, NextGoesOnBehindTheStatement) {
  const ScriptedDialog dialog(Outcome::next_statement);
  Procedure proc("Parser", "is_range");
  EXPECT_TRUE(proc.step(fail));
  EXPECT_EQ(dialog.reports.size(), 1u);
}

TEST(Procedure, NextEndsALoopThatAlwaysFails) {
  const ScriptedDialog dialog(Outcome::next_statement);
  Procedure proc("Parser", "is_range");
  while (proc.step(fail)) {
  }
  EXPECT_EQ(dialog.reports.size(), 101u);
}

TEST(Procedure, RetryRunsTheStatementAgainAtMostThreeTimes) {
  const ScriptedDialog dialog(Outcome::retry_statement);
  Procedure proc("Parser", "is_range");
  int runs = 0;
  EXPECT_TRUE(proc.step([&] {
    if (++runs < 3) fail();
  }));
  EXPECT_EQ(runs, 3);
  runs = 0;
  EXPECT_FALSE(proc.step([&] {
    ++runs;
    fail();
  }));
  EXPECT_EQ(runs, 2);  // two of the three retries were used up above
}

TEST(Procedure, ClosingTheDialogGoesOnBehindTheStatement) {
  const ScriptedDialog dialog([](const auto&) { return std::nullopt; });
  Procedure proc("Parser", "is_range");
  EXPECT_TRUE(proc.step(fail));
  EXPECT_EQ(diagnostics::last_action(), 4);
}

TEST(Procedure, AnyOtherNumberLeaves) {
  for (const std::int32_t number : {-5, 0, 1, 2, 9, 1000}) {
    const ScriptedDialog dialog([number](const auto&) { return number; });
    Procedure proc("Parser", "is_range");
    EXPECT_FALSE(proc.step(fail));
    EXPECT_EQ(diagnostics::last_action(), number);
  }
}

TEST(Procedure, NeedGivesTheResultOrLeavesWithoutASecondReport) {
  for (const auto outcome : {Outcome::next_statement, Outcome::retry_statement, Outcome::leave}) {
    const ScriptedDialog dialog(outcome);
    int runs = 0;
    const auto needs = [&](int failures) {
      Procedure proc("Parser", "local_eval");
      return proc.need([&] {
        if (++runs <= failures) fail();
        return 7;
      });
    };
    Procedure outer("Parser", "drill_function");
    int got = 0;
    EXPECT_TRUE(outer.step([&] { got = needs(0); }));
    EXPECT_EQ(got, 7);
    runs = got = 0;
    const bool retries = outcome == Outcome::retry_statement;
    EXPECT_EQ(outer.step([&] { got = needs(1); }), retries);
    EXPECT_EQ(got, retries ? 7 : 0);
    EXPECT_EQ(dialog.reports.size(), 1u);
  }
}

TEST(Procedure, EndsTheProgramThroughTheEndRoutine) {
  const ScriptedDialog dialog(Outcome::end_program);
  bool ended = false;
  diagnostics::set_end_program([&] { ended = true; });
  Procedure proc("Parser", "is_range");
  EXPECT_FALSE(proc.step(fail));
  EXPECT_TRUE(ended);
  diagnostics::set_end_program({});
}

TEST(Procedure, ClientErrorsPassThroughAndSomeAreReportedFirst) {
  const ScriptedDialog dialog(Outcome::next_statement);
  Procedure proc("DrillDown", "non_negative");
  const auto raise = [](bool reported_first) {
    throw AutomationError(ErrorNumber::out_of_range, reported_first);
  };
  EXPECT_THROW((void)proc.step([&] { raise(false); }), AutomationError);
  EXPECT_TRUE(dialog.reports.empty());
  EXPECT_THROW((void)proc.step([&] { raise(true); }), AutomationError);
  ASSERT_EQ(dialog.reports.size(), 1u);
  EXPECT_EQ(dialog.reports[0].number, -2147221500);
}

TEST(Procedure, NumbersFailuresThatCarryNone) {
  const ScriptedDialog dialog(Outcome::leave);
  Procedure proc("Parser", "Parse");
  EXPECT_FALSE(proc.step([] { throw std::bad_alloc(); }));
  EXPECT_FALSE(proc.step([] { throw std::logic_error("x"); }));
  EXPECT_EQ(dialog.reports[0].number, 7);
  EXPECT_EQ(dialog.reports[1].number, 5);
}

TEST(ErrorReport, IsOneFieldALine) {
  const ScriptedDialog dialog(Outcome::leave);
  Procedure proc("DrillDown", "InputCells[Get]");
  EXPECT_FALSE(proc.step(fail, 42));
  EXPECT_EQ(dialog.reports[0].text(),
            "Error 1004\r\n Description: no such range\r\n Project: Quarto\r\n"
            " Module: DrillDown\r\n Line: 42\r\n Version: 11.0.1\r\n");
  EXPECT_EQ(dialog.reports[0].member, "InputCells[Get]");
}

}  // namespace
}  // namespace qto
