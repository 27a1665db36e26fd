#pragma once

#include <openssl/asn1t.h>
#include <openssl/err.h>
#include <openssl/evp.h>
#include <openssl/x509.h>

#include <algorithm>
#include <array>
#include <climits>
#include <memory>
#include <string>

#include "base/byte_span.h"

namespace kwa {

// A structure of libcrypto's templates, decoded from the first bytes of a span, or null; for the sources of this folder
// alone.
// Lists that a hostile file could make long stay encoded in it, as ASN1_SEQUENCE or ASN1_ANY: decoded, each of their
// bytes would take fifty bytes of memory.
template <typename T>
std::shared_ptr<const T> Decoded(ByteSpan bytes, const ASN1_ITEM* item) {
  const unsigned char* at = bytes.Data();
  const auto size = static_cast<long>(std::min<std::size_t>(bytes.Size(), INT_MAX));
  ASN1_VALUE* const value = ASN1_item_d2i(nullptr, &at, size, item);
  if (value == nullptr) {
    ERR_clear_error();
    return nullptr;
  }
  return {reinterpret_cast<T*>(value), [value, item](const T*) { ASN1_item_free(value, item); }};
}

// The bytes of a text or number; for a value that stays encoded, tag and length included. Empty for null.
inline ByteSpan BytesOf(const ASN1_STRING* text) {
  return text == nullptr ? ByteSpan()
                         : ByteSpan(ASN1_STRING_get0_data(text), static_cast<std::size_t>(ASN1_STRING_length(text)));
}

inline std::string TextOf(const ASN1_STRING* text) {
  return std::string(BytesOf(text).Text());
}

// A sequence or set, tag and length included; empty for any other value.
inline ByteSpan EncodedOf(const ASN1_TYPE* value) {
  const int type = value == nullptr ? V_ASN1_UNDEF : ASN1_TYPE_get(value);
  return type == V_ASN1_SEQUENCE || type == V_ASN1_SET ? BytesOf(value->value.asn1_string) : ByteSpan();
}

inline std::string DottedNumbers(const ASN1_OBJECT* object) {
  std::array<char, 128> text = {};
  OBJ_obj2txt(text.data(), static_cast<int>(text.size()), object, 1);
  return text.data();
}

// The name of an algorithm for Digest; its dotted numbers where libcrypto lacks it.
inline std::string DigestName(const X509_ALGOR* algorithm) {
  const EVP_MD* const digest = EVP_get_digestbynid(OBJ_obj2nid(algorithm->algorithm));
  return digest == nullptr ? DottedNumbers(algorithm->algorithm) : EVP_MD_get0_name(digest);
}

}  // namespace kwa
