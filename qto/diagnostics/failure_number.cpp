#include "qto/diagnostics/failure_number.hpp"

#include <new>

#include "qto/automation/error.hpp"

namespace qto::diagnostics {

std::int32_t number_of(const std::exception& failure) noexcept {
  if (const auto* automation = dynamic_cast<const AutomationError*>(&failure))
    return automation->number;
  if (const auto* numbered = dynamic_cast<const NumberedFailure*>(&failure))
    return numbered->number;
  if (dynamic_cast<const std::bad_alloc*>(&failure)) return 7;  // "Out of memory"
  return 5;                                                     // "Invalid procedure call"
}

}  // namespace qto::diagnostics
