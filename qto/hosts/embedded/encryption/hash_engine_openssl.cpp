#include <openssl/evp.h>
#include <openssl/hmac.h>

#include <new>

#include "qto/hosts/embedded/encryption/digest.hpp"

namespace qto::embedded {
namespace {

const EVP_MD* algorithm_of(HashEngine::Kind kind) {
  switch (kind) {
    case HashEngine::Kind::md5:
      return EVP_md5();
    case HashEngine::Kind::sha1:
      return EVP_sha1();
    case HashEngine::Kind::sha256:
      return EVP_sha256();
    case HashEngine::Kind::sha384:
      return EVP_sha384();
    case HashEngine::Kind::sha512:
      break;
  }
  return EVP_sha512();
}

struct FreeHashContext {
  void operator()(EVP_MD_CTX* context) const { EVP_MD_CTX_free(context); }
};

class OpensslHash : public HashEngine {
 public:
  explicit OpensslHash(const EVP_MD* algorithm)
      : algorithm_(algorithm), context_(EVP_MD_CTX_new()) {
    if (!context_) throw std::bad_alloc();
  }

  std::size_t size() const override {
    return static_cast<std::size_t>(EVP_MD_get_size(algorithm_));
  }

  void hash(ByteView first, ByteView second, unsigned char* into) const override {
    if (!EVP_DigestInit_ex(context_.get(), algorithm_, nullptr) ||
        !EVP_DigestUpdate(context_.get(), first.data(), first.size()) ||
        !EVP_DigestUpdate(context_.get(), second.data(), second.size()) ||
        !EVP_DigestFinal_ex(context_.get(), into, nullptr))
      throw std::bad_alloc();
  }

  void hmac(ByteView key, ByteView data, unsigned char* into) const override {
    if (!HMAC(algorithm_, key.data(), static_cast<int>(key.size()), data.data(), data.size(), into,
              nullptr))
      throw std::bad_alloc();
  }

 private:
  const EVP_MD* algorithm_;
  std::unique_ptr<EVP_MD_CTX, FreeHashContext> context_;
};

}  // namespace

std::unique_ptr<HashEngine> HashEngine::make(Kind kind) {
  return std::make_unique<OpensslHash>(algorithm_of(kind));
}

}  // namespace qto::embedded
