#include "qto/hosts/embedded/encryption/digest.hpp"

#include <openssl/crypto.h>
#include <openssl/evp.h>
#include <openssl/hmac.h>

#include <algorithm>
#include <array>
#include <new>
#include <string>

#include "qto/automation/text.hpp"

namespace qto::embedded {

void Digest::FreeContext::operator()(evp_md_ctx_st* context) const { EVP_MD_CTX_free(context); }

Digest::Digest(const evp_md_st* algorithm)
    : algorithm_(algorithm),
      size_(static_cast<std::size_t>(EVP_MD_get_size(algorithm))),
      context_(EVP_MD_CTX_new()) {
  if (!context_) throw std::bad_alloc();
}

std::optional<Digest> Digest::find(std::string_view algorithm) {
  struct Row {
    std::string_view name;
    const EVP_MD* (*digest)();
  };
  constexpr std::array<Row, 5> rows{{{"MD5", EVP_md5},
                                     {"SHA1", EVP_sha1},
                                     {"SHA256", EVP_sha256},
                                     {"SHA384", EVP_sha384},
                                     {"SHA512", EVP_sha512}}};
  std::string name(algorithm);
  std::erase(name, '-');
  for (const Row& row : rows)
    if (text::equal_ascii_nocase(row.name, name)) return Digest(row.digest());
  return std::nullopt;
}

void Digest::hash(ByteView first, ByteView second, Bytes& into) const {
  into.resize(size_);
  // The library refuses only when memory is short.
  if (!EVP_DigestInit_ex(context_.get(), algorithm_, nullptr) ||
      !EVP_DigestUpdate(context_.get(), first.data(), first.size()) ||
      !EVP_DigestUpdate(context_.get(), second.data(), second.size()) ||
      !EVP_DigestFinal_ex(context_.get(), into.data(), nullptr))
    throw std::bad_alloc();
}

Bytes Digest::of(ByteView first, ByteView second) const {
  Bytes out;
  hash(first, second, out);
  return out;
}

Bytes Digest::hmac(ByteView key, ByteView data) const {
  Bytes out(size_);
  if (!HMAC(algorithm_, key.data(), static_cast<int>(key.size()), data.data(), data.size(),
            out.data(), nullptr))
    throw std::bad_alloc();
  return out;
}

Bytes Digest::of_password(ByteView salt, std::string_view password, std::uint32_t rounds,
                          RoundNumber place) const {
  Bytes value = of(salt, utf16_bytes(password));
  Bytes next;
  std::array<unsigned char, 4> number{};
  for (std::uint32_t round = 0; round < rounds; ++round) {
    for (std::size_t i = 0; i < number.size(); ++i)
      number[i] = static_cast<unsigned char>(round >> (8 * i));
    if (place == RoundNumber::before_hash)
      hash(number, value, next);
    else
      hash(value, number, next);
    value.swap(next);
  }
  return value;
}

bool equal_hashes(ByteView a, ByteView b) noexcept {
  return a.size() == b.size() && CRYPTO_memcmp(a.data(), b.data(), a.size()) == 0;
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

}  // namespace qto::embedded
