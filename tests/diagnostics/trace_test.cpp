#include "qto/diagnostics/trace.hpp"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <sstream>
#include <stdexcept>

#include "qto/diagnostics/procedure.hpp"
#include "qto/diagnostics/trace_log.hpp"

namespace qto::diagnostics {
namespace {

class Trace : public testing::Test {
 protected:
  ~Trace() override {
    set_tracing(false);
    set_trace_sink({});
  }
  void record() {
    set_trace_sink([this](const QualifiedName& name, int depth, bool entering) {
      lines_ += (entering ? "" : "out ") + trace_line(name, entering ? depth : 1) + "\n";
    });
  }
  std::string lines_;
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

TEST_F(Trace, OffTouchesNothing) {
  record();
  outer();
  EXPECT_EQ(lines_, "");
  EXPECT_TRUE(call_stack().empty());
}

TEST_F(Trace, IndentsByDepthAndComesOutInReverse) {
  record();
  set_tracing(true);
  outer();
  EXPECT_EQ(lines_,
            "DrillDown.DrillHere\n\tModelPart.WorkBookPath[Let]\n\t\tMain.IsURL\n"
            "out Main.IsURL\nout ModelPart.WorkBookPath[Let]\nout DrillDown.DrillHere\n");
  EXPECT_TRUE(call_stack().empty());
}

TEST_F(Trace, StaysBalancedWhenAnErrorPasses) {
  set_tracing(true);
  EXPECT_THROW(
      {
        Procedure proc("Parser", "Parse");
        throw std::runtime_error("x");
      },
      std::runtime_error);
  EXPECT_TRUE(call_stack().empty());
}

TEST_F(Trace, SwitchedInTheMiddleOfACallNeverGoesBelowNothing) {
  {
    Procedure before("Parser", "Parse");
    set_tracing(true);
    Procedure during("Parser", "do_parse");
    set_tracing(false);
  }
  EXPECT_TRUE(call_stack().empty());
}

TEST_F(Trace, LogIsHeadedOnceAndReplacesAnOlderOne) {
  const auto file = std::filesystem::temp_directory_path() / "qto_trace_test.log";
  std::ofstream(file) << "old";
  set_trace_sink(trace_log(file.string(), "the client"));
  set_tracing(true);
  middle();
  inner();
  set_trace_sink({});
  std::ifstream in(file);
  std::string line;
  std::getline(in, line);
  EXPECT_EQ(line, "Tracing the client");
  std::getline(in, line);
  EXPECT_TRUE(line.starts_with("Session started 2")) << line;
  std::stringstream rest;
  rest << in.rdbuf();
  EXPECT_EQ(rest.str(), "\nModelPart.WorkBookPath[Let]\n\tMain.IsURL\nMain.IsURL\n");
  std::filesystem::remove(file);
}

}  // namespace
}  // namespace qto::diagnostics
