#include <gtest/gtest.h>

#include "qto/diagnostics/trace.hpp"
#include "tests/support/text_book.hpp"

/// What a failure in the middle of a drill leaves behind.
namespace qto::test {
namespace {

using diagnostics::Outcome;

TEST(Failures, OutcomesActAtTheStatementThatFailed) {
  Books books("A1=1; C1==#REF!+A1+B1; D1==C1+A1");
  const struct {
    Outcome outcome;
    const char* tree;
    int reports;
  } rows[] = {{Outcome::leave, "D1(C1(B1) A1)", 1},
              {Outcome::leave_also, "D1(C1(B1) A1)", 1},
              {Outcome::next_statement, "D1(C1(B1) A1)", 1},
              {Outcome::retry_statement, "D1(C1(B1) A1)", 4}};
  for (const auto& row : rows) {
    int reports = 0;
    diagnostics::set_reporter([&](const auto& report) {
      ++reports;
      EXPECT_EQ(report.module, "Parser");
      EXPECT_EQ(report.member, "sheets_for_reference");
      EXPECT_GT(report.line, 0);
      return row.outcome;
    });
    const auto drill = drill_from(books, "D1");
    drill->DrillHere();
    EXPECT_EQ(tree(drill->StartModelPart()), row.tree);
    EXPECT_EQ(reports, row.reports);
    diagnostics::set_reporter({});
  }
}

/// The client fails in the n-th event, for every n that there is.
TEST(Failures, OfAHandlerLeaveTheDrillFitForTheNext) {
  Books books("A1=1; B1==A1; B2==B1+A1; B3==IF(A1>0,B2,B1)+B2; B4==B3+B2");
  diagnostics::set_tracing(true);
  for (const bool find_inputs : {false, true}) {
    const auto drill = drill_from(books, "B4", {.ParseIf = 1});
    int countdown = 0;
    drill->BeforeGetPrecedents.add([&](auto&, bool&) {
      if (--countdown == 0) throw std::runtime_error("the client failed");
    });
    int failures = 0;
    for (int n = 1;; ++n) {
      countdown = n;
      try {
        find_inputs ? drill->FindInputs() : drill->DrillHere();
        break;
      } catch (const std::runtime_error&) {
        ++failures;
        EXPECT_TRUE(diagnostics::call_stack().empty());
      }
      countdown = 0;
      drill->putref_StartUnderlyingObject(books.range("B4"));
      drill->DrillHere();
      EXPECT_EQ(tree(drill->StartModelPart()), "B4(B3(B2(B1(A1) A1)) B2)");
      drill->putref_StartUnderlyingObject(books.range("B4"));
    }
    EXPECT_EQ(failures, 4);
  }
  diagnostics::set_tracing(false);
}

TEST(Failures, ABookClosedInTheMiddleEndsTheDrillQuietly) {
  Books books("A1=1; B1==A1; B2==B1; B3==B2");
  books.add("A1=1", "Other.xlsx");
  const auto drill = drill_from(books, "B3");
  int calls = 0;
  drill->BeforeGetPrecedents.add([&](auto&, bool&) {
    if (++calls == 2) books.opened[0]->Close(false);
  });
  diagnostics::set_tracing(true);
  drill->DrillHere();
  EXPECT_TRUE(diagnostics::call_stack().empty());
  diagnostics::set_tracing(false);
  EXPECT_FALSE(books.opened[0]->exists());
  EXPECT_EQ(calls, 2);
}

TEST(Failures, TheTraceOfADrillIsBalanced) {
  Books books("A1=1; B1==A1; B2==SUM(B1,A1)");
  const auto drill = drill_from(books, "B2");
  std::vector<std::string> open;
  std::size_t deepest = 0;
  diagnostics::set_trace_sink([&](const auto& name, int depth, bool entering) {
    const std::string qualified = std::string(name.module) + "." + std::string(name.member);
    if (entering) {
      open.push_back(qualified);
      EXPECT_EQ(static_cast<std::size_t>(depth), open.size());
      deepest = std::max(deepest, open.size());
    } else {
      ASSERT_FALSE(open.empty());
      EXPECT_EQ(open.back(), qualified);
      open.pop_back();
    }
  });
  diagnostics::set_tracing(true);
  drill->DrillHere();
  diagnostics::set_tracing(false);
  diagnostics::set_trace_sink({});
  EXPECT_TRUE(open.empty());
  EXPECT_GT(deepest, 5u);
}

}  // namespace
}  // namespace qto::test
