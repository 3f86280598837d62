#include "qto/diagnostics/trace.hpp"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <sstream>
#include <stdexcept>

#include "qto/diagnostics/procedure.hpp"
#include "qto/diagnostics/trace_outputs.hpp"
#include "tests/support/diagnostics_fixtures.hpp"

namespace qto::diagnostics {
namespace {

class Trace : public testing::Test {
 protected:
  ~Trace() override {
    set_tracing(false);
    set_log_output(false);
  }
};

void inner() { Procedure proc("Main", "IsURL"); }
void middle() {
  Procedure proc("ModelPart", "WorkBookPath[Let]");
  inner();
}
void outer() {
  Procedure proc("DrillDown", "DrillHere");
  middle();
}

std::string contents(const std::filesystem::path& file) {
  std::stringstream text;
  text << std::ifstream(file).rdbuf();
  return text.str();
}

TEST_F(Trace, OffTouchesNothing) {
  set_tracing(true);
  set_tracing(false);
  outer();
  EXPECT_EQ(call_count(), 0);
  EXPECT_TRUE(call_stack().empty());
}

TEST_F(Trace, ViewerGetsLinesIndentedByDepthAndNamesOnTheWayOut) {
  std::string lines;
  const test::TraceListener listener([&](std::string_view line, TraceMarker marker) {
    lines.append(std::to_string(static_cast<int>(marker))).append(line).append("\n");
  });
  outer();
  EXPECT_EQ(lines,
            "1DrillDown.DrillHere\n1\tModelPart.WorkBookPath[Let]\n1\t\tMain.IsURL\n"
            "2Main.IsURL\n2ModelPart.WorkBookPath[Let]\n2DrillDown.DrillHere\n");
}

TEST_F(Trace, StackHoldsOpenCallsAndKeepsItsContents) {
  set_tracing(true);
  {
    Procedure proc("Parser", "Parse");
    middle();
    EXPECT_EQ(trace_depth(), 1);
    EXPECT_EQ(call_count(), 1);
    ASSERT_EQ(call_stack().size(), 3u);
    EXPECT_EQ(call_stack()[0].member, "Parse");
    EXPECT_EQ(call_stack()[2].member, "IsURL");
    inner();
    ASSERT_EQ(call_stack().size(), 2u);  // an entry cuts the stack to what is in use
    EXPECT_EQ(call_stack()[1].member, "IsURL");
  }
  EXPECT_EQ(trace_depth(), 0);
}

TEST_F(Trace, StaysBalancedWhenAnErrorPasses) {
  set_tracing(true);
  EXPECT_THROW(
      {
        Procedure proc("Parser", "Parse");
        throw std::runtime_error("x");
      },
      std::runtime_error);
  EXPECT_EQ(call_count(), 0);
}

TEST_F(Trace, SwitchedInTheMiddleOfCallsStaysBalanced) {
  {
    Procedure before("Parser", "Parse");
    set_tracing(true);
    Procedure during("Parser", "do_parse");
    set_tracing(false);
    set_tracing(true);
    Procedure again("Parser", "is_name");
    {
      Procedure deeper("Parser", "is_range");
      EXPECT_EQ(call_count(), 2);
    }
    EXPECT_EQ(call_count(), 1);
  }
  EXPECT_EQ(call_count(), 0);
  EXPECT_EQ(trace_depth(), 0);
}

TEST_F(Trace, LogIsHeadedOnceReplacesAnOlderOneAndStaysOpen) {
  const auto file = std::filesystem::temp_directory_path() / "qto_trace_test.log";
  const std::string old = "Tracing another\nSession started then\n\nMain.IsURL\n";
  std::ofstream(file) << old;
  set_trace_log(file.string(), "the client");
  set_tracing(true);
  inner();
  EXPECT_EQ(contents(file), old);  // output is off
  set_log_output(true);
  middle();
  set_log_output(false);
  inner();
  set_log_output(true);
  inner();
  set_log_output(false);
  const std::string text = contents(file);
  EXPECT_TRUE(text.starts_with("Tracing the client\nSession started 2")) << text;
  EXPECT_EQ(text.substr(text.find("\n\n")),
            "\n\nModelPart.WorkBookPath[Let]\n\tMain.IsURL\nMain.IsURL\n");
  set_trace_log("", "");  // closes it: an open file cannot be removed everywhere
  std::filesystem::remove(file);
}

TEST_F(Trace, LogThatCannotBeWrittenIsReportedOnceAndSwitchedOff) {
  test::ScriptedDialog dialog(Outcome::leave);
  set_trace_log("/nowhere/at/all.log", "the client");
  set_log_output(true);
  set_tracing(true);
  outer();
  EXPECT_FALSE(log_output());
  ASSERT_EQ(dialog.reports.size(), 1u);
  EXPECT_EQ(dialog.reports[0].module, "Diagnostics");
  EXPECT_EQ(dialog.reports[0].number, 75);
  EXPECT_NE(dialog.reports[0].description.find("/nowhere/at/all.log"), std::string::npos);
}

TEST_F(Trace, ViewerThatFailsIsReportedOnceAndTheWorkGoesOn) {
  test::ScriptedDialog dialog(Outcome::next_statement);
  int sent = 0;
  const test::TraceListener listener([&](std::string_view, TraceMarker) {
    if (++sent == 2) throw std::runtime_error("the viewer went away");
  });
  outer();
  EXPECT_EQ(sent, 2);
  EXPECT_FALSE(viewer_output());
  EXPECT_EQ(dialog.reports.size(), 1u);
  EXPECT_EQ(call_count(), 0);
}

}  // namespace
}  // namespace qto::diagnostics
