#include "cli/diagnostics.hpp"

#include <fmt/format.h>

#include <memory>

#include "cli/asking/complaint.hpp"
#include "cli/terminal/prompt.hpp"
#include "qto/automation/error.hpp"
#include "qto/diagnostics/console_dialog.hpp"
#include "qto/diagnostics/stream_viewer.hpp"
#include "qto/diagnostics/trace_outputs.hpp"

namespace qto::cli {
namespace {

void open_log(const std::string& file) {
  diagnostics::set_trace_log(file, "qto");
  try {
    diagnostics::open_trace_log();
  } catch (const NumberedFailure& failure) {
    throw Complaint(wrong_usage, std::string("--trace: ") + failure.what());
  }
  diagnostics::set_log_output(true);
}

void open_viewer(const std::string& target) {
  try {
    diagnostics::set_trace_viewer(diagnostics::open_stream_viewer(target));
  } catch (const NumberedFailure& failure) {
    throw Complaint(wrong_usage, failure.what());
  }
  diagnostics::set_viewer_output(true);
}

}  // namespace

Tracing::Tracing(const Arguments& arguments) {
  if (!arguments.trace_file.empty()) open_log(arguments.trace_file);
  if (!arguments.trace_viewer.empty()) open_viewer(arguments.trace_viewer);
  diagnostics::set_tracing(diagnostics::log_output() || diagnostics::viewer_output());
}

Tracing::~Tracing() {
  diagnostics::set_tracing(false);
  diagnostics::set_log_output(false);
  diagnostics::set_viewer_output(false);
  diagnostics::set_trace_viewer(nullptr);
}

AskAboutReports::AskAboutReports(const Arguments& arguments, Progress& progress) {
  if (arguments.reports != ReportPolicy::ask) return;
  diagnostics::set_error_dialog(std::make_shared<diagnostics::ConsoleDialog>(
      [&progress](std::string_view text) {
        progress.hide();
        fmt::print(stderr, "{}", text);
      },
      [](std::string_view question) { return prompt_line(std::string(question)); }));
}

AskAboutReports::~AskAboutReports() { diagnostics::set_error_dialog(nullptr); }

}  // namespace qto::cli
