#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "qto/hosts/embedded/encryption/bytes.hpp"
#include "qto/hosts/embedded/xlsx/limits.hpp"

namespace qto::embedded {

class Package;

/// Throws the OpenFailure that says best why a file which is no zip container cannot be read.
/// `reason` is the container library's own word, for files that begin like a zip container.
[[noreturn]] void refuse_file(const std::string& file, const std::string& reason);

/// Throws the OpenFailure that says what a zip container without a workbook holds instead.
[[noreturn]] void refuse_package(const Package& package);

/// The package inside an encrypted workbook file; nothing when the file is no compound file and so
/// cannot be one. Throws OpenFailure when it is one and cannot be read with that password.
std::optional<Bytes> read_encrypted_file(const std::string& file, std::string_view password,
                                         const Limits& limits);

}  // namespace qto::embedded
