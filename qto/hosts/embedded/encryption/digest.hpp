#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string_view>

#include "qto/hosts/embedded/encryption/bytes.hpp"

namespace qto::embedded {

/// A hash algorithm of the system's own library, ready to be used again and again. Only lack of
/// memory makes it fail (std::bad_alloc).
class HashEngine {
 public:
  enum class Kind { md5, sha1, sha256, sha384, sha512 };
  static std::unique_ptr<HashEngine> make(Kind kind);

  virtual ~HashEngine() = default;
  virtual std::size_t size() const = 0;
  /// The hash of both, one after the other, to `into`, which has room for it.
  virtual void hash(ByteView first, ByteView second, unsigned char* into) const = 0;
  virtual void hmac(ByteView key, ByteView data, unsigned char* into) const = 0;
};

/// A hash algorithm, ready to be used again and again.
class Digest {
 public:
  /// MD5, SHA1, SHA256, SHA384 or SHA512, with or without the hyphen, in any letter case; nothing
  /// for others.
  static std::optional<Digest> find(std::string_view algorithm);

  /// The hash of both, one after the other.
  Bytes of(ByteView first, ByteView second = {}) const;
  Bytes hmac(ByteView key, ByteView data) const;
  std::size_t size() const { return engine_->size(); }

  /// Where the number of a round stands when a password is hashed over and over.
  enum class RoundNumber { before_hash, after_hash };
  /// The hash of salt and password, then as often as `rounds` says of the hash and the number of
  /// the round.
  Bytes of_password(ByteView salt, std::string_view password, std::uint32_t rounds,
                    RoundNumber place) const;

 private:
  explicit Digest(HashEngine::Kind kind) : engine_(HashEngine::make(kind)) {}

  std::unique_ptr<const HashEngine> engine_;
};

/// Equal; the time it takes says nothing about where they differ.
bool equal_hashes(ByteView a, ByteView b) noexcept;

}  // namespace qto::embedded
