#include "qto/diagnostics/procedure.hpp"

#include <exception>

#include "qto/automation/error.hpp"
#include "qto/diagnostics/error_report.hpp"
#include "qto/diagnostics/failure_number.hpp"

namespace qto {
namespace {

constexpr short most_retries = 3;
/// A statement in a loop that fails every time must not be skipped for ever.
constexpr short most_skips = 100;
/// A dialog that sends again and again must come to an end.
constexpr int most_sendings = 10;

/// Was reported where it arose; leaves procedures up to one that can do without the result.
class Abandoned : public std::exception {
 public:
  const char* what() const noexcept override { return "given up after an error report"; }
};

diagnostics::Failure failure_of(const std::exception& failure) {
  const auto* numbered = dynamic_cast<const NumberedFailure*>(&failure);
  return {diagnostics::number_of(failure), failure.what(), numbered ? numbered->call : ""};
}

/// The procedure's handler; sending the report runs it again with the number -1.
diagnostics::Outcome ask(const std::exception& failure, diagnostics::QualifiedName name, int line) {
  auto outcome = diagnostics::report_error(failure_of(failure), name, line);
  for (int sent = 0; outcome == diagnostics::Outcome::send_report; ++sent) {
    if (sent == most_sendings) return diagnostics::Outcome::leave;
    outcome = diagnostics::report_error({diagnostics::send_saved_report, "", ""}, name, line);
  }
  return outcome;
}

}  // namespace

StandardHandling::Next StandardHandling::handle(const char* module, const char* member,
                                                Tries& tries, int line) {
  const diagnostics::QualifiedName name{module, member};
  diagnostics::Outcome outcome = diagnostics::Outcome::leave;
  try {
    throw;
  } catch (const AutomationError& error) {
    if (error.reported_first) ask(error, name, line);
    throw;
  } catch (const Abandoned&) {
    return Next::leave;
  } catch (const std::exception& failure) {
    outcome = ask(failure, name, line);
  }
  switch (outcome) {
    case diagnostics::Outcome::end_program:
      diagnostics::end_program();
      return Next::leave;
    case diagnostics::Outcome::next_statement:
      return ++tries.skips <= most_skips ? Next::go_on : Next::leave;
    case diagnostics::Outcome::retry_statement:
      return ++tries.retries <= most_retries ? Next::retry : Next::leave;
    default:
      return Next::leave;
  }
}

void StandardHandling::abandon() { throw Abandoned(); }

}  // namespace qto
