#include <windows.h>
// Needs windows.h before it.
#include <bcrypt.h>

#include <algorithm>
#include <new>
#include <string>

#include "qto/hosts/embedded/encryption/cipher.hpp"

namespace qto::embedded {
namespace {

void check_cipher(NTSTATUS status) {
  if (!BCRYPT_SUCCESS(status)) throw std::bad_alloc();
}

}  // namespace

class Aes::Engine {
 public:
  Engine(Mode mode, ByteView key) : cbc_(mode == Mode::cbc) {
    check_cipher(BCryptOpenAlgorithmProvider(&provider_, BCRYPT_AES_ALGORITHM, nullptr, 0));
    std::wstring chaining = cbc_ ? BCRYPT_CHAIN_MODE_CBC : BCRYPT_CHAIN_MODE_ECB;
    NTSTATUS status = BCryptSetProperty(
        provider_, BCRYPT_CHAINING_MODE, reinterpret_cast<unsigned char*>(chaining.data()),
        static_cast<ULONG>((chaining.size() + 1) * sizeof(wchar_t)), 0);
    if (BCRYPT_SUCCESS(status))
      status = BCryptGenerateSymmetricKey(provider_, &key_, nullptr, 0,
                                          const_cast<unsigned char*>(key.data()),
                                          static_cast<ULONG>(key.size()), 0);
    if (BCRYPT_SUCCESS(status)) return;
    BCryptCloseAlgorithmProvider(provider_, 0);
    check_cipher(status);
  }
  Engine(const Engine&) = delete;
  Engine& operator=(const Engine&) = delete;
  ~Engine() {
    BCryptDestroyKey(key_);
    BCryptCloseAlgorithmProvider(provider_, 0);
  }

  void decrypt(std::span<unsigned char> data, ByteView initial_vector) const {
    // The system counts in 32 bits, and keeps in the vector what the next piece begins with.
    constexpr std::size_t piece = std::size_t{1} << 24;
    Bytes vector(initial_vector.begin(), initial_vector.end());
    for (std::size_t at = 0; at < data.size(); at += piece) {
      unsigned char* const place = data.data() + at;
      const auto length = static_cast<ULONG>(std::min(piece, data.size() - at));
      ULONG written = 0;
      check_cipher(BCryptDecrypt(key_, place, length, nullptr, cbc_ ? vector.data() : nullptr,
                                 cbc_ ? static_cast<ULONG>(vector.size()) : 0, place, length,
                                 &written, 0));
    }
  }

 private:
  bool cbc_;
  BCRYPT_ALG_HANDLE provider_ = nullptr;
  BCRYPT_KEY_HANDLE key_ = nullptr;
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
