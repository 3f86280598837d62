#include <windows.h>
// Needs windows.h before it.
#include <bcrypt.h>

#include <algorithm>
#include <new>

#include "qto/hosts/embedded/encryption/digest.hpp"

namespace qto::embedded {
namespace {

const wchar_t* name_of(HashEngine::Kind kind) {
  switch (kind) {
    case HashEngine::Kind::md5:
      return BCRYPT_MD5_ALGORITHM;
    case HashEngine::Kind::sha1:
      return BCRYPT_SHA1_ALGORITHM;
    case HashEngine::Kind::sha256:
      return BCRYPT_SHA256_ALGORITHM;
    case HashEngine::Kind::sha384:
      return BCRYPT_SHA384_ALGORITHM;
    case HashEngine::Kind::sha512:
      break;
  }
  return BCRYPT_SHA512_ALGORITHM;
}

void check_hash(NTSTATUS status) {
  if (!BCRYPT_SUCCESS(status)) throw std::bad_alloc();
}

void add(BCRYPT_HASH_HANDLE hash, ByteView bytes) {
  // The system counts in 32 bits.
  constexpr std::size_t piece = std::size_t{1} << 30;
  for (; !bytes.empty(); bytes = bytes.subspan(std::min(piece, bytes.size())))
    check_hash(BCryptHashData(hash, const_cast<unsigned char*>(bytes.data()),
                              static_cast<ULONG>(std::min(piece, bytes.size())), 0));
}

class Provider {
 public:
  Provider(const wchar_t* name, ULONG flags) {
    check_hash(BCryptOpenAlgorithmProvider(&handle_, name, nullptr, flags));
  }
  Provider(const Provider&) = delete;
  Provider& operator=(const Provider&) = delete;
  ~Provider() { BCryptCloseAlgorithmProvider(handle_, 0); }
  BCRYPT_ALG_HANDLE handle() const noexcept { return handle_; }

 private:
  BCRYPT_ALG_HANDLE handle_ = nullptr;
};

class Hash {
 public:
  Hash(const Provider& provider, ByteView key, ULONG flags) {
    check_hash(BCryptCreateHash(provider.handle(), &handle_, nullptr, 0,
                                const_cast<unsigned char*>(key.data()),
                                static_cast<ULONG>(key.size()), flags));
  }
  Hash(const Hash&) = delete;
  Hash& operator=(const Hash&) = delete;
  ~Hash() { BCryptDestroyHash(handle_); }

  void run(ByteView first, ByteView second, unsigned char* into, std::size_t size) const {
    add(handle_, first);
    add(handle_, second);
    check_hash(BCryptFinishHash(handle_, into, static_cast<ULONG>(size), 0));
  }

 private:
  BCRYPT_HASH_HANDLE handle_ = nullptr;
};

class WindowsHash : public HashEngine {
 public:
  explicit WindowsHash(Kind kind)
      : name_(name_of(kind)), provider_(name_, 0), hash_(provider_, {}, BCRYPT_HASH_REUSABLE_FLAG) {
    ULONG size = 0;
    ULONG written = 0;
    check_hash(BCryptGetProperty(provider_.handle(), BCRYPT_HASH_LENGTH,
                                 reinterpret_cast<unsigned char*>(&size), sizeof size, &written,
                                 0));
    size_ = size;
  }

  std::size_t size() const override { return size_; }

  void hash(ByteView first, ByteView second, unsigned char* into) const override {
    hash_.run(first, second, into, size_);
  }

  void hmac(ByteView key, ByteView data, unsigned char* into) const override {
    const Provider keyed(name_, BCRYPT_ALG_HANDLE_HMAC_FLAG);
    Hash(keyed, key, 0).run(data, {}, into, size_);
  }

 private:
  const wchar_t* name_;
  Provider provider_;
  Hash hash_;
  std::size_t size_ = 0;
};

}  // namespace

std::unique_ptr<HashEngine> HashEngine::make(Kind kind) {
  return std::make_unique<WindowsHash>(kind);
}

}  // namespace qto::embedded
