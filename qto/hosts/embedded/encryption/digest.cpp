#include "qto/hosts/embedded/encryption/digest.hpp"

#include <array>
#include <string>

#include "qto/automation/text.hpp"

namespace qto::embedded {

std::optional<Digest> Digest::find(std::string_view algorithm) {
  struct Row {
    std::string_view name;
    HashEngine::Kind kind;
  };
  using enum HashEngine::Kind;
  constexpr std::array<Row, 5> rows{
      {{"MD5", md5}, {"SHA1", sha1}, {"SHA256", sha256}, {"SHA384", sha384}, {"SHA512", sha512}}};
  std::string name(algorithm);
  std::erase(name, '-');
  for (const Row& row : rows)
    if (text::equal_ascii_nocase(row.name, name)) return Digest(row.kind);
  return std::nullopt;
}

Bytes Digest::of(ByteView first, ByteView second) const {
  Bytes out(size());
  engine_->hash(first, second, out.data());
  return out;
}

Bytes Digest::hmac(ByteView key, ByteView data) const {
  Bytes out(size());
  engine_->hmac(key, data, out.data());
  return out;
}

Bytes Digest::of_password(ByteView salt, std::string_view password, std::uint32_t rounds,
                          RoundNumber place) const {
  Bytes value = of(salt, utf16_bytes(password));
  Bytes next(value.size());
  std::array<unsigned char, 4> number{};
  for (std::uint32_t round = 0; round < rounds; ++round) {
    for (std::size_t i = 0; i < number.size(); ++i)
      number[i] = static_cast<unsigned char>(round >> (8 * i));
    if (place == RoundNumber::before_hash)
      engine_->hash(number, value, next.data());
    else
      engine_->hash(value, number, next.data());
    value.swap(next);
  }
  return value;
}

bool equal_hashes(ByteView a, ByteView b) noexcept {
  if (a.size() != b.size()) return false;
  volatile unsigned char different = 0;
  for (std::size_t i = 0; i < a.size(); ++i)
    different = static_cast<unsigned char>(different | (a[i] ^ b[i]));
  return different == 0;
}

}  // namespace qto::embedded
