#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "qto/hosts/embedded/encryption/bytes.hpp"

/// Agile encryption ([MS-OFFCRYPTO] 2.3.4.10 and following): AES in CBC mode, described by XML.
namespace qto::embedded {

/// What the description says about one key; sizes as they stand there.
struct AgileKey {
  std::string cipher;
  std::string chaining;
  std::string hash;
  Bytes salt;
  std::int64_t block_size = 0;
  std::int64_t key_bits = 0;
  std::int64_t hash_size = 0;
};

struct AgileDescription {
  AgileKey data;
  AgileKey password;
  std::int64_t rounds = 0;
  Bytes verifier;  ///< encrypted, as all below
  Bytes verifier_hash;
  Bytes key;
  Bytes integrity_key;  ///< both empty when the file carries no integrity check
  Bytes integrity_value;
};

/// Reads the XML. Throws EncryptionFault (damaged, or unsupported when no password opens it).
AgileDescription read_agile_description(std::string_view xml);

/// The key of the data. Throws EncryptionFault (wrong_password, damaged, unsupported).
Bytes agile_key(const AgileDescription& description, std::string_view password);

/// Decrypts the stream of the package: its length, then segments of 4,096 bytes. Throws
/// EncryptionFault (damaged) when it is too short or fails its integrity check.
Bytes decrypt_agile(const AgileDescription& description, ByteView key, Bytes stream);

}  // namespace qto::embedded
