#pragma once

#include <cstdint>
#include <string_view>

#include "qto/hosts/embedded/encryption/bytes.hpp"

/// Standard encryption ([MS-OFFCRYPTO] 2.3.4.5 and following: AES in ECB mode), and RC4 in the same
/// structures (2.3.5.1 and following).
namespace qto::embedded {

struct StandardDescription {
  bool rc4 = false;
  std::size_t key_bytes = 0;
  Bytes salt;
  Bytes verifier;       ///< encrypted
  Bytes verifier_hash;  ///< encrypted
};

/// Reads what follows the version numbers. Throws EncryptionFault (damaged, unsupported).
StandardDescription read_standard_description(ByteView bytes);

/// What the keys of the data are made from. Throws EncryptionFault (wrong_password).
Bytes standard_key(const StandardDescription& description, std::string_view password);

/// Decrypts the stream of the package: its length, then the data. Throws EncryptionFault (damaged)
/// when it is too short.
Bytes decrypt_standard(const StandardDescription& description, ByteView key, Bytes stream);

}  // namespace qto::embedded
