#pragma once

#include <string_view>

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
  Procedure(std::string_view module, std::string_view member) noexcept
      : name_{module, member}, traced_(diagnostics::tracing() ? diagnostics::trace_in(name_) : 0) {}
  Procedure(const Procedure&) = delete;
  Procedure& operator=(const Procedure&) = delete;
  /// Tracing out also happens when an error passes through, so that the call stack stays balanced.
  ~Procedure() {
    if (traced_ != 0) diagnostics::trace_out(name_, traced_);
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
        switch (handle(name_, tries_, line)) {
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
        if (handle(name_, tries_, line) != Next::retry) abandon();
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
  static Next handle(diagnostics::QualifiedName name, Tries& tries, int line);
  [[noreturn]] static void abandon();

  const diagnostics::QualifiedName name_;
  const diagnostics::TracedCall traced_;
  Tries tries_;
};

}  // namespace qto
