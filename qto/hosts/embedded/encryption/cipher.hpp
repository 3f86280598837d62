#pragma once

#include <memory>

#include "qto/hosts/embedded/encryption/bytes.hpp"

namespace qto::embedded {

inline constexpr std::size_t aes_block = 16;

/// Decrypts with AES, without padding; the key has 128, 192 or 256 bits.
class Aes {
 public:
  enum class Mode { ecb, cbc };
  /// Throws EncryptionFault (unsupported) for another length of key.
  Aes(Mode mode, ByteView key);
  ~Aes();

  /// In place; the length is a multiple of the block. CBC takes an initial vector of one block.
  void decrypt(std::span<unsigned char> data, ByteView initial_vector = {}) const;

 private:
  class Engine;  ///< of the system's own library
  std::unique_ptr<Engine> engine_;
};

/// Throws EncryptionFault (unsupported) unless AES has keys of that length.
void check_aes_key(ByteView key);

/// RC4 from the start of its key stream, in place: the same both ways.
void rc4(ByteView key, std::span<unsigned char> data) noexcept;

}  // namespace qto::embedded
