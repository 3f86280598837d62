#include "qto/hosts/embedded/objects/password.hpp"

#include <openssl/crypto.h>
#include <openssl/evp.h>

#include <algorithm>
#include <array>
#include <charconv>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "qto/automation/text.hpp"

namespace qto::embedded {
namespace {

using Bytes = std::vector<unsigned char>;

/// A file may ask for any number of rounds; applications write 100,000.
constexpr std::uint32_t most_spins = 10'000'000;

struct ContextDeleter {
  void operator()(EVP_MD_CTX* context) const { EVP_MD_CTX_free(context); }
};

const EVP_MD* digest_of(std::string_view algorithm) {
  struct Row {
    std::string_view name;
    const EVP_MD* (*digest)();
  };
  constexpr std::array<Row, 5> rows{{{"MD5", EVP_md5},
                                     {"SHA-1", EVP_sha1},
                                     {"SHA-256", EVP_sha256},
                                     {"SHA-384", EVP_sha384},
                                     {"SHA-512", EVP_sha512}}};
  for (const Row& row : rows)
    if (text::equal_ascii_nocase(row.name, algorithm)) return row.digest();
  return nullptr;
}

std::optional<Bytes> from_base64(std::string_view text) {
  if (text.size() % 4 != 0 || text.size() > 4096) return std::nullopt;
  Bytes bytes(text.size() / 4 * 3 + 1);
  const int length =
      EVP_DecodeBlock(bytes.data(), reinterpret_cast<const unsigned char*>(text.data()),
                      static_cast<int>(text.size()));
  if (length < 0) return std::nullopt;
  const auto padding = static_cast<std::size_t>(
      std::count(text.end() - std::min<std::ptrdiff_t>(2, std::ssize(text)), text.end(), '='));
  bytes.resize(static_cast<std::size_t>(length) - padding);
  return bytes;
}

Bytes little_endian(std::u16string_view text) {
  Bytes bytes;
  bytes.reserve(text.size() * 2);
  for (const char16_t unit : text) {
    bytes.push_back(static_cast<unsigned char>(unit & 0xFF));
    bytes.push_back(static_cast<unsigned char>(unit >> 8));
  }
  return bytes;
}

/// The hash of both, one after the other; empty when the library refuses.
Bytes digest(const EVP_MD* algorithm, EVP_MD_CTX* context, const Bytes& first,
             const Bytes& second) {
  Bytes out(static_cast<std::size_t>(EVP_MD_get_size(algorithm)));
  const bool done = EVP_DigestInit_ex(context, algorithm, nullptr) &&
                    EVP_DigestUpdate(context, first.data(), first.size()) &&
                    EVP_DigestUpdate(context, second.data(), second.size()) &&
                    EVP_DigestFinal_ex(context, out.data(), nullptr);
  if (!done) out.clear();
  return out;
}

/// ECMA-376 Part 1, 18.3.1.85: the salt and the password, then the hash and the number of the
/// round, again and again.
bool digest_matches(const SheetProtection& protection, std::string_view password) {
  const EVP_MD* algorithm = digest_of(protection.algorithm);
  const auto expected = from_base64(protection.hash);
  const auto salt = from_base64(protection.salt);
  if (!algorithm || !expected || !salt || protection.spins > most_spins) return false;
  const std::unique_ptr<EVP_MD_CTX, ContextDeleter> context(EVP_MD_CTX_new());
  if (!context) return false;
  Bytes hash = digest(algorithm, context.get(), *salt, little_endian(text::to_utf16(password)));
  Bytes round(4);
  for (std::uint32_t spin = 0; spin < protection.spins && !hash.empty(); ++spin) {
    for (int i = 0; i < 4; ++i) round[i] = static_cast<unsigned char>(spin >> (8 * i));
    hash = digest(algorithm, context.get(), hash, round);
  }
  return !hash.empty() && hash.size() == expected->size() &&
         CRYPTO_memcmp(hash.data(), expected->data(), hash.size()) == 0;
}

std::uint16_t rotate_left_15(std::uint16_t value) {
  return static_cast<std::uint16_t>((value >> 14 & 1) | (value << 1 & 0x7FFF));
}

}  // namespace

std::uint16_t legacy_password_hash(std::string_view password) {
  const std::u16string characters = text::to_utf16(password);
  if (characters.empty()) return 0;
  std::uint16_t hash = 0;
  for (auto c = characters.rbegin(); c != characters.rend(); ++c)
    hash = rotate_left_15(static_cast<std::uint16_t>(hash ^ (*c & 0xFF)));
  return static_cast<std::uint16_t>(hash ^ characters.size() ^ 0xCE4B);
}

bool password_matches(const SheetProtection& protection, std::string_view password) {
  if (protection.hash.empty()) return true;
  if (!protection.algorithm.empty()) return digest_matches(protection, password);
  unsigned stored = 0;
  const char* end = protection.hash.data() + protection.hash.size();
  const auto [stop, error] = std::from_chars(protection.hash.data(), end, stored, 16);
  return error == std::errc{} && stop == end && stored == legacy_password_hash(password);
}

}  // namespace qto::embedded
