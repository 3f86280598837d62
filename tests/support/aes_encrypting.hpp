#pragma once

#include <stdexcept>

#include "qto/hosts/embedded/encryption/bytes.hpp"

#ifdef _WIN32
#include <windows.h>
// Needs windows.h before it.
#include <bcrypt.h>
#else
#include <openssl/evp.h>
#endif

/// The way back from Aes::decrypt(), by the same library of the system.
namespace qto::test {

#ifdef _WIN32

/// CBC with an initial vector of one block, ECB without.
inline embedded::Bytes aes_encrypted(const embedded::Bytes& key, const embedded::Bytes* vector,
                                     embedded::Bytes data) {
  data.resize((data.size() + 15) / 16 * 16, 0);
  embedded::Bytes key_bytes = key;
  embedded::Bytes chain = vector ? *vector : embedded::Bytes();
  wchar_t cbc[] = BCRYPT_CHAIN_MODE_CBC;
  wchar_t ecb[] = BCRYPT_CHAIN_MODE_ECB;
  BCRYPT_ALG_HANDLE provider = nullptr;
  BCRYPT_KEY_HANDLE handle = nullptr;
  ULONG written = 0;
  BCryptOpenAlgorithmProvider(&provider, BCRYPT_AES_ALGORITHM, nullptr, 0);
  BCryptSetProperty(provider, BCRYPT_CHAINING_MODE,
                    reinterpret_cast<unsigned char*>(vector ? cbc : ecb), sizeof cbc, 0);
  BCryptGenerateSymmetricKey(provider, &handle, nullptr, 0, key_bytes.data(),
                             static_cast<ULONG>(key_bytes.size()), 0);
  const auto size = static_cast<ULONG>(data.size());
  const NTSTATUS done =
      BCryptEncrypt(handle, data.data(), size, nullptr, vector ? chain.data() : nullptr,
                    static_cast<ULONG>(chain.size()), data.data(), size, &written, 0);
  BCryptDestroyKey(handle);
  BCryptCloseAlgorithmProvider(provider, 0);
  if (!BCRYPT_SUCCESS(done)) throw std::runtime_error("no encryption");
  return data;
}

#else

/// CBC with an initial vector of one block, ECB without.
inline embedded::Bytes aes_encrypted(const embedded::Bytes& key, const embedded::Bytes* vector,
                                     embedded::Bytes data) {
  data.resize((data.size() + 15) / 16 * 16, 0);
  const EVP_CIPHER* cbc = key.size() == 16   ? EVP_aes_128_cbc()
                          : key.size() == 24 ? EVP_aes_192_cbc()
                                             : EVP_aes_256_cbc();
  const EVP_CIPHER* ecb = key.size() == 16   ? EVP_aes_128_ecb()
                          : key.size() == 24 ? EVP_aes_192_ecb()
                                             : EVP_aes_256_ecb();
  EVP_CIPHER_CTX* context = EVP_CIPHER_CTX_new();
  int written = 0;
  EVP_EncryptInit_ex(context, vector ? cbc : ecb, nullptr, key.data(),
                     vector ? vector->data() : nullptr);
  EVP_CIPHER_CTX_set_padding(context, 0);
  const int done =
      EVP_EncryptUpdate(context, data.data(), &written, data.data(), static_cast<int>(data.size()));
  EVP_CIPHER_CTX_free(context);
  if (!done) throw std::runtime_error("no encryption");
  return data;
}

#endif

}  // namespace qto::test
