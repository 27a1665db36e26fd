#pragma once

#include <functional>
#include <string>
#include <vector>

#include "base/byte_span.h"

namespace kwa {

// One signer of signed data, as it stands there; nothing is checked.
struct SignerInfo {
  std::string issuer;              // the encoded name of who issued the certificate, and
  std::string serialNumber;        // its number; or both are empty, and
  std::string keyIdentifier;       // this tells the certificate
  std::string digestAlgorithm;     // as Digest takes it; in dotted numbers where libcrypto lacks it
  std::string signedAttributes;    // encoded as a SET, the form that is signed; "" where there are none
  std::string unsignedAttributes;  // the encoded list
  std::string signature;
  bool isPss;  // RSA with that padding
};

// PKCS #7 signed data.
struct SignedData {
  std::string contentType;          // in dotted numbers
  std::string content;              // encoded; of an octet string, the octets
  std::size_t signedFrom;           // where its value octets begin
  std::string certificates;         // the encoded list
  std::vector<SignerInfo> signers;  // at most 16

  // What the signers sign: the content without its own tag and length.
  ByteSpan SignedOctets() const { return ByteSpan(content).From(signedFrom); }
};

// Returns false, and why in *fault, when the bytes do not begin with signed data, or with more than 64 MiB of it or
// more than 16 signers.
bool ReadSignedData(ByteSpan bytes, SignedData* data, std::string* fault);

bool ReadSignerInfo(ByteSpan bytes, SignerInfo* signer);

// What a program's signature and a catalog's member say of a file: the digest's algorithm, and its bytes. Returns false
// when the element does not say it.
bool ReadIndirectData(ByteSpan element, std::string* algorithm, std::string* digest);

// Told of an element with its tag and length. Returns whether to go on.
using VisitElement = std::function<bool(ByteSpan)>;

// Visits the elements of an encoded list. Returns false for a list that is not well-formed as far as it was visited.
bool ForEachElement(ByteSpan list, const VisitElement& visit);

// The first element, or an empty span.
ByteSpan FirstElement(ByteSpan list);

// Visits the values of all attributes of a type in an encoded list.
//
// type  in dotted numbers
void ForEachAttributeValue(ByteSpan attributes, const char* type, const VisitElement& visit);

// The first of them, or an empty span.
ByteSpan AttributeValue(ByteSpan attributes, const char* type);

}  // namespace kwa
