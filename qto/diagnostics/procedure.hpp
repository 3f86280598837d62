#pragma once

#include <string_view>
#include <utility>

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
  /// `module` and `member` must be literals: they outlive the call.
  Procedure(std::string_view module, std::string_view member) noexcept : name_{module, member} {
    if (diagnostics::tracing()) enter();
  }
  Procedure(Procedure&& other) noexcept
      : name_(other.name_),
        retries_(other.retries_),
        skipped_(other.skipped_),
        entered_(std::exchange(other.entered_, false)) {}
  Procedure(const Procedure&) = delete;
  Procedure& operator=(const Procedure&) = delete;
  Procedure& operator=(Procedure&&) = delete;
  /// Tracing out also happens when an error passes through, so that the call stack stays balanced.
  ~Procedure() {
    if (entered_) leave();
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
        switch (handle(line)) {
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

 private:
  enum class Next { retry, go_on, leave };
  void enter() noexcept;
  void leave() noexcept;
  /// Inspects the exception in flight; rethrows what belongs to the client.
  Next handle(int line);

  diagnostics::QualifiedName name_;
  short retries_ = 0;
  short skipped_ = 0;
  bool entered_ = false;
};

}  // namespace qto
