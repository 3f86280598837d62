#pragma once

#include <type_traits>

#include "qto/diagnostics/trace.hpp"

namespace qto {

/// The standard handling of failures inside one procedure.
///
/// A handler cannot return into a frame that has unwound, so the unit of resuming is a statement:
/// whatever may fail in the host runs through step(), and retry, next and leave act at exactly that
/// statement. Plain code stays plain.
class StandardHandling {
 public:
  /// `module` and `member` must be literals: they outlive the call. Both together stand in the list
  /// of procedures.cpp.
  StandardHandling(const char* module, const char* member) noexcept
      : module_(module), member_(member) {}
  StandardHandling(const StandardHandling&) = delete;
  StandardHandling& operator=(const StandardHandling&) = delete;

  /// Runs one statement. An AutomationError passes on to the client (after a report where it asks
  /// for one); any other failure is reported, and the outcome decides: run it again, go on after it
  /// (true), or leave the procedure (false) with its results as they stand.
  template <class Statement>
  [[nodiscard]] bool step(Statement&& statement, int line = __builtin_LINE()) {
    for (;;) {
      try {
        statement();
        return true;
      } catch (...) {
        switch (handle(module_, member_, tries_, line)) {
          case Next::retry:
            continue;
          case Next::go_on:
            return true;
          case Next::leave:
            return false;
        }
      }
    }
  }

  /// Runs a statement whose result the rest cannot do without: unless it was completed, the
  /// procedure and those that called it are left up to the next one that can do without them, with
  /// no further report.
  template <class Statement>
  auto need(Statement&& statement, int line = __builtin_LINE()) {
    for (;;) {
      try {
        return statement();
      } catch (...) {
        if (handle(module_, member_, tries_, line) != Next::retry) abandon();
      }
    }
  }

 protected:
  // Each a scalar: unless a statement fails they live in no register and no memory.
  const char* const module_;
  const char* const member_;

 private:
  enum class Next { retry, go_on, leave };
  struct Tries {
    short retries = 0;
    short skips = 0;
  };
  /// Inspects the exception in flight; rethrows what belongs to the client.
  static Next handle(const char* module, const char* member, Tries& tries, int line);
  [[noreturn]] static void abandon();

  Tries tries_;
};

/// The frame in which every procedure of the engine stands: it registers with the call trace under
/// its qualified name and gives failures the standard handling.
class Procedure : public StandardHandling {
 public:
  Procedure(const char* module, const char* member) noexcept
      : StandardHandling(module, member),
        traced_(diagnostics::tracing() ? diagnostics::trace_in(module, member) : 0) {}
  /// Tracing out also happens when an error passes through, so that the call stack stays balanced.
  ~Procedure() {
    if (traced_ != 0) diagnostics::trace_out(module_, member_, traced_);
  }

 private:
  const diagnostics::TracedCall traced_;
};

namespace detail {

template <class Body, class... Arguments>
[[gnu::always_inline]] inline decltype(auto) run_body(const char* module, const char* member,
                                                      Body& body, Arguments&... arguments) {
  if constexpr (std::is_invocable_v<Body, StandardHandling&, Arguments&...>) {
    StandardHandling handling(module, member);
    return body(handling, arguments...);
  } else {
    return body(arguments...);
  }
}

template <class Body, class... Arguments>
[[gnu::cold, gnu::noinline]] decltype(auto) run_traced(const char* module, const char* member,
                                                       Body body, Arguments&... arguments) {
  const Procedure frame(module, member);
  return run_body(module, member, body, arguments...);
}

}  // namespace detail

/// Bodies that are too long for the compiler's own judgement: `[this]() QTO_INLINED {…}`.
#define QTO_INLINED __attribute__((always_inline))

/// The same frame for a procedure that a drill enters for every part: `body` is all it does, called
/// with its StandardHandling where it wants that, and with the arguments. What is traced runs
/// elsewhere, so while tracing is off the frame is one test of a flag and keeps no register busy.
template <class Body, class... Arguments>
[[gnu::always_inline]] inline decltype(auto) procedure(const char* module, const char* member,
                                                       Body body, Arguments&... arguments) {
  static_assert(sizeof(Body) <= 16 && std::is_trivially_copyable_v<Body>,
                "what does not fit into two registers of 64 bits costs more than the frame");
  if (diagnostics::tracing()) [[unlikely]]
    return detail::run_traced(module, member, body, arguments...);
  return detail::run_body(module, member, body, arguments...);
}

}  // namespace qto
