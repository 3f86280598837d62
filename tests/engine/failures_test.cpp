#include <gtest/gtest.h>

#include "tests/support/diagnostics_fixtures.hpp"
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
    std::size_t reports;
  } rows[] = {{Outcome::leave, "D1(C1(B1) A1)", 1},
              {Outcome::leave_also, "D1(C1(B1) A1)", 1},
              {Outcome::next_statement, "D1(C1(B1) A1)", 1},
              {Outcome::retry_statement, "D1(C1(B1) A1)", 4}};
  for (const auto& row : rows) {
    const ScriptedDialog dialog(row.outcome);
    const auto drill = drill_from(books, "D1");
    drill->DrillHere();
    EXPECT_EQ(tree(drill->StartModelPart()), row.tree);
    EXPECT_EQ(dialog.reports.size(), row.reports);
    for (const auto& report : dialog.reports) {
      EXPECT_EQ(report.module, "Parser");
      EXPECT_EQ(report.member, "sheets_for_reference");
      EXPECT_GT(report.line, 0);
    }
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
        EXPECT_EQ(diagnostics::call_count(), 0);
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
  EXPECT_EQ(diagnostics::call_count(), 0);
  diagnostics::set_tracing(false);
  EXPECT_FALSE(books.opened[0]->exists());
  EXPECT_EQ(calls, 2);
}

TEST(Failures, TheTraceOfADrillIsBalanced) {
  Books books("A1=1; B1==A1; B2==SUM(B1,A1)");
  const auto drill = drill_from(books, "B2");
  std::vector<std::string> open;
  std::size_t deepest = 0;
  {
    const TraceListener listener([&](std::string_view line, diagnostics::TraceMarker marker) {
      if (marker == diagnostics::TraceMarker::entering) {
        EXPECT_EQ(line.find_first_not_of('\t'), open.size());
        open.emplace_back(line.substr(open.size()));
        deepest = std::max(deepest, open.size());
      } else {
        ASSERT_FALSE(open.empty());
        EXPECT_EQ(open.back(), line);
        open.pop_back();
      }
    });
    drill->DrillHere();
  }
  EXPECT_TRUE(open.empty());
  EXPECT_GT(deepest, 5u);
}

}  // namespace
}  // namespace qto::test
