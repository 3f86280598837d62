#pragma once

#include <memory>
#include <string>

#include "qto/diagnostics/trace.hpp"

/// Where traced calls are written to: a file, and a viewer outside of the process.
namespace qto::diagnostics {

/// The line that an entry makes: a tab for every open call above it and the qualified name.
std::string trace_line(QualifiedName name, std::int32_t depth);

/// Names the file of the trace log and the client whose title heads it. The file is opened at the
/// first line and stays open; naming a file again begins a new log. A trace that was written before
/// is replaced, any other file with content never: that log cannot be written.
void set_trace_log(std::string file_name, std::string application_title);
/// Opens the named log without waiting for its first line. Throws NumberedFailure when it cannot be
/// written.
void open_trace_log();
/// Whether entries are written to the log; off by default. A log that cannot be written is reported
/// as an error once and switched off.
void set_log_output(bool on);
bool log_output() noexcept;

/// The marker of a line for the viewer.
enum class TraceMarker : int { entering = 1, leaving = 2 };

/// The channel to a program that shows the trace while it arises.
class TraceViewer {
 public:
  virtual ~TraceViewer() = default;
  /// An entry comes as its line (tabs and qualified name), an exit as the qualified name alone.
  /// Throwing ends viewer output: the failure is reported once.
  virtual void send(std::string_view line, TraceMarker marker) = 0;
};

/// The viewer that gets the lines; null takes it away. Setting one does not switch output on.
void set_trace_viewer(std::shared_ptr<TraceViewer> viewer);
/// Whether lines go to the viewer; off by default.
void set_viewer_output(bool on);
bool viewer_output() noexcept;

namespace detail {
/// Hands a call to the outputs that are on.
void write_trace(QualifiedName name, std::int32_t depth, TraceMarker marker) noexcept;
}  // namespace detail

}  // namespace qto::diagnostics
