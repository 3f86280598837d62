#pragma once

#include <cstdint>
#include <string_view>
#include <vector>

#include "qto/diagnostics/error_report.hpp"

/// The error reports that arise while clients call.
namespace qto::server {

/// One call of a client's. What is reported in its thread meanwhile belongs to it.
class ClientCall {
 public:
  ClientCall() noexcept;
  /// Throws NumberedFailure with the number and the text of the report when the called procedure
  /// was left because of it and nobody took it: without it a client would take nothing for an
  /// answer. `module` and `member` are the call's.
  void check(std::string_view module, std::string_view member) const;

 private:
  std::uint32_t before_;
};

/// Forgets the reports of this thread: another operation begins.
void begin_operation();
/// The reports of this thread's last operation, at most the last thousand.
std::vector<diagnostics::ErrorReport> reports_of_operation();
/// A report was taken by somebody who can act on it.
void take_last_report();

}  // namespace qto::server
