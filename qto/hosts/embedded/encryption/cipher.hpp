#pragma once

#include <memory>

#include "qto/hosts/embedded/encryption/bytes.hpp"

struct evp_cipher_ctx_st;

namespace qto::embedded {

inline constexpr std::size_t aes_block = 16;

/// Decrypts with AES, without padding; the key has 128, 192 or 256 bits.
class Aes {
 public:
  enum class Mode { ecb, cbc };
  /// Throws EncryptionFault (unsupported) for another length of key.
  Aes(Mode mode, ByteView key);

  /// In place; the length is a multiple of the block. CBC takes an initial vector of one block.
  void decrypt(std::span<unsigned char> data, ByteView initial_vector = {}) const;

 private:
  struct FreeContext {
    void operator()(evp_cipher_ctx_st* context) const;
  };
  Mode mode_;
  Bytes key_;
  std::unique_ptr<evp_cipher_ctx_st, FreeContext> context_;
};

/// RC4 from the start of its key stream, in place: the same both ways.
void rc4(ByteView key, std::span<unsigned char> data) noexcept;

}  // namespace qto::embedded
