#include "qto/diagnostics/procedure.hpp"

#include <new>

#include "qto/automation/error.hpp"
#include "qto/diagnostics/error_report.hpp"
#include "qto/diagnostics/failure_number.hpp"
#include "qto/diagnostics/version.hpp"

namespace qto {
namespace {

constexpr short most_retries = 3;
/// A statement in a loop that fails every time must not be skipped for ever.
constexpr short most_skips = 100;

diagnostics::ErrorReport compose(const diagnostics::QualifiedName& name, std::int32_t number,
                                 std::string description, int line) {
  return {number,
          std::move(description),
          diagnostics::project_name,
          name.module,
          name.member,
          line,
          std::string(diagnostics::library_version)};
}

}  // namespace

void Procedure::enter() noexcept {
  diagnostics::trace_in(name_);
  entered_ = true;
}

void Procedure::leave() noexcept { diagnostics::trace_out(name_); }

Procedure::Next Procedure::handle(int line) {
  diagnostics::Outcome outcome = diagnostics::Outcome::leave;
  try {
    throw;
  } catch (const AutomationError& error) {
    if (error.reported_first) diagnostics::report_error(compose(name_, error.number, "", line));
    throw;
  } catch (const std::exception& failure) {
    outcome = diagnostics::report_error(
        compose(name_, diagnostics::number_of(failure), failure.what(), line));
  }
  switch (outcome) {
    case diagnostics::Outcome::end_program:
      diagnostics::end_program();
      return Next::leave;
    case diagnostics::Outcome::next_statement:
      return ++skipped_ <= most_skips ? Next::go_on : Next::leave;
    case diagnostics::Outcome::retry_statement:
      return ++retries_ <= most_retries ? Next::retry : Next::leave;
    default:
      return Next::leave;
  }
}

}  // namespace qto
