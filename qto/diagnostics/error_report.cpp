#include "qto/diagnostics/error_report.hpp"

#include <cstdlib>

namespace qto::diagnostics {
namespace {

struct State {
  Reporter reporter;
  std::function<void()> end;
  Event<const ErrorReport&> reported;
};

State& state() {
  static State instance;
  return instance;
}

}  // namespace

std::string ErrorReport::text() const {
  const auto line_of = [](std::string_view label, std::string_view value) {
    return std::string(label).append(value).append("\r\n");
  };
  return line_of("Error ", std::to_string(number)) + line_of(" Description: ", description) +
         line_of(" Project: ", project) + line_of(" Module: ", module) +
         line_of(" Line: ", std::to_string(line)) + line_of(" Version: ", version);
}

void set_reporter(Reporter reporter) { state().reporter = std::move(reporter); }

void set_end_program(std::function<void()> end) { state().end = std::move(end); }

Event<const ErrorReport&>& error_reported() { return state().reported; }

Outcome report_error(ErrorReport report) {
  state().reported(report);
  for (;;) {
    const Outcome outcome = state().reporter ? state().reporter(report) : Outcome::leave;
    if (outcome != Outcome::send_report) return outcome;
    report.number = send_saved_report;
  }
}

void end_program() {
  if (state().end)
    state().end();
  else
    std::exit(3);
}

}  // namespace qto::diagnostics
