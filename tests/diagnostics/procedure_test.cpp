#include "qto/diagnostics/procedure.hpp"

#include <gtest/gtest.h>

#include <new>
#include <vector>

#include "qto/automation/error.hpp"
#include "qto/diagnostics/error_report.hpp"

namespace qto {
namespace {

using diagnostics::ErrorReport;
using diagnostics::Outcome;

/// Answers every report with the same outcome and keeps what was reported.
class Reports {
 public:
  explicit Reports(Outcome outcome) {
    diagnostics::set_reporter([this, outcome](const ErrorReport& report) {
      seen.push_back(report);
      return outcome;
    });
  }
  ~Reports() { diagnostics::set_reporter({}); }
  std::vector<ErrorReport> seen;
};

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
  const Reports reports(Outcome::next_statement);
  Procedure proc("Parser", "is_range");
  EXPECT_TRUE(proc.step(fail));
  EXPECT_EQ(reports.seen.size(), 1u);
}

TEST(Procedure, NextEndsALoopThatAlwaysFails) {
  const Reports reports(Outcome::next_statement);
  Procedure proc("Parser", "is_range");
  while (proc.step(fail)) {
  }
  EXPECT_EQ(reports.seen.size(), 101u);
}

TEST(Procedure, RetryRunsTheStatementAgainAtMostThreeTimes) {
  const Reports reports(Outcome::retry_statement);
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

TEST(Procedure, SendingTheReportAsksAgain) {
  std::vector<std::int32_t> numbers;
  diagnostics::set_reporter([&](const ErrorReport& report) {
    numbers.push_back(report.number);
    return numbers.size() < 3 ? Outcome::send_report : Outcome::leave_also;
  });
  Procedure proc("Parser", "is_range");
  EXPECT_FALSE(proc.step(fail));
  EXPECT_EQ(numbers, (std::vector<std::int32_t>{1004, -1, -1}));
  diagnostics::set_reporter({});
}

TEST(Procedure, EndsTheProgramThroughTheEndRoutine) {
  const Reports reports(Outcome::end_program);
  bool ended = false;
  diagnostics::set_end_program([&] { ended = true; });
  Procedure proc("Parser", "is_range");
  EXPECT_FALSE(proc.step(fail));
  EXPECT_TRUE(ended);
  diagnostics::set_end_program({});
}

TEST(Procedure, ClientErrorsPassThroughAndSomeAreReportedFirst) {
  const Reports reports(Outcome::next_statement);
  Procedure proc("DrillDown", "non_negative");
  const auto raise = [](bool reported_first) {
    throw AutomationError(ErrorNumber::out_of_range, reported_first);
  };
  EXPECT_THROW((void)proc.step([&] { raise(false); }), AutomationError);
  EXPECT_TRUE(reports.seen.empty());
  EXPECT_THROW((void)proc.step([&] { raise(true); }), AutomationError);
  ASSERT_EQ(reports.seen.size(), 1u);
  EXPECT_EQ(reports.seen[0].number, -2147221500);
}

TEST(Procedure, NumbersFailuresThatCarryNone) {
  const Reports reports(Outcome::leave);
  Procedure proc("Parser", "Parse");
  EXPECT_FALSE(proc.step([] { throw std::bad_alloc(); }));
  EXPECT_FALSE(proc.step([] { throw std::logic_error("x"); }));
  EXPECT_EQ(reports.seen[0].number, 7);
  EXPECT_EQ(reports.seen[1].number, 5);
}

TEST(ErrorReport, IsOneFieldALine) {
  const Reports reports(Outcome::leave);
  Procedure proc("DrillDown", "InputCells[Get]");
  EXPECT_FALSE(proc.step(fail, 42));
  EXPECT_EQ(reports.seen[0].text(),
            "Error 1004\r\n Description: no such range\r\n Project: Quarto\r\n"
            " Module: DrillDown\r\n Line: 42\r\n Version: 11.0.1\r\n");
  EXPECT_EQ(reports.seen[0].member, "InputCells[Get]");
}

}  // namespace
}  // namespace qto
