#pragma once

#include <functional>
#include <string>

#include "der.h"

// Signatures and catalogs for tests. They are signed, with SHA-256, by the sample's key; the name in its certificate is
// "Tester".

using kwa::Der;
using kwa::DerAttribute;
using kwa::kDerSequence;
using kwa::kDerSet;
constexpr int kDerOctets = V_ASN1_OCTET_STRING;

constexpr char kIndirectDataType[] = "1.3.6.1.4.1.311.2.1.4";
constexpr char kTrustListType[] = "1.3.6.1.4.1.311.10.1";

std::string DigestBytes(const std::string& bytes, const char* algorithm);

// The statement that a file has this digest. The algorithm is in dotted numbers.
std::string IndirectData(const char* algorithm, const std::string& digest);

// A catalog's content.
std::string TrustList(unsigned version, const std::string& members);

enum class SignerForm {
  Plain,
  BareDigest,       // the content's digest alone is signed, without its algorithm and without attributes
  ByKeyIdentifier,  // this names the certificate, not issuer and serial number
  Pss,              // RSA-PSS; the mask is made with SHA-384
};

struct SignedParts {
  const char* contentType;
  std::string content;
  unsigned signerCount = 1;
  bool hasCertificate = true;
  // Makes attributes from the signature, to be added to it.
  std::function<std::string(const std::string& signature)> unsignedAttributes = nullptr;
  SignerForm form = SignerForm::Plain;
};

// Signed data whose content is an octet string; that of the sample's files is a sequence.
std::string BuildSignedData(const SignedParts& parts);

// Timestamps of a signature, as attributes of it: counter-signatures of the old kind and tokens of RFC 3161. Both state
// 2014-02-13 12:00:00, but a bare digest states no time.
std::string CounterSignature(const std::string& signature, SignerForm form = SignerForm::Plain);
std::string TimestampToken(const std::string& signature);
