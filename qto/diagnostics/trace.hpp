#pragma once

#include <functional>
#include <string_view>
#include <vector>

/// The call trace. State is process-wide and unguarded, like the rest of the engine.
namespace qto::diagnostics {

/// A procedure's name in two pieces, as the error report shows them; joined by "." it is the
/// qualified name, such as "DrillDown.InputCells[Get]".
struct QualifiedName {
  std::string_view module;
  std::string_view member;
};

/// Receives every entry and exit while tracing is on; depth counts from 1.
using TraceSink = std::function<void(const QualifiedName& name, int depth, bool entering)>;

namespace detail {
inline bool tracing_on = false;
}

/// False by default; then procedures do not touch the call stack at all.
inline bool tracing() noexcept { return detail::tracing_on; }
void set_tracing(bool on);
void set_trace_sink(TraceSink sink);

void trace_in(const QualifiedName& name);
void trace_out(const QualifiedName& name);
/// Open traced calls, outermost first.
const std::vector<QualifiedName>& call_stack();

}  // namespace qto::diagnostics
