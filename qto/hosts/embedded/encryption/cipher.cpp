#include "qto/hosts/embedded/encryption/cipher.hpp"

#include <openssl/evp.h>

#include <algorithm>
#include <array>
#include <new>
#include <numeric>
#include <utility>

#include "qto/hosts/embedded/encryption/encryption_fault.hpp"

namespace qto::embedded {
namespace {

const EVP_CIPHER* cipher_of(Aes::Mode mode, std::size_t key_bytes) {
  const bool cbc = mode == Aes::Mode::cbc;
  switch (key_bytes) {
    case 16:
      return cbc ? EVP_aes_128_cbc() : EVP_aes_128_ecb();
    case 24:
      return cbc ? EVP_aes_192_cbc() : EVP_aes_192_ecb();
    case 32:
      return cbc ? EVP_aes_256_cbc() : EVP_aes_256_ecb();
    default:
      throw EncryptionFault(EncryptionFault::Kind::unsupported,
                            "it is encrypted with a key of " + std::to_string(key_bytes * 8) +
                                " bits, which AES does not have");
  }
}

}  // namespace

void Aes::FreeContext::operator()(evp_cipher_ctx_st* context) const {
  EVP_CIPHER_CTX_free(context);
}

Aes::Aes(Mode mode, ByteView key)
    : mode_(mode), key_(key.begin(), key.end()), context_(EVP_CIPHER_CTX_new()) {
  cipher_of(mode_, key_.size());
  if (!context_) throw std::bad_alloc();
}

void Aes::decrypt(std::span<unsigned char> data, ByteView initial_vector) const {
  EVP_CIPHER_CTX* context = context_.get();
  if (!EVP_DecryptInit_ex(context, cipher_of(mode_, key_.size()), nullptr, key_.data(),
                          mode_ == Mode::cbc ? initial_vector.data() : nullptr))
    throw std::bad_alloc();
  EVP_CIPHER_CTX_set_padding(context, 0);
  // The library counts in int.
  constexpr std::size_t piece = std::size_t{1} << 24;
  for (std::size_t at = 0; at < data.size(); at += piece) {
    int written = 0;
    unsigned char* place = data.data() + at;
    const int length = static_cast<int>(std::min(piece, data.size() - at));
    if (!EVP_DecryptUpdate(context, place, &written, place, length)) throw std::bad_alloc();
  }
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
