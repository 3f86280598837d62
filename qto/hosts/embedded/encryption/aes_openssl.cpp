#include <openssl/evp.h>

#include <algorithm>
#include <new>

#include "qto/hosts/embedded/encryption/cipher.hpp"

namespace qto::embedded {
namespace {

const EVP_CIPHER* cipher_of(Aes::Mode mode, std::size_t key_bytes) {
  const bool cbc = mode == Aes::Mode::cbc;
  if (key_bytes == 16) return cbc ? EVP_aes_128_cbc() : EVP_aes_128_ecb();
  if (key_bytes == 24) return cbc ? EVP_aes_192_cbc() : EVP_aes_192_ecb();
  return cbc ? EVP_aes_256_cbc() : EVP_aes_256_ecb();
}

}  // namespace

class Aes::Engine {
 public:
  Engine(Mode mode, ByteView key)
      : mode_(mode), key_(key.begin(), key.end()), context_(EVP_CIPHER_CTX_new()) {
    if (!context_) throw std::bad_alloc();
  }

  void decrypt(std::span<unsigned char> data, ByteView initial_vector) const {
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

 private:
  struct Free {
    void operator()(EVP_CIPHER_CTX* context) const { EVP_CIPHER_CTX_free(context); }
  };
  Mode mode_;
  Bytes key_;
  std::unique_ptr<EVP_CIPHER_CTX, Free> context_;
};

Aes::Aes(Mode mode, ByteView key) {
  check_aes_key(key);
  engine_ = std::make_unique<Engine>(mode, key);
}

Aes::~Aes() = default;

void Aes::decrypt(std::span<unsigned char> data, ByteView initial_vector) const {
  engine_->decrypt(data, initial_vector);
}

}  // namespace qto::embedded
