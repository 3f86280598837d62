#include "qto/hosts/embedded/encryption/cipher.hpp"

#include <array>
#include <numeric>
#include <string>
#include <utility>

#include "qto/hosts/embedded/encryption/encrypted_package.hpp"

namespace qto::embedded {

void check_aes_key(ByteView key) {
  const std::size_t bits = key.size() * 8;
  if (bits != 128 && bits != 192 && bits != 256)
    throw EncryptionFault(
        EncryptionFault::Kind::unsupported,
        "it is encrypted with a key of " + std::to_string(bits) + " bits, which AES does not have");
}

void rc4(ByteView key, std::span<unsigned char> data) noexcept {
  std::array<unsigned char, 256> state;
  std::iota(state.begin(), state.end(), static_cast<unsigned char>(0));
  unsigned char j = 0;
  for (std::size_t i = 0; i < state.size(); ++i) {
    j = static_cast<unsigned char>(j + state[i] + key[i % key.size()]);
    std::swap(state[i], state[j]);
  }
  unsigned char i = 0;
  j = 0;
  for (unsigned char& byte : data) {
    i = static_cast<unsigned char>(i + 1);
    j = static_cast<unsigned char>(j + state[i]);
    std::swap(state[i], state[j]);
    byte ^= state[static_cast<unsigned char>(state[i] + state[j])];
  }
}

}  // namespace qto::embedded
