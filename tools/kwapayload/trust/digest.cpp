#include "trust/digest.h"

#include <openssl/sha.h>

#include <array>

namespace kwa {

std::string Sha256Hex(ByteSpan bytes) {
  std::array<unsigned char, SHA256_DIGEST_LENGTH> digest = {};
  SHA256(bytes.Data(), bytes.Size(), digest.data());
  constexpr char kDigits[] = "0123456789abcdef";
  std::string text;
  for (const unsigned char byte : digest) {
    text += kDigits[byte / 16];
    text += kDigits[byte % 16];
  }
  return text;
}

}  // namespace kwa
