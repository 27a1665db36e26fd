#pragma once

#include <openssl/asn1t.h>
#include <openssl/err.h>
#include <openssl/x509.h>

#include <algorithm>
#include <climits>
#include <functional>
#include <memory>
#include <optional>
#include <string>

#include "base/byte_span.h"

// Values and lists in DER or BER, for the sources of this folder alone.

namespace kwa {

struct Asn1Element {
  ByteSpan whole;    // with tag and length and, where the length is indefinite, the two zeros at its end
  ByteSpan content;  // without them
};

// The element that the bytes begin with. Nothing where they begin with no whole element.
std::optional<Asn1Element> FrontElement(ByteSpan bytes);

// Returns whether to go on.
using VisitElement = std::function<bool(const Asn1Element&)>;

// Visits the elements of an encoded list. Returns whether it visited all: the list is well-formed, and no visit ended
// it.
bool ForEachElement(ByteSpan list, const VisitElement& visit);

// Visits the values of all attributes of a type in an encoded list.
//
// type  in dotted numbers
void ForEachAttributeValue(ByteSpan attributes, const char* type, const VisitElement& visit);

// The first value of the attributes of a type, or an empty span.
ByteSpan AttributeValue(ByteSpan attributes, const char* type);

// A structure of libcrypto's templates, decoded from the first bytes of a span, or null.
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
ByteSpan BytesOf(const ASN1_STRING* text);
std::string TextOf(const ASN1_STRING* text);

// A sequence or set, tag and length included; empty for any other value.
ByteSpan EncodedOf(const ASN1_TYPE* value);

std::string DottedNumbers(const ASN1_OBJECT* object);

// The name of an algorithm for Digest; its dotted numbers where libcrypto lacks it.
std::string DigestName(const X509_ALGOR* algorithm);

}  // namespace kwa
