#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "qto/automation/error.hpp"

namespace qto::com {

/// The standard error numbers of late-bound calls.
enum class CallError : std::uint32_t {
  member_not_found = 0x80020003,  ///< also: reading what can only be written, and the reverse
  parameter_not_found = 0x80020004,
  type_mismatch = 0x80020005,
  unknown_name = 0x80020006,
  overflow = 0x8002000A,
  bad_parameter_count = 0x8002000E,
  parameter_not_optional = 0x8002000F,
};

/// A call that never reached the member. `argument` counts from 0 in the order of the table.
class CallFailure : public AutomationError {
 public:
  explicit CallFailure(CallError error, std::optional<std::uint32_t> which = {}) noexcept
      : AutomationError(static_cast<std::int32_t>(error)), argument(which) {}
  std::optional<std::uint32_t> argument;
};

/// The number under which the exception being handled reaches a client: its own when it is an
/// automation error, 800Axxxx for the numbered failures of the host and of collections, 8007000E
/// without memory, and 80004005 for anything else. Only inside a catch block.
std::int32_t current_error_number() noexcept;
/// What the exception being handled says, in one sentence; "" when it says nothing.
std::string current_error_text();

/// Runs what answers a result; an exception becomes its number.
template <class Run>
std::int32_t guarded(Run&& run) noexcept {
  try {
    return run();
  } catch (...) {
    return current_error_number();
  }
}

}  // namespace qto::com
