#pragma once

#include <string>
#include <string_view>

#include "qto/hosts/embedded/encryption/bytes.hpp"

namespace qto::embedded {

/// The package inside an encrypted workbook, from the bytes of the file. Without a password the
/// well-known one is tried that applications use for files which only look protected. Throws
/// EncryptionFault.
Bytes decrypt_package(Bytes file, std::string_view password);

}  // namespace qto::embedded
