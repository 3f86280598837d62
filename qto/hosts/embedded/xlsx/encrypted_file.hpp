#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "qto/hosts/embedded/encryption/bytes.hpp"

namespace qto::embedded {

/// The package inside an encrypted workbook file; nothing when the file is no compound file and so
/// cannot be one. Throws OpenFailure when it is one and cannot be read with that password.
std::optional<Bytes> read_encrypted_file(const std::string& file, std::string_view password);

}  // namespace qto::embedded
