#pragma once

#include <memory>
#include <string>

#include "base/byte_span.h"

struct evp_md_ctx_st;  // libcrypto's digest

namespace kwa {

// A digest of bytes that come in parts. An algorithm goes by libcrypto's name, such as "SHA256".
class Digest {
 public:
  explicit Digest(const std::string& algorithm);

  void Add(ByteSpan part);
  // The digest's bytes, "" where libcrypto lacks the algorithm. Called once, at the end.
  std::string Bytes();

 private:
  std::shared_ptr<evp_md_ctx_st> context;
  bool isGood;
};

// The digest of bytes that are all there.
std::string DigestOf(ByteSpan bytes, const std::string& algorithm);

// Bytes as lower-case hexadecimal digits.
std::string Hex(const std::string& bytes);

// The SHA-256 digest in lower-case hexadecimal digits.
std::string Sha256Hex(ByteSpan bytes);

}  // namespace kwa
