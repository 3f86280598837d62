#pragma once

#include <cstdint>

#include <exception>
#include <new>

#include "qto/automation/error.hpp"

namespace qto::host {

/// An ordinary call of the host failed. Probes (find_…, exists) never throw it: their failure is a
/// null result.
class HostFailure : public NumberedFailure {
 public:
  using NumberedFailure::NumberedFailure;
};

/// The number that hosts give to most failures of their object model.
inline constexpr std::int32_t general_failure = 1004;
/// "Subscript out of range": no such member of a collection.
inline constexpr std::int32_t no_such_member = 9;

/// Runs what may fail in the host without harm; false when it did. Errors for the client and a lack
/// of memory pass on: they say nothing about what is in the host.
template <class Call>
bool tried(Call&& call) {
  try {
    call();
    return true;
  } catch (const AutomationError&) {
    throw;
  } catch (const std::bad_alloc&) {
    throw;
  } catch (const std::exception&) {
    return false;
  }
}

}  // namespace qto::host
