#pragma once

#include <functional>
#include <string>

// Signatures and catalogs made by hand. They are signed, with SHA-256, by a key of the tests; the name in its
// certificate is "Tester".

// An element of DER: tag, length and content (less than 16 MiB).
std::string Der(unsigned char tag, const std::string& content);

constexpr unsigned char kDerOctets = 0x04;
constexpr unsigned char kDerSequence = 0x30;
constexpr unsigned char kDerSet = 0x31;

constexpr char kIndirectDataType[] = "1.3.6.1.4.1.311.2.1.4";
constexpr char kTrustListType[] = "1.3.6.1.4.1.311.10.1";

// An attribute with one value; types are in dotted numbers.
std::string DerAttribute(const char* type, const std::string& value);

// In raw bytes; `algorithm` as libcrypto names it.
std::string DigestBytes(const std::string& bytes, const char* algorithm);

// The statement that a file has this digest.
std::string IndirectData(const char* algorithm, const std::string& digest);

// A catalog's content.
std::string TrustList(unsigned version, const std::string& members);

enum class SignerForm {
  Plain,
  BareDigest,       // the digest alone is signed, without its algorithm
  ByKeyIdentifier,  // this names the certificate, not issuer and serial number
  Pss,              // RSA-PSS; the mask is made with SHA-1
  PssOtherDigest,   // its parameters name SHA-384
  PssUnknownMask,   // they name a mask that nobody knows
  Indefinite,       // all lists of the signed data are of indefinite length, the signed attributes are not
  IndefiniteAttributes,
};

struct SignedParts {
  const char* contentType;
  std::string content;  // encoded
  unsigned signerCount = 1;
  bool hasCertificate = true;
  // Makes attributes from the signature, to be added to it.
  std::function<std::string(const std::string& signature)> unsignedAttributes = nullptr;
  SignerForm form = SignerForm::Plain;
};

std::string BuildSignedData(const SignedParts& parts);

// Timestamps of a signature, as attributes of it: counter-signatures of the old kind and tokens of RFC 3161. Both state
// 2014-02-13 12:00:00.
std::string CounterSignature(const std::string& signature, SignerForm form = SignerForm::Plain, bool hasTime = true);
std::string TimestampToken(const std::string& signature, SignerForm form = SignerForm::Plain);
