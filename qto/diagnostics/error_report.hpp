#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <string_view>

#include "qto/automation/event.hpp"
#include "qto/diagnostics/trace.hpp"

/// The standard error report: what happens when a failure arises inside a procedure and is not
/// expected there. All of it belongs to the calling thread's apartment.
namespace qto::diagnostics {

/// What the procedure in which a failure arose does next; the number is the position of the
/// dialog's button that was pressed. Any number that is not listed leaves the procedure.
enum class Outcome : std::int32_t {
  end_program = 3,
  next_statement = 4,   ///< also what closing the dialog without a choice means
  retry_statement = 5,  ///< the failing statement again, at most three times in a procedure
  leave = 6,
  leave_also = 7,
  send_report = 8,
};

/// The number that asks the reporter to send the saved report instead of composing a new one.
inline constexpr std::int32_t send_saved_report = -1;

/// The properties of an error, as they are saved when it is reported.
struct SavedError {
  std::int32_t number = 0;
  std::string description;
  std::string source;  ///< the call of the host that failed; otherwise the project name
  std::string help_file;
  std::int32_t help_context = 0;
  std::int32_t last_system_error = 0;  ///< errno
};

/// An unexpected failure, as the standard error handling reports it.
struct ErrorReport {
  std::int32_t number = 0;
  std::string description;
  std::string_view project;
  std::string_view module;  ///< "DrillDown"
  std::string_view member;  ///< "InputCells[Get]"
  int line = 0;
  std::string version;  ///< major.minor.revision of the library
  // What a user can act on; "" where it is not known.
  std::string formula_cell;  ///< the cell whose formula was being parsed, "[Plan.xlsx]Sheet1!B7"
  std::string host_call;     ///< the call of the host that failed, "Workbook.Worksheets"

  /// The report: one field a line, each ended by carriage return and line feed.
  std::string text() const;
  /// The lines for the user alone, in the same form; they are not sent.
  std::string further_lines() const;
};

/// The failure of a call, on its way to the reporter.
struct Failure {
  std::int32_t number = 0;
  std::string description;
  std::string host_call;
};

/// Saves the error, composes its report, announces it and shows the dialog; the action chosen is
/// the outcome. With the number -1 the saved report is sent by e-mail instead, and the dialog shows
/// again with its thanks. Without a dialog the outcome is `leave`.
///
/// A failure while a report is being made is announced and gives `leave`: a dialog never stands on
/// another.
Outcome report_error(const Failure& failure, QualifiedName procedure, int line);

/// The error reported last, its report, and the outcome chosen in the dialog last (0: none yet).
const SavedError& saved_error();
const ErrorReport& saved_report();
std::int32_t last_action() noexcept;

/// Every report as it arises, before its outcome is asked for.
Event<const ErrorReport&>& error_reported();

/// What outcome 3 runs; the default ends the process with status 3.
void set_end_program(std::function<void()> end);
void end_program();

}  // namespace qto::diagnostics
