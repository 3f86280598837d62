#pragma once

#include <atomic>
#include <cstdint>
#include <span>
#include <string_view>

/// The call trace. Each apartment traces its own calls.
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
/// How many threads trace. Hidden: every procedure reads it, and one library holds them all.
[[gnu::visibility("hidden")]] inline constinit std::atomic<std::int32_t> tracing_threads = 0;
[[gnu::cold]] bool this_thread_traces() noexcept;
}  // namespace detail

/// False by default; then procedures do not touch the call stack at all.
#ifdef QTO_WITHOUT_TRACING  // only to measure what the test of the flag costs
constexpr bool tracing() noexcept { return false; }
#else
inline bool tracing() noexcept {
  if (detail::tracing_threads.load(std::memory_order_relaxed) == 0) [[likely]]
    return false;
  return detail::this_thread_traces();
}
#endif
/// Switching on begins with an empty call stack; calls that are open already are no part of it.
void set_tracing(bool on);

/// A call that was traced in; 0 is none.
using TracedCall = std::uint32_t;

/// Registers an entry: the stack grows by the name, and the outputs that are on get the line.
/// `module` and `member` must be literals: they outlive the call.
[[gnu::cold]] TracedCall trace_in(const char* module, const char* member) noexcept;
/// Registers the exit of a call that trace_in() answered for. The depth never falls below 0.
[[gnu::cold]] void trace_out(const char* module, const char* member, TracedCall call) noexcept;

/// Nesting of open traced calls.
std::int32_t trace_depth() noexcept;
/// Entries of the call stack that are in use.
std::int32_t call_count() noexcept;
/// Names of the calls, outermost first. Behind the first call_count() lie, until the next entry,
/// names of calls that have ended.
std::span<const QualifiedName> call_stack() noexcept;

}  // namespace qto::diagnostics
