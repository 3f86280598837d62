#include "qto/diagnostics/trace.hpp"

#include <new>
#include <vector>

#include "qto/automation/apartment.hpp"
#include "qto/diagnostics/trace_outputs.hpp"

namespace qto::diagnostics {
namespace {

struct Calls {
  std::vector<QualifiedName> stack;
  std::int32_t depth = 0;
  std::int32_t count = 0;
  bool tracing = false;
  /// Rises with every switching on: what entered before then is not to be taken off the new stack.
  TracedCall session = 0;

  Calls() = default;
  Calls(const Calls&) = delete;
  Calls& operator=(const Calls&) = delete;
  ~Calls() { trace(false); }
  void trace(bool on) noexcept {
    if (on == tracing) return;
    tracing = on;
    detail::tracing_threads.fetch_add(on ? 1 : -1, std::memory_order_relaxed);
  }
};

thread_local constinit ApartmentState<Calls> calls_of_thread;

}  // namespace

bool detail::this_thread_traces() noexcept {
  try {
    return calls_of_thread.get().tracing;
  } catch (const std::bad_alloc&) {
    return false;  // it never traced
  }
}

void set_tracing(bool on) {
  Calls& calls = calls_of_thread.get();
  if (on && !calls.tracing) {
    calls.depth = calls.count = 0;
    calls.stack.clear();
    if (++calls.session == 0) calls.session = 1;
  }
  calls.trace(on);
}

TracedCall trace_in(const char* module, const char* member) noexcept {
  Calls& calls = calls_of_thread.get();
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
  Calls& calls = calls_of_thread.get();
  if (call != calls.session) return;
  const std::int32_t depth = calls.depth;
  if (calls.depth > 0) --calls.depth;
  if (calls.count > 0) --calls.count;
  // Where tracing was switched off meanwhile the stack is put right, and nothing is written.
  if (calls.tracing) detail::write_trace({module, member}, depth, TraceMarker::leaving);
}

std::int32_t trace_depth() noexcept { return calls_of_thread.get().depth; }

std::int32_t call_count() noexcept { return calls_of_thread.get().count; }

std::span<const QualifiedName> call_stack() noexcept { return calls_of_thread.get().stack; }

}  // namespace qto::diagnostics
