#pragma once

#include <stdexcept>
#include <string>
#include <string_view>

namespace qto::embedded {

/// Why a file could not be opened as a workbook.
enum class OpenFailureKind {
  not_found,
  not_readable,    ///< no permission, a folder, a device error
  encrypted,       ///< the content is behind a password, and none was given
  wrong_password,  ///< the password that was given is not the one
  unknown_cipher,  ///< encrypted in a way that cannot be read
  not_a_package,   ///< no zip container at all
  not_a_workbook,  ///< a container or an older format of something else
  damaged,         ///< a workbook with a part that is missing, cut off or wrong
  too_large,       ///< beyond what is read, or more than memory holds
};

/// A file could not be opened. what() is the message followed by a remedy where one is known.
class OpenFailure : public std::runtime_error {
 public:
  OpenFailure(OpenFailureKind failure_kind, std::string file_name, std::string part_name,
              long line_number, std::string_view reason, std::string_view remedy = {});

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
