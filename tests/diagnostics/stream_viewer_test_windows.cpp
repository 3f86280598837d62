#include <gtest/gtest.h>
#include <windows.h>

#include "qto/automation/error.hpp"
#include "qto/automation/wide_text_windows.hpp"
#include "qto/diagnostics/procedure.hpp"
#include "qto/diagnostics/stream_viewer.hpp"
#include "tests/support/diagnostics_fixtures.hpp"

namespace qto::diagnostics {
namespace {

const std::string pipe_name = "\\\\.\\pipe\\qto_viewer_" + std::to_string(GetCurrentProcessId());

/// The reading end of a pipe that a viewer listens on.
class Listener {
 public:
  Listener()
      : pipe_(CreateNamedPipeW(text::to_wide(pipe_name).c_str(), PIPE_ACCESS_INBOUND,
                               PIPE_TYPE_BYTE | PIPE_WAIT, 1, 4096, 4096, 0, nullptr)) {}
  Listener(const Listener&) = delete;
  Listener& operator=(const Listener&) = delete;
  ~Listener() { CloseHandle(pipe_); }

  std::string read_all() const {
    std::string text;
    char buffer[1024];
    DWORD got = 0;
    while (ReadFile(pipe_, buffer, sizeof buffer, &got, nullptr) && got > 0)
      text.append(buffer, got);
    return text;
  }

 private:
  HANDLE pipe_;
};

void traced_call() {
  set_tracing(true);
  { Procedure outer("Parser", "Parse"); }
  set_tracing(false);
}

void switch_on() {
  set_trace_viewer(open_stream_viewer(pipe_name));
  set_viewer_output(true);
}

TEST(StreamViewer, SendsToAPipe) {
  const Listener listener;
  switch_on();
  traced_call();
  set_trace_viewer(nullptr);
  EXPECT_EQ(listener.read_all(), "1 Parser.Parse\n2 Parser.Parse\n");
}

TEST(StreamViewer, ThatIsGoneIsReportedOnce) {
  const test::ScriptedDialog dialog(Outcome::leave);
  {
    const Listener listener;
    switch_on();
  }
  traced_call();
  set_trace_viewer(nullptr);
  EXPECT_EQ(dialog.reports.size(), 1u);
  EXPECT_FALSE(viewer_output());
}

TEST(StreamViewer, RefusesWhatItCannotReach) {
  for (const char* target : {"", "C:\\a\\file", "\\\\.\\pipe\\qto_nobody", "fd:", "fd:x", "fd:987"})
    EXPECT_THROW(open_stream_viewer(target), NumberedFailure) << target;
}

}  // namespace
}  // namespace qto::diagnostics
