#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <string_view>

#include "qto/automation/event.hpp"

namespace qto::diagnostics {

/// What the procedure in which a failure arose does next.
enum class Outcome : std::int32_t {
  end_program = 3,
  next_statement = 4,   ///< also what closing the dialog without a choice means
  retry_statement = 5,  ///< the failing statement again, a bounded number of times
  leave = 6,
  leave_also = 7,
  send_report = 8,
};

/// The number that asks the reporter to send the saved report instead of composing a new one.
inline constexpr std::int32_t send_saved_report = -1;

/// An unexpected failure, as the standard error handling reports it.
struct ErrorReport {
  std::int32_t number = 0;
  std::string description;
  std::string_view project;
  std::string_view module;  ///< "DrillDown"
  std::string_view member;  ///< "InputCells[Get]"
  int line = 0;
  std::string version;  ///< major.minor.revision of the library

  /// One field a line, each ended by carriage return and line feed.
  std::string text() const;
};

/// Decides the outcome of a report: a dialog, a console form, or the library's default, which
/// leaves the procedure. Process-wide, like the rest of the diagnostics.
using Reporter = std::function<Outcome(const ErrorReport&)>;

/// Replaces the reporter; an empty one restores the default.
void set_reporter(Reporter reporter);
/// What outcome 3 runs; the default ends the process with status 3.
void set_end_program(std::function<void()> end);
/// Every report as it arises, before its outcome is asked for.
Event<const ErrorReport&>& error_reported();

/// Hands a failure to the reporter; with the number -1 the saved report is sent. Never returns
/// send_report: the reporter is asked again after the report went out.
Outcome report_error(ErrorReport report);
/// Runs the end routine.
void end_program();

}  // namespace qto::diagnostics
