#pragma once

// ASN.1 values in DER, from which catalogs and signatures are made.

#include <openssl/asn1.h>

#include <stdexcept>
#include <string>

namespace kwa {

constexpr int kDerSequence = V_ASN1_CONSTRUCTED | V_ASN1_SEQUENCE;
constexpr int kDerSet = V_ASN1_CONSTRUCTED | V_ASN1_SET;
constexpr int kDerExplicit0 = V_ASN1_CONSTRUCTED | V_ASN1_CONTEXT_SPECIFIC;  // the tag [0] around another value

// Throws std::runtime_error when a call of libcrypto failed: no memory, or a key that it cannot use.
inline void Require(bool succeeded) {
  if (!succeeded) {
    throw std::runtime_error("libcrypto cannot make its signature");
  }
}

// A value: its tag, its length and its content. The tag is V_ASN1_OCTET_STRING or the like, or one from above.
std::string Der(int tag, const std::string& content);

// An object identifier, given in dotted form.
std::string DerObjectId(const char* dotted);

// An attribute with encoded values.
std::string DerAttribute(const char* type, const std::string& values);

// An object identifier as an object of libcrypto. The caller owns it, and usually passes it on to the structure that
// contains it.
ASN1_OBJECT* ObjectId(const char* dotted);

}  // namespace kwa
