#pragma once

// What the makers of signatures need of libcrypto's ASN.1.

#include <openssl/asn1.h>

#include <stdexcept>
#include <string>

namespace kwa {

// Throws std::runtime_error when a call of libcrypto failed: without memory, or with a key that it cannot use.
inline void Require(bool succeeded) {
  if (!succeeded) throw std::runtime_error("libcrypto cannot make its signature");
}

// The encoding of a value that the item describes. The caller keeps the value.
std::string Der(const void* value, const ASN1_ITEM* item);

// Owned by the caller, who mostly gives it to the structure that it becomes a part of.
ASN1_OBJECT* ObjectId(const char* dotted);
ASN1_STRING* StringOf(int type, const std::string& bytes);

}  // namespace kwa
