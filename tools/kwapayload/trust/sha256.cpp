#include "trust/sha256.h"

#include <openssl/evp.h>

#include <array>
#include <stdexcept>

namespace kwa {
namespace {

void Require(int result) {
  if (result != 1) {
    throw std::runtime_error("this libcrypto has no SHA-256");
  }
}

}  // namespace

struct Sha256::Context {
  struct Free {
    void operator()(EVP_MD_CTX* digest) const { EVP_MD_CTX_free(digest); }
  };
  std::unique_ptr<EVP_MD_CTX, Free> handle{EVP_MD_CTX_new()};
};

Sha256::Sha256() : context(std::make_unique<Context>()) {
  Require(EVP_DigestInit_ex(context->handle.get(), EVP_sha256(), nullptr));
}

Sha256::~Sha256() = default;

void Sha256::Add(ByteSpan piece) {
  Require(EVP_DigestUpdate(context->handle.get(), piece.Data(), piece.Size()));
}

std::string Sha256::Hex() {
  std::array<unsigned char, EVP_MAX_MD_SIZE> digest = {};
  unsigned digestSize = 0;
  Require(EVP_DigestFinal_ex(context->handle.get(), digest.data(), &digestSize));
  constexpr char kDigits[] = "0123456789abcdef";
  std::string text;
  for (unsigned i = 0; i < digestSize; ++i) {
    text += kDigits[digest[i] / 16];
    text += kDigits[digest[i] % 16];
  }
  return text;
}

std::string Sha256Hex(ByteSpan bytes) {
  Sha256 digest;
  digest.Add(bytes);
  return digest.Hex();
}

}  // namespace kwa
