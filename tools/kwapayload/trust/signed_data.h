#pragma once

#include <optional>
#include <string>
#include <vector>

#include "base/byte_span.h"
#include "base/fault.h"

namespace kwa {

// Algorithms have their names for Digest; those that libcrypto lacks, their dotted numbers.

// How RSA-PSS is used. Parameters that cannot be read are algorithms that libcrypto lacks.
struct PssParameters {
  std::string digestAlgorithm;
  std::string maskDigestAlgorithm;
};

// One signer of signed data, as it is written there; nothing is checked.
struct SignerInfo {
  // The certificate: its issuer's encoded name and its serial number, or both are empty and the key identifier is not.
  std::string issuer;
  std::string serialNumber;
  std::string keyIdentifier;
  std::string digestAlgorithm;
  std::string signedAttributes;    // encoded as a SET, the form that is signed; "" where there are none
  std::string unsignedAttributes;  // the encoded list; "" where there is none
  std::string signature;
  std::optional<PssParameters> pss;
};

// PKCS #7 signed data.
struct SignedData {
  std::string contentType;          // in dotted numbers
  std::string content;              // encoded; of an octet string, the octets; "" where there is none
  bool isOctetString;               // what `content` was
  std::string certificates;         // the encoded list; "" where there is none
  std::vector<SignerInfo> signers;  // at most 16

  // What the signers sign: the content without its own tag and length.
  ByteSpan SignedOctets() const;
};

// Fails when the bytes do not begin with signed data, or with more than 64 MiB of it or more than 16 signers.
Result<SignedData> ReadSignedData(ByteSpan bytes);

Result<SignerInfo> ReadSignerInfo(ByteSpan bytes);

// The digest that a program's signature or a catalog's member states.
struct IndirectData {
  std::string algorithm;
  std::string digest;  // its bytes, never ""
};

Result<IndirectData> ReadIndirectData(ByteSpan element);

}  // namespace kwa
