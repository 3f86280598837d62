#pragma once

#include <memory>
#include <string>
#include <string_view>

namespace qto::diagnostics {

/// The way to a trace viewer that is another program, as the system has it.
class StreamChannel {
 public:
  /// "fd:N" or the name of a local socket or pipe; throws NumberedFailure when it cannot be
  /// reached.
  static std::unique_ptr<StreamChannel> open(const std::string& target);

  virtual ~StreamChannel() = default;
  /// The whole text; throws NumberedFailure once nobody reads.
  virtual void write(std::string_view text) = 0;
};

/// Throws the NumberedFailure of a viewer that cannot be reached.
[[noreturn]] void fail_viewer(const std::string& target, const std::string& why);

}  // namespace qto::diagnostics
