#pragma once

#include <string>
#include <utility>

#include "qto/host/failure.hpp"

namespace qto::host {

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

/// Workbooks.Open failed because of the file. what() is the message, which begins with the name of
/// the file, and a remedy where one is known.
struct OpenError : HostFailure {
  OpenError(OpenFailureKind failure_kind, const std::string& text, std::string file_name,
            std::string part_name = {}, long line_number = 0)
      : HostFailure(general_failure, text, "Workbooks.Open"),
        kind(failure_kind),
        file(std::move(file_name)),
        part(std::move(part_name)),
        line(line_number) {}

  OpenFailureKind kind;
  /// The file as the caller named it.
  std::string file;
  /// The part of the package, "" when the fault is not in one.
  std::string part;
  /// Line in the part from 1, 0 when there is none.
  long line;
};

}  // namespace qto::host
