#pragma once

#include <algorithm>
#include <string>

#include "qto/hosts/embedded/encryption/cipher.hpp"
#include "qto/hosts/embedded/encryption/digest.hpp"
#include "tests/support/aes_encrypting.hpp"
#include "tests/support/compound_writer.hpp"

/// Writes encrypted workbooks, the other way round from how they are read.
namespace qto::test {

using embedded::Bytes;
using embedded::ByteView;

inline Bytes bytes_of(const std::string& text) { return {text.begin(), text.end()}; }
inline std::string text_of(const Bytes& bytes) { return {bytes.begin(), bytes.end()}; }

inline std::string base64(const Bytes& bytes) {
  constexpr std::string_view letters =
      "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
  std::string out;
  for (std::size_t at = 0; at < bytes.size(); at += 3) {
    unsigned group = 0;
    for (std::size_t i = 0; i < 3; ++i)
      group = group << 8 | (at + i < bytes.size() ? bytes[at + i] : 0u);
    for (std::size_t i = 0; i < 4; ++i)
      out += at + i > bytes.size() ? '=' : letters[group >> (18 - 6 * i) & 63];
  }
  return out;
}

/// Bytes that differ from each other and from those of other seeds.
inline Bytes some_bytes(std::size_t count, unsigned seed) {
  Bytes out;
  for (std::size_t i = 0; i < count; ++i)
    out.push_back(static_cast<unsigned char>(seed * 37 + i * 11 + 5));
  return out;
}

struct AgileMethod {
  std::string hash = "SHA512";
  int key_bits = 256;
  std::uint32_t rounds = 1000;
  bool integrity = true;
};

/// The streams of an agile encrypted package; the caller may change them before they are joined.
struct EncryptedStreams {
  std::string info;
  std::string package;
  std::string file(int sector_shift = 9) const {
    return CompoundWriter(sector_shift)
        .stream("EncryptionInfo", info)
        .stream("EncryptedPackage", package)
        .bytes();
  }
};

inline EncryptedStreams agile_encrypted(const std::string& content, const std::string& password,
                                        const AgileMethod& how = {}) {
  using embedded::resized;
  const auto digest = *embedded::Digest::find(how.hash);
  const auto key_bytes = static_cast<std::size_t>(how.key_bits / 8);
  const Bytes data_salt = some_bytes(16, 1), salt = some_bytes(16, 2),
              key = some_bytes(key_bytes, 3), verifier = some_bytes(16, 4),
              mac_key = some_bytes(digest.size(), 5);
  const Bytes hash =
      digest.of_password(salt, password, how.rounds, embedded::Digest::RoundNumber::before_hash);
  const auto by_password = [&](std::initializer_list<unsigned char> purpose, const Bytes& value) {
    const Bytes block(purpose);
    return aes_encrypted(resized(digest.of(hash, block), key_bytes, 0x36), &salt, value);
  };
  const auto by_key = [&](const Bytes& purpose, const Bytes& value) {
    const Bytes vector = resized(digest.of(data_salt, purpose), 16, 0x36);
    return aes_encrypted(key, &vector, value);
  };
  EncryptedStreams out;
  put_le(out.package, 0, content.size(), 8);
  for (std::size_t at = 0; at < content.size(); at += 4096) {
    Bytes number;
    embedded::append_le32(number, static_cast<std::uint32_t>(at / 4096));
    out.package += text_of(by_key(number, bytes_of(content.substr(at, 4096))));
  }
  const std::string sizes = " saltSize=\"16\" blockSize=\"16\" keyBits=\"" +
                            std::to_string(how.key_bits) + "\" hashSize=\"" +
                            std::to_string(digest.size()) +
                            "\" cipherAlgorithm=\"AES\" cipherChaining=\"ChainingModeCBC\" "
                            "hashAlgorithm=\"" +
                            how.hash + "\"";
  put_le(out.info, 0, 0x0000004000040004, 8);
  out.info +=
      "<?xml version=\"1.0\" encoding=\"UTF-8\" standalone=\"yes\"?>\r\n<encryption "
      "xmlns=\"http://schemas.microsoft.com/office/2006/encryption\" "
      "xmlns:p=\"http://schemas.microsoft.com/office/2006/keyEncryptor/password\"><keyData" +
      sizes + " saltValue=\"" + base64(data_salt) + "\"/>";
  if (how.integrity)
    out.info += "<dataIntegrity encryptedHmacKey=\"" +
                base64(by_key({0x5F, 0xB2, 0xAD, 0x01, 0x0C, 0xB9, 0xE1, 0xF6}, mac_key)) +
                "\" encryptedHmacValue=\"" +
                base64(by_key({0xA0, 0x67, 0x7F, 0x02, 0xB2, 0x2C, 0x84, 0x33},
                              digest.hmac(mac_key, bytes_of(out.package)))) +
                "\"/>";
  out.info +=
      "<keyEncryptors><keyEncryptor "
      "uri=\"http://schemas.microsoft.com/office/2006/keyEncryptor/password\"><p:encryptedKey "
      "spinCount=\"" +
      std::to_string(how.rounds) + "\"" + sizes + " saltValue=\"" + base64(salt) +
      "\" encryptedVerifierHashInput=\"" +
      base64(by_password({0xFE, 0xA7, 0xD2, 0x76, 0x3B, 0x4B, 0x9E, 0x79}, verifier)) +
      "\" encryptedVerifierHashValue=\"" +
      base64(by_password({0xD7, 0xAA, 0x0F, 0x6D, 0x30, 0x61, 0x34, 0x4E}, digest.of(verifier))) +
      "\" encryptedKeyValue=\"" +
      base64(by_password({0x14, 0x6E, 0x0B, 0xE7, 0xAB, 0xAC, 0xD0, 0xD6}, key)) +
      "\"/></keyEncryptor></keyEncryptors></encryption>";
  return out;
}

struct StandardMethod {
  bool rc4 = false;
  int key_bits = 128;
};

inline EncryptedStreams standard_encrypted(const std::string& content, const std::string& password,
                                           const StandardMethod& how = {}) {
  const auto digest = *embedded::Digest::find("SHA1");
  const Bytes salt = some_bytes(16, 6), verifier = some_bytes(16, 7);
  const Bytes hash =
      digest.of_password(salt, password, 50'000, embedded::Digest::RoundNumber::before_hash);
  const auto numbered = [&](std::uint32_t block) {
    Bytes number;
    embedded::append_le32(number, block);
    return digest.of(hash, number);
  };
  const auto key_bytes = static_cast<std::size_t>(how.key_bits / 8);
  Bytes key;
  for (const unsigned char run : {0x36, 0x5C}) {
    Bytes mixed(64, run);
    const Bytes last = numbered(0);
    for (std::size_t i = 0; i < last.size(); ++i) mixed[i] ^= last[i];
    for (const unsigned char byte : digest.of(mixed)) key.push_back(byte);
  }
  key.resize(key_bytes);
  const auto rc4_key = [&](std::uint32_t block) {
    Bytes short_key = embedded::resized(numbered(block), key_bytes, 0);
    if (how.key_bits == 40) short_key.resize(16, 0);
    return short_key;
  };
  Bytes check = verifier;
  for (const unsigned char byte : digest.of(verifier)) check.push_back(byte);
  if (how.rc4)
    embedded::rc4(rc4_key(0), check);
  else
    check = aes_encrypted(key, nullptr, check);
  const std::string provider("M\0S\0\0\0", 6);
  EncryptedStreams out;
  put_le(out.info, 0, 0x00020004, 4);
  put_le(out.info, 4, how.rc4 ? 0x04 : 0x24, 4);
  put_le(out.info, 8, 32 + provider.size(), 4);
  const int algorithm = how.rc4 ? 0x6801 : 0x660E + (how.key_bits - 128) / 64;
  for (const int field : {how.rc4 ? 0x04 : 0x24, 0, algorithm, 0x8004, how.key_bits, 0x18, 0, 0})
    put_le(out.info, out.info.size(), static_cast<std::uint64_t>(field), 4);
  out.info += provider;
  put_le(out.info, out.info.size(), 16, 4);
  out.info += text_of(salt) + text_of({check.begin(), check.begin() + 16});
  put_le(out.info, out.info.size(), 20, 4);
  out.info += text_of({check.begin() + 16, check.end()});
  put_le(out.package, 0, content.size(), 8);
  if (!how.rc4) {
    out.package += text_of(aes_encrypted(key, nullptr, bytes_of(content)));
    return out;
  }
  for (std::size_t at = 0; at < content.size(); at += 512) {
    Bytes block = bytes_of(content.substr(at, 512));
    embedded::rc4(rc4_key(static_cast<std::uint32_t>(at / 512)), block);
    out.package += text_of(block);
  }
  return out;
}

}  // namespace qto::test
