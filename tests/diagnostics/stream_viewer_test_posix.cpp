#include "qto/diagnostics/stream_viewer.hpp"

#include <gtest/gtest.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

#include <filesystem>

#include "qto/automation/error.hpp"
#include "qto/diagnostics/procedure.hpp"
#include "tests/support/diagnostics_fixtures.hpp"

namespace qto::diagnostics {
namespace {

std::string read_all(int descriptor) {
  std::string text;
  char buffer[1024];
  for (ssize_t got; (got = read(descriptor, buffer, sizeof buffer)) > 0;)
    text.append(buffer, static_cast<std::size_t>(got));
  return text;
}

void traced_call() {
  Procedure outer("Parser", "Parse");
  Procedure inner("Parser", "is_name");
}

void trace_to(const std::string& target) {
  set_trace_viewer(open_stream_viewer(target));
  set_viewer_output(true);
  set_tracing(true);
  traced_call();
  set_tracing(false);
  set_trace_viewer(nullptr);
}

constexpr const char* messages =
    "1 Parser.Parse\n1 \tParser.is_name\n2 Parser.is_name\n2 Parser.Parse\n";

TEST(StreamViewer, SendsToAnOpenDescriptor) {
  int ends[2];
  ASSERT_EQ(pipe(ends), 0);
  trace_to("fd:" + std::to_string(ends[1]));
  close(ends[1]);
  EXPECT_EQ(read_all(ends[0]), messages);
  close(ends[0]);
}

TEST(StreamViewer, SendsToALocalSocket) {
  const std::string path =
      (std::filesystem::temp_directory_path() / ("qto_viewer_" + std::to_string(getpid())))
          .string();
  sockaddr_un address{};
  address.sun_family = AF_UNIX;
  path.copy(address.sun_path, sizeof address.sun_path - 1);
  const int listener = socket(AF_UNIX, SOCK_STREAM, 0);
  ASSERT_EQ(bind(listener, reinterpret_cast<sockaddr*>(&address), sizeof address), 0);
  ASSERT_EQ(listen(listener, 1), 0);
  trace_to(path);
  const int client = accept(listener, nullptr, nullptr);
  EXPECT_EQ(read_all(client), messages);
  close(client);
  close(listener);
  std::filesystem::remove(path);
}

TEST(StreamViewer, ThatIsGoneIsReportedOnceAndDoesNotEndTheProcess) {
  int ends[2];
  ASSERT_EQ(pipe(ends), 0);
  close(ends[0]);
  const test::ScriptedDialog dialog(Outcome::leave);
  trace_to("fd:" + std::to_string(ends[1]));
  close(ends[1]);
  EXPECT_EQ(dialog.reports.size(), 1u);
  EXPECT_FALSE(viewer_output());
}

TEST(StreamViewer, RefusesWhatItCannotReach) {
  for (const char* target : {"", "/nowhere/at/all", "fd:", "fd:x", "fd:-1", "fd:987"})
    EXPECT_THROW(open_stream_viewer(target), NumberedFailure) << target;
  EXPECT_THROW(open_stream_viewer(std::string(300, 'x')), NumberedFailure);
}

}  // namespace
}  // namespace qto::diagnostics
