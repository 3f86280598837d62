#pragma once

#include <stdexcept>
#include <string>
#include <string_view>

#include "qto/hosts/embedded/encryption/bytes.hpp"

namespace qto::embedded {

/// Why an encrypted file cannot be read. The text never holds a password.
struct EncryptionFault : std::runtime_error {
  enum class Kind {
    no_password,     ///< it needs one and none was given
    wrong_password,  ///< the one that was given is not it
    damaged,         ///< a structure that cannot be, or data that was changed
    unsupported,     ///< a method of encryption that is not known
    not_encrypted,   ///< a compound file of something else
  };
  EncryptionFault(Kind fault, const std::string& reason)
      : std::runtime_error(reason), kind(fault) {}
  Kind kind;
};

[[noreturn]] inline void damaged_workbook(const std::string& what) {
  throw EncryptionFault(EncryptionFault::Kind::damaged,
                        "the encrypted workbook is damaged: " + what);
}

/// The package inside an encrypted workbook, from the bytes of the file. Without a password the
/// well-known one is tried that applications use for files which only look protected. Throws
/// EncryptionFault.
Bytes decrypt_package(Bytes file, std::string_view password);

}  // namespace qto::embedded
