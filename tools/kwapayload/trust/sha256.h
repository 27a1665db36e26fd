#pragma once

#include <memory>
#include <string>

#include "base/byte_span.h"

namespace kwa {

// A SHA-256 digest of bytes that come in pieces.
class Sha256 {
 public:
  Sha256();
  ~Sha256();

  void Add(ByteSpan piece);
  // The digest in 64 lower-case hexadecimal digits. Called once, at the end.
  std::string Hex();

 private:
  struct Context;
  std::unique_ptr<Context> context;
};

// The digest of bytes that are all there.
std::string Sha256Hex(ByteSpan bytes);

}  // namespace kwa
