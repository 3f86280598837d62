#pragma once

#include <stdexcept>
#include <string>
#include <string_view>

#include "qto/host/open_error.hpp"

namespace qto::embedded {

using host::OpenFailureKind;

/// A file could not be opened. what() is the message followed by a remedy where one is known.
class OpenFailure : public std::runtime_error {
 public:
  OpenFailure(OpenFailureKind failure_kind, std::string file_name, std::string part_name,
              long line_number, std::string_view reason, std::string_view remedy = {});

  /// The same for clients, as a failure of Workbooks.Open.
  host::OpenError for_clients() const { return {kind, what(), file, part, line}; }

  /// "plan.xlsx: xl/worksheets/sheet2.xml, line 14: mismatched tag"
  const std::string& message() const noexcept { return message_; }

  OpenFailureKind kind;
  /// The file as the caller named it.
  std::string file;
  /// The part of the package, "" when the fault is not in one.
  std::string part;
  /// Line in the part from 1, 0 when there is none.
  long line;

 private:
  std::string message_;
};

}  // namespace qto::embedded
