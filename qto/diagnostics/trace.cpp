#include "qto/diagnostics/trace.hpp"

namespace qto::diagnostics {
namespace {
std::vector<QualifiedName> stack;
TraceSink sink;
}  // namespace

void set_tracing(bool on) {
  detail::tracing_on = on;
  if (!on) stack.clear();
}

void set_trace_sink(TraceSink next) { sink = std::move(next); }

void trace_in(const QualifiedName& name) {
  stack.push_back(name);
  if (sink) sink(name, static_cast<int>(stack.size()), true);
}

void trace_out(const QualifiedName& name) {
  // Switched on in the middle of a call, the stack misses the entries above it.
  const int depth = static_cast<int>(stack.size());
  if (!stack.empty()) stack.pop_back();
  if (sink) sink(name, depth, false);
}

const std::vector<QualifiedName>& call_stack() { return stack; }

}  // namespace qto::diagnostics
