#pragma once

#include <cstdint>
#include <span>
#include <string_view>

/// The call trace. State is process-wide and unguarded, like the rest of the engine.
///
/// While tracing is on, every procedure registers on entry and on exit. Two outputs may be switched
/// on beside the call stack: a log and a viewer (trace_outputs.hpp).
namespace qto::diagnostics {

/// A procedure's name in two pieces, as the error report shows them; joined by "." it is the
/// qualified name, such as "DrillDown.InputCells[Get]".
struct QualifiedName {
  std::string_view module;
  std::string_view member;
  bool operator==(const QualifiedName&) const = default;
};

namespace detail {
inline bool tracing_on = false;
}

/// False by default; then procedures do not touch the call stack at all.
inline bool tracing() noexcept { return detail::tracing_on; }
/// Switching on begins with an empty call stack; calls that are open already are no part of it.
void set_tracing(bool on);

/// A call that was traced in; 0 is none.
using TracedCall = std::uint32_t;

/// Registers an entry: the stack grows by the name, and the outputs that are on get the line.
TracedCall trace_in(QualifiedName name) noexcept;
/// Registers the exit of a call that trace_in() answered for. The depth never falls below 0.
void trace_out(QualifiedName name, TracedCall call) noexcept;

/// Nesting of open traced calls.
std::int32_t trace_depth() noexcept;
/// Entries of the call stack that are in use.
std::int32_t call_count() noexcept;
/// Names of the calls, outermost first. Behind the first call_count() lie, until the next entry,
/// names of calls that have ended.
std::span<const QualifiedName> call_stack() noexcept;

}  // namespace qto::diagnostics
