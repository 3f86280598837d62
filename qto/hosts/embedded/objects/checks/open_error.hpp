#pragma once

#include <string>

#include "qto/host/failure.hpp"
#include "qto/hosts/embedded/xlsx/open_failure.hpp"

namespace qto::embedded {

/// Workbooks.Open failed because of the file: missing, unreadable, encrypted, no workbook, damaged.
struct OpenError : host::HostFailure {
  explicit OpenError(const OpenFailure& failure)
      : HostFailure(host::general_failure, failure.what(), "Workbooks.Open"),
        kind(failure.kind),
        file(failure.file),
        part(failure.part),
        line(failure.line) {}

  OpenFailureKind kind;
  /// The file, the part of it ("" when the fault lies in none) and the line there (0: none).
  std::string file;
  std::string part;
  long line;
};

}  // namespace qto::embedded
