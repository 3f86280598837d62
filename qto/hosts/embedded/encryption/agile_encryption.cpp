#include "qto/hosts/embedded/encryption/agile_encryption.hpp"

#include <algorithm>
#include <array>
#include <optional>
#include <string>
#include <utility>

#include "qto/hosts/embedded/encryption/cipher.hpp"
#include "qto/hosts/embedded/encryption/digest.hpp"
#include "qto/hosts/embedded/encryption/encrypted_package.hpp"

namespace qto::embedded {
namespace {

using Kind = EncryptionFault::Kind;
using Purpose = std::array<unsigned char, 8>;

// What a key or initial vector is for goes into its hash ([MS-OFFCRYPTO] 2.3.4.12 to 2.3.4.14).
constexpr Purpose for_verifier{0xFE, 0xA7, 0xD2, 0x76, 0x3B, 0x4B, 0x9E, 0x79};
constexpr Purpose for_verifier_hash{0xD7, 0xAA, 0x0F, 0x6D, 0x30, 0x61, 0x34, 0x4E};
constexpr Purpose for_key{0x14, 0x6E, 0x0B, 0xE7, 0xAB, 0xAC, 0xD0, 0xD6};
constexpr Purpose for_integrity_key{0x5F, 0xB2, 0xAD, 0x01, 0x0C, 0xB9, 0xE1, 0xF6};
constexpr Purpose for_integrity_value{0xA0, 0x67, 0x7F, 0x02, 0xB2, 0x2C, 0x84, 0x33};

constexpr unsigned char filler = 0x36;
constexpr std::size_t segment_size = 4096;
constexpr std::size_t length_size = 8;
/// The most that the format allows; writers use 100,000.
constexpr std::int64_t most_rounds = 10'000'000;

Digest digest_of(const AgileKey& key) {
  if (key.cipher != "AES" || key.chaining != "ChainingModeCBC")
    throw EncryptionFault(Kind::unsupported, "it is encrypted with " + key.cipher + " (" +
                                                 key.chaining +
                                                 "); only AES with ChainingModeCBC can be read");
  auto digest = Digest::find(key.hash);
  if (!digest)
    throw EncryptionFault(Kind::unsupported,
                          "its encryption uses the hash " + key.hash + ", which is not known");
  if (key.block_size != aes_block || key.salt.empty() || key.key_bits % 8 != 0 ||
      key.key_bits <= 0 || key.hash_size != static_cast<std::int64_t>(digest->size()))
    damaged_workbook("the sizes of its keys do not fit together");
  return *std::move(digest);
}

/// Decrypts a short value with a whole number of blocks; gives its first `length` bytes.
Bytes decrypt_value(ByteView key, ByteView initial_vector, Bytes value, std::size_t length) {
  if (value.empty() || value.size() % aes_block != 0 || value.size() < length)
    damaged_workbook("one of its keys has a wrong length");
  Aes(Aes::Mode::cbc, key).decrypt(value, initial_vector);
  value.resize(length);
  return value;
}

void check_integrity(const AgileDescription& description, const Digest& digest, ByteView key,
                     ByteView stream) {
  if (description.integrity_key.empty() && description.integrity_value.empty()) return;
  const auto value_of = [&](const Purpose& purpose, const Bytes& value) {
    const Bytes vector = resized(digest.of(description.data.salt, purpose), aes_block, filler);
    return decrypt_value(key, vector, value, digest.size());
  };
  const Bytes mac_key = value_of(for_integrity_key, description.integrity_key);
  const Bytes expected = value_of(for_integrity_value, description.integrity_value);
  if (!equal_hashes(digest.hmac(mac_key, stream), expected))
    damaged_workbook("its integrity check fails, so it was changed or cut off");
}

}  // namespace

Bytes agile_key(const AgileDescription& description, std::string_view password) {
  const AgileKey& how = description.password;
  const Digest digest = digest_of(how);
  if (description.rounds < 0 || description.rounds > most_rounds)
    damaged_workbook("it asks for " + std::to_string(description.rounds) +
                     " rounds of hashing; 10,000,000 are the most there can be");
  const Bytes hash =
      digest.of_password(how.salt, password, static_cast<std::uint32_t>(description.rounds),
                         Digest::RoundNumber::before_hash);
  const Bytes vector = resized(how.salt, aes_block, filler);
  const auto key_for = [&](const Purpose& purpose) {
    return resized(digest.of(hash, purpose), static_cast<std::size_t>(how.key_bits / 8), filler);
  };
  const Bytes verifier =
      decrypt_value(key_for(for_verifier), vector, description.verifier, how.salt.size());
  const Bytes expected =
      decrypt_value(key_for(for_verifier_hash), vector, description.verifier_hash, digest.size());
  if (!equal_hashes(digest.of(verifier), expected))
    throw EncryptionFault(Kind::wrong_password, "the password is not the workbook's");
  return decrypt_value(key_for(for_key), vector, description.key,
                       static_cast<std::size_t>(description.data.key_bits / 8));
}

Bytes decrypt_agile(const AgileDescription& description, ByteView key, Bytes stream) {
  const Digest digest = digest_of(description.data);
  if (stream.size() < length_size) damaged_workbook("it holds no data");
  check_integrity(description, digest, key, stream);
  const auto length = read_le<std::uint64_t>(stream, 0);
  stream.erase(stream.begin(), stream.begin() + length_size);
  stream.resize(stream.size() / aes_block * aes_block);
  if (length > stream.size()) damaged_workbook("its data is shorter than it says");
  const Aes aes(Aes::Mode::cbc, key);
  Bytes number;
  for (std::size_t at = 0; at < stream.size(); at += segment_size) {
    number.clear();
    append_le32(number, static_cast<std::uint32_t>(at / segment_size));
    const Bytes vector = resized(digest.of(description.data.salt, number), aes_block, filler);
    const std::size_t size = std::min(segment_size, stream.size() - at);
    aes.decrypt(std::span(stream).subspan(at, size), vector);
  }
  stream.resize(static_cast<std::size_t>(length));
  return stream;
}

}  // namespace qto::embedded
