#include "qto/hosts/embedded/encryption/standard_encryption.hpp"

#include <algorithm>
#include <string>
#include <utility>

#include "qto/hosts/embedded/encryption/cipher.hpp"
#include "qto/hosts/embedded/encryption/digest.hpp"
#include "qto/hosts/embedded/encryption/encrypted_package.hpp"

namespace qto::embedded {
namespace {

using Kind = EncryptionFault::Kind;

constexpr std::size_t standard_length_size = 8;
constexpr std::size_t rc4_block = 512;
constexpr std::uint32_t rounds = 50'000;
constexpr std::size_t sha1_size = 20;

Digest sha1() { return *Digest::find("SHA1"); }

/// The bytes of a field; damaged when the structure ends before.
ByteView field(ByteView bytes, std::size_t at, std::size_t size) {
  if (at > bytes.size() || size > bytes.size() - at)
    damaged_workbook("the description of its encryption is cut off");
  return bytes.subspan(at, size);
}

std::uint32_t number(ByteView bytes, std::size_t at) {
  return read_le<std::uint32_t>(field(bytes, at, 4), 0);
}

/// The algorithm and the size of the key, from the header ([MS-OFFCRYPTO] 2.3.2).
void read_algorithm(ByteView header, StandardDescription& into) {
  const std::uint32_t flags = number(header, 0);
  const std::uint32_t algorithm = number(header, 8);
  const std::uint32_t hash = number(header, 12);
  const std::uint32_t key_bits = number(header, 16);
  constexpr std::uint32_t by_flags = 0, rc4 = 0x6801, aes128 = 0x660E, aes192 = 0x660F,
                          aes256 = 0x6610, aes_flag = 0x20, sha1_id = 0x8004;
  into.rc4 = algorithm == rc4 || (algorithm == by_flags && !(flags & aes_flag));
  const bool aes = algorithm == aes128 || algorithm == aes192 || algorithm == aes256 ||
                   (algorithm == by_flags && (flags & aes_flag));
  if ((!aes && !into.rc4) || (hash != by_flags && hash != sha1_id))
    throw EncryptionFault(Kind::unsupported, "it is encrypted with an algorithm that is not known");
  const std::uint32_t usual_bits = into.rc4 ? 40 : 128;
  into.key_bytes = (key_bits == 0 ? usual_bits : key_bits) / 8;
  if (into.key_bytes < 5 || into.key_bytes > 32 || (into.rc4 && into.key_bytes > 16))
    damaged_workbook("its key has " + std::to_string(key_bits) + " bits");
}

/// The key of an RC4 block: a key of 40 bits is filled up with zeros ([MS-OFFCRYPTO] 2.3.5.2).
Bytes rc4_key(const StandardDescription& description, ByteView hash, std::uint32_t block) {
  Bytes block_number;
  append_le32(block_number, block);
  const Bytes key = resized(sha1().of(hash, block_number), description.key_bytes, 0);
  return description.key_bytes == 5 ? resized(key, 16, 0) : key;
}

/// [MS-OFFCRYPTO] 2.3.4.7: the hash mixed into two runs of one byte, hashed, one after the other.
Bytes aes_key(const StandardDescription& description, ByteView hash) {
  const Digest digest = sha1();
  Bytes block_number;
  append_le32(block_number, 0);
  const Bytes last = digest.of(hash, block_number);
  Bytes key;
  for (const unsigned char run : {0x36, 0x5C}) {
    Bytes mixed(64, run);
    for (std::size_t i = 0; i < last.size(); ++i) mixed[i] ^= last[i];
    const Bytes half = digest.of(mixed);
    key.insert(key.end(), half.begin(), half.end());
  }
  return resized(key, description.key_bytes, 0);
}

/// Whether the key turns the verifier into what its hash was made of.
bool verifies(const StandardDescription& description, ByteView key) {
  Bytes both = description.verifier;
  both.insert(both.end(), description.verifier_hash.begin(), description.verifier_hash.end());
  if (description.rc4)
    rc4(rc4_key(description, key, 0), both);
  else
    Aes(Aes::Mode::ecb, key).decrypt(both);
  const auto [verifier, hash] = std::pair(ByteView(both).first(description.verifier.size()),
                                          ByteView(both).subspan(description.verifier.size()));
  return equal_hashes(sha1().of(verifier), hash.first(sha1_size));
}

}  // namespace

StandardDescription read_standard_description(ByteView bytes) {
  StandardDescription into;
  const std::uint32_t header_size = number(bytes, 4);  // behind the flags, which the header repeats
  const ByteView header = field(bytes, 8, header_size);
  read_algorithm(header, into);
  const std::size_t verifier_at = 8 + std::size_t{header_size};
  const std::size_t salt_size = number(bytes, verifier_at);
  if (salt_size != 16) damaged_workbook("its salt has " + std::to_string(salt_size) + " bytes");
  const auto take = [&](std::size_t at, std::size_t size) {
    const ByteView part = field(bytes, verifier_at + at, size);
    return Bytes(part.begin(), part.end());
  };
  into.salt = take(4, 16);
  into.verifier = take(20, 16);
  into.verifier_hash = take(40, into.rc4 ? sha1_size : 32);
  return into;
}

Bytes standard_key(const StandardDescription& description, std::string_view password) {
  const Digest digest = sha1();
  // Only packages are hashed in rounds; older formats with RC4 are not, and writers differ.
  for (const std::uint32_t times : {rounds, std::uint32_t{0}}) {
    if (times == 0 && !description.rc4) break;
    const Bytes hash =
        digest.of_password(description.salt, password, times, Digest::RoundNumber::before_hash);
    Bytes key = description.rc4 ? hash : aes_key(description, hash);
    if (verifies(description, key)) return key;
  }
  throw EncryptionFault(Kind::wrong_password, "the password is not the workbook's");
}

Bytes decrypt_standard(const StandardDescription& description, ByteView key, Bytes stream) {
  if (stream.size() < standard_length_size) damaged_workbook("it holds no data");
  const auto length = read_le<std::uint64_t>(stream, 0);
  stream.erase(stream.begin(), stream.begin() + standard_length_size);
  if (!description.rc4) stream.resize(stream.size() / aes_block * aes_block);
  if (length > stream.size()) damaged_workbook("its data is shorter than it says");
  if (!description.rc4) {
    Aes(Aes::Mode::ecb, key).decrypt(stream);
  } else {
    for (std::size_t at = 0; at < stream.size(); at += rc4_block)
      rc4(rc4_key(description, key, static_cast<std::uint32_t>(at / rc4_block)),
          std::span(stream).subspan(at, std::min(rc4_block, stream.size() - at)));
  }
  stream.resize(static_cast<std::size_t>(length));
  return stream;
}

}  // namespace qto::embedded
