#include "qto/diagnostics/error_report.hpp"

#include <cerrno>
#include <cstdlib>
#include <utility>

#include "qto/automation/apartment.hpp"
#include "qto/diagnostics/error_dialog.hpp"
#include "qto/diagnostics/mail_report.hpp"
#include "qto/diagnostics/subject.hpp"
#include "qto/diagnostics/version.hpp"

namespace qto::diagnostics {
namespace {

struct ReportingState {
  std::shared_ptr<ErrorDialog> dialog;
  std::function<void()> end;
  Event<const ErrorReport&> reported;
  SavedError error;
  ErrorReport report;
  std::int32_t last_action = 0;
  bool reporting = false;
};

thread_local constinit ApartmentState<ReportingState> reporting;

ReportingState& reporting_state() { return reporting.get(); }

/// Set while a report is being made.
class Reporting {
 public:
  Reporting() : outermost_(!std::exchange(reporting_state().reporting, true)) {}
  Reporting(const Reporting&) = delete;
  Reporting& operator=(const Reporting&) = delete;
  ~Reporting() {
    if (outermost_) reporting_state().reporting = false;
  }
  bool outermost() const noexcept { return outermost_; }

 private:
  const bool outermost_;
};

std::string line_of(std::string_view label, std::string_view value) {
  return std::string(label).append(value).append("\r\n");
}

void save(const Failure& failure) {
  const int system_error = errno;
  reporting_state().error = {
      failure.number,
      failure.description,
      failure.host_call.empty() ? std::string(project_name) : failure.host_call,
      "",
      0,
      system_error};
}

ErrorReport compose(const Failure& failure, QualifiedName procedure, int line) {
  ErrorReport report;
  report.number = failure.number;
  report.description = failure.description;
  report.project = project_name;
  report.module = procedure.module;
  report.member = procedure.member;
  report.line = line;
  report.version = library_version;
  report.formula_cell = describe_subject();
  report.host_call = failure.host_call;
  return report;
}

DialogContent content_of(const ErrorReport& report, bool sent) {
  DialogContent content;
  content.caption = "Error Report";
  content.report = report.text();
  content.further_lines = report.further_lines();
  content.sent = sent;
  const auto add = [&content](Outcome outcome, std::string_view label) {
    content.buttons.push_back({static_cast<std::int32_t>(outcome), label});
  };
  add(Outcome::end_program, "&Quit the program");
  add(Outcome::next_statement, "&Continue");
  add(Outcome::retry_statement, "&Retry");
  if (sent) {
    content.texts = {"Thank you for reporting this error. ", "Please click OK to continue."};
    add(Outcome::leave_also, "&OK");
    return content;
  }
  content.message =
      "An unexpected error has occured in this application. \r\n"
      "Please help us by reporting this error.";
  content.texts = {"We are very sorry for this inconvenience.",
                   "It would be a great help to us in fixing this error if you could report it by "
                   "e-mail.",
                   "Thank you for your time."};
  add(Outcome::leave, "&Don't report");
  if (!support().address.empty()) add(Outcome::send_report, "&E-mail the report");
  return content;
}

Outcome show_dialog(bool sent) {
  const auto dialog = reporting_state().dialog;
  if (!dialog) return Outcome::leave;
  const auto pressed = dialog->show(content_of(reporting_state().report, sent));
  reporting_state().last_action =
      pressed.value_or(static_cast<std::int32_t>(Outcome::next_statement));
  return static_cast<Outcome>(reporting_state().last_action);
}

Outcome send_and_thank() {
  if (const auto dialog = reporting_state().dialog) send_report(reporting_state().report, *dialog);
  return show_dialog(true);
}

}  // namespace

std::string ErrorReport::text() const {
  return line_of("Error ", std::to_string(number)) + line_of(" Description: ", description) +
         line_of(" Project: ", project) + line_of(" Module: ", module) +
         line_of(" Line: ", std::to_string(line)) + line_of(" Version: ", version);
}

std::string ErrorReport::further_lines() const {
  std::string lines = line_of(" Procedure: ", std::string(module) + "." + std::string(member));
  if (!formula_cell.empty()) lines += line_of(" Formula cell: ", formula_cell);
  if (!host_call.empty()) lines += line_of(" Host call: ", host_call);
  return lines;
}

Outcome report_error(const Failure& failure, QualifiedName procedure, int line) {
  const Reporting in_progress;
  if (failure.number == send_saved_report)
    return in_progress.outermost() ? send_and_thank() : Outcome::leave;
  save(failure);
  ErrorReport report = compose(failure, procedure, line);
  if (!in_progress.outermost()) {
    reporting_state().reported(report);
    return Outcome::leave;
  }
  reporting_state().report = std::move(report);
  reporting_state().reported(reporting_state().report);
  return show_dialog(false);
}

const SavedError& saved_error() { return reporting_state().error; }

const ErrorReport& saved_report() { return reporting_state().report; }

std::int32_t last_action() noexcept { return reporting_state().last_action; }

Event<const ErrorReport&>& error_reported() { return reporting_state().reported; }

void set_error_dialog(std::shared_ptr<ErrorDialog> dialog) {
  reporting_state().dialog = std::move(dialog);
}

const std::shared_ptr<ErrorDialog>& error_dialog() { return reporting_state().dialog; }

void set_end_program(std::function<void()> end) { reporting_state().end = std::move(end); }

void end_program() {
  if (reporting_state().end)
    reporting_state().end();
  else
    std::exit(3);
}

}  // namespace qto::diagnostics
