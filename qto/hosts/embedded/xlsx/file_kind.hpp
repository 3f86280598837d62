#pragma once

#include <string>

namespace qto::embedded {

class Package;

/// Throws the OpenFailure that says best why a file which is no zip container cannot be read.
/// `reason` is the container library's own word, for files that begin like a zip container.
[[noreturn]] void refuse_file(const std::string& file, const std::string& reason);

/// Throws the OpenFailure that says what a zip container without a workbook holds instead.
[[noreturn]] void refuse_package(const Package& package);

}  // namespace qto::embedded
