#include "qto/diagnostics/trace.hpp"

#include <vector>

#include "qto/diagnostics/trace_outputs.hpp"

namespace qto::diagnostics {
namespace {

struct Calls {
  std::vector<QualifiedName> stack;
  std::int32_t depth = 0;
  std::int32_t count = 0;
  /// Rises with every switching on: what entered before then is not to be taken off the new stack.
  TracedCall session = 0;
};

Calls calls;

}  // namespace

void set_tracing(bool on) {
  if (on && !detail::tracing_on) {
    calls.depth = calls.count = 0;
    calls.stack.clear();
    if (++calls.session == 0) calls.session = 1;
  }
  detail::tracing_on = on;
}

TracedCall trace_in(const char* module, const char* member) noexcept {
  const QualifiedName name{module, member};
  try {
    calls.stack.resize(static_cast<std::size_t>(calls.count));
    calls.stack.push_back(name);
  } catch (...) {
    return 0;  // no memory for the stack: this call is left out of it
  }
  ++calls.depth;
  ++calls.count;
  detail::write_trace(name, calls.depth, TraceMarker::entering);
  return calls.session;
}

void trace_out(const char* module, const char* member, TracedCall call) noexcept {
  if (call != calls.session) return;
  const std::int32_t depth = calls.depth;
  if (calls.depth > 0) --calls.depth;
  if (calls.count > 0) --calls.count;
  // Where tracing was switched off meanwhile the stack is put right, and nothing is written.
  if (detail::tracing_on) detail::write_trace({module, member}, depth, TraceMarker::leaving);
}

std::int32_t trace_depth() noexcept { return calls.depth; }

std::int32_t call_count() noexcept { return calls.count; }

std::span<const QualifiedName> call_stack() noexcept { return calls.stack; }

}  // namespace qto::diagnostics
