#include "trust/digest.h"

#include <openssl/evp.h>

#include <array>

namespace kwa {

Digest::Digest(const std::string& algorithm) : context(EVP_MD_CTX_new(), EVP_MD_CTX_free) {
  const EVP_MD* const kind = EVP_get_digestbyname(algorithm.c_str());
  isGood = kind != nullptr && EVP_DigestInit_ex(context.get(), kind, nullptr) == 1;
}

void Digest::Add(ByteSpan part) {
  isGood = isGood && EVP_DigestUpdate(context.get(), part.Data(), part.Size()) == 1;
}

std::string Digest::Bytes() {
  std::array<unsigned char, EVP_MAX_MD_SIZE> digest = {};
  unsigned size = 0;
  isGood = isGood && EVP_DigestFinal_ex(context.get(), digest.data(), &size) == 1;
  return isGood ? std::string(digest.begin(), digest.begin() + size) : "";
}

std::string DigestOf(ByteSpan bytes, const std::string& algorithm) {
  Digest digest(algorithm);
  digest.Add(bytes);
  return digest.Bytes();
}

std::string Hex(const std::string& bytes) {
  constexpr char kDigits[] = "0123456789abcdef";
  std::string text;
  for (const char byte : bytes) {
    text += kDigits[static_cast<unsigned char>(byte) / 16];
    text += kDigits[static_cast<unsigned char>(byte) % 16];
  }
  return text;
}

std::string Sha256Hex(ByteSpan bytes) {
  return Hex(DigestOf(bytes, "SHA256"));
}

}  // namespace kwa
