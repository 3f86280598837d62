#pragma once

#include <memory>

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

}  // namespace qto::embedded
