#include "qto/diagnostics/trace.hpp"

#include <vector>

#include "qto/diagnostics/trace_outputs.hpp"

namespace qto::diagnostics {
namespace {

struct State {
  std::vector<QualifiedName> stack;
  std::int32_t depth = 0;
  std::int32_t count = 0;
  /// Rises with every switching on: what entered before then is not to be taken off the new stack.
  TracedCall session = 0;
};

State state;

}  // namespace

void set_tracing(bool on) {
  if (on && !detail::tracing_on) {
    state.depth = state.count = 0;
    state.stack.clear();
    if (++state.session == 0) state.session = 1;
  }
  detail::tracing_on = on;
}

TracedCall trace_in(const char* module, const char* member) noexcept {
  const QualifiedName name{module, member};
  try {
    state.stack.resize(static_cast<std::size_t>(state.count));
    state.stack.push_back(name);
  } catch (...) {
    return 0;  // no memory for the stack: this call is left out of it
  }
  ++state.depth;
  ++state.count;
  detail::write_trace(name, state.depth, TraceMarker::entering);
  return state.session;
}

void trace_out(const char* module, const char* member, TracedCall call) noexcept {
  if (call != state.session) return;
  const std::int32_t depth = state.depth;
  if (state.depth > 0) --state.depth;
  if (state.count > 0) --state.count;
  // Where tracing was switched off meanwhile the stack is put right, and nothing is written.
  if (detail::tracing_on) detail::write_trace({module, member}, depth, TraceMarker::leaving);
}

std::int32_t trace_depth() noexcept { return state.depth; }

std::int32_t call_count() noexcept { return state.count; }

std::span<const QualifiedName> call_stack() noexcept { return state.stack; }

}  // namespace qto::diagnostics
