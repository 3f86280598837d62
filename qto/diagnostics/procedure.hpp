#pragma once

#include "qto/diagnostics/trace.hpp"

namespace qto {

/// The frame in which every procedure of the engine stands: it registers with the call trace under
/// its qualified name and gives failures the standard error handling.
///
/// A handler cannot return into a frame that has unwound, so the unit of resuming is a statement:
/// whatever may fail in the host runs through step(), and retry, next and leave act at exactly that
/// statement. Plain code stays plain.
class Procedure {
 public:
  /// `module` and `member` must be literals: they outlive the call. Both together stand in the list
  /// of procedures.cpp.
  Procedure(const char* module, const char* member) noexcept
      : module_(module),
        member_(member),
        traced_(diagnostics::tracing() ? diagnostics::trace_in(module, member) : 0) {}
  Procedure(const Procedure&) = delete;
  Procedure& operator=(const Procedure&) = delete;
  /// Tracing out also happens when an error passes through, so that the call stack stays balanced.
  ~Procedure() {
    if (traced_ != 0) diagnostics::trace_out(module_, member_, traced_);
  }

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

 private:
  enum class Next { retry, go_on, leave };
  struct Tries {
    short retries = 0;
    short skips = 0;
  };
  /// Inspects the exception in flight; rethrows what belongs to the client.
  static Next handle(const char* module, const char* member, Tries& tries, int line);
  [[noreturn]] static void abandon();

  // Each a scalar: while tracing is off they live in no register and no memory.
  const char* const module_;
  const char* const member_;
  const diagnostics::TracedCall traced_;
  Tries tries_;
};

}  // namespace qto
