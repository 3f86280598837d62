#include "qto/diagnostics/trace_outputs.hpp"

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <ctime>
#include <filesystem>
#include <string_view>
#include <utility>

#include "qto/automation/apartment.hpp"
#include "qto/automation/error.hpp"
#include "qto/automation/file_path.hpp"
#include "qto/diagnostics/procedure.hpp"

namespace qto::diagnostics {
namespace {

/// "Path/File access error", as the automation run time numbers it.
constexpr std::int32_t file_access_error = 75;

struct CloseFile {
  void operator()(std::FILE* file) const { std::fclose(file); }
};

using File = std::unique_ptr<std::FILE, CloseFile>;

constexpr std::string_view first_words = "Tracing ";
constexpr std::string_view second_line = "Session started ";

/// Whether opening the file for writing would destroy something else than a trace. Devices and
/// pipes hold nothing that could be lost.
bool holds_something_else(const std::string& file_name) {
  std::error_code unknown;
  if (!std::filesystem::is_regular_file(text::to_path(file_name), unknown)) return false;
  const File file(text::open_file(file_name, "rb"));
  if (!file) return true;
  char buffer[512];
  const std::string_view head(buffer, std::fread(buffer, 1, sizeof buffer, file.get()));
  if (head.empty()) return false;
  const std::size_t title_end = head.find('\n');
  return !head.starts_with(first_words) || title_end == std::string_view::npos ||
         !head.substr(title_end + 1).starts_with(second_line);
}

class Log {
 public:
  void name(std::string file_name, std::string title) {
    file_.reset();
    file_name_ = std::move(file_name);
    title_ = std::move(title);
  }

  void open() {
    if (file_) return;
    if (holds_something_else(file_name_))
      fail("it holds something else than a trace, and nothing else is replaced");
    file_.reset(text::open_file(file_name_, "w"));
    if (!file_) fail(std::strerror(errno));
    const std::time_t now = std::time(nullptr);
    std::tm local{};
    localtime_r(&now, &local);
    char moment[32] = "";
    std::strftime(moment, sizeof moment, "%Y-%m-%d %H:%M:%S", &local);
    std::fprintf(file_.get(), "%s%s\n%s%s\n\n", first_words.data(), title_.c_str(),
                 second_line.data(), moment);
  }

  void write(const std::string& line) {
    open();
    // What a failing program did last is what the log is for.
    if (std::fprintf(file_.get(), "%s\n", line.c_str()) < 0 || std::fflush(file_.get()) != 0)
      fail(std::strerror(errno));
  }

 private:
  [[noreturn]] void fail(const std::string& why) {
    throw NumberedFailure(file_access_error,
                          "the trace log " + file_name_ + " cannot be written: " + why);
  }

  std::string file_name_;
  std::string title_;
  File file_;
};

struct State {
  Log log;
  std::shared_ptr<TraceViewer> viewer;
  bool log_on = false;
  bool viewer_on = false;
  bool writing = false;
};

thread_local constinit ApartmentState<State> outputs_of_thread;

State& state() { return outputs_of_thread.get(); }

/// Runs one output as a statement of its own procedure; one that fails for good is switched off,
/// for it would fail again at every call of the engine.
template <class Write>
void run_output(Procedure& proc, bool& on, Write&& write) {
  bool written = false;
  (void)proc.step([&] {
    write();
    written = true;
  });
  if (!written) on = false;
}

void write_trace_log(const std::string& line) {
  Procedure proc("Diagnostics", "write_trace_log");
  run_output(proc, state().log_on, [&] { state().log.write(line); });
}

void send_to_viewer(const std::string& line, TraceMarker marker) {
  Procedure proc("Diagnostics", "send_to_viewer");
  const auto viewer = state().viewer;  // it may be taken away while it is at work
  run_output(proc, state().viewer_on, [&] { viewer->send(line, marker); });
}

}  // namespace

std::string trace_line(QualifiedName name, std::int32_t depth) {
  std::string line(depth > 0 ? static_cast<std::size_t>(depth) - 1 : 0, '\t');
  return line.append(name.module).append(".").append(name.member);
}

void set_trace_log(std::string file_name, std::string application_title) {
  state().log.name(std::move(file_name), std::move(application_title));
}

void open_trace_log() { state().log.open(); }

void set_log_output(bool on) { state().log_on = on; }

bool log_output() noexcept { return state().log_on; }

void set_trace_viewer(std::shared_ptr<TraceViewer> viewer) { state().viewer = std::move(viewer); }

void set_viewer_output(bool on) { state().viewer_on = on; }

bool viewer_output() noexcept { return state().viewer_on; }

namespace detail {

void write_trace(QualifiedName name, std::int32_t depth, TraceMarker marker) noexcept {
  State& outputs = state();
  const bool entering = marker == TraceMarker::entering;
  const bool to_log = outputs.log_on && entering;
  const bool to_viewer = outputs.viewer_on && outputs.viewer;
  // The outputs are procedures themselves; their own calls would have no end.
  if ((!to_log && !to_viewer) || std::exchange(outputs.writing, true)) return;
  try {
    const std::string line = trace_line(name, entering ? depth : 1);
    if (to_log) write_trace_log(line);
    if (to_viewer) send_to_viewer(line, marker);
  } catch (...) {
    // No memory for a line: it is left out, the traced call is not disturbed.
  }
  outputs.writing = false;
}

}  // namespace detail
}  // namespace qto::diagnostics
