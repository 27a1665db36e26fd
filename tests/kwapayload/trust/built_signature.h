#pragma once

#include <functional>
#include <string>
#include <vector>

#include "der.h"
#include "signer.h"

// Signatures and catalogs for tests. They are signed, with SHA-256, by the sample's key; the name in its certificate is
// "Tester".

using kwa::Der;
using kwa::DerAttribute;
using kwa::kDerSequence;
using kwa::kDerSet;
using kwa::kIndirectDataType;
constexpr int kDerOctets = V_ASN1_OCTET_STRING;

constexpr char kTrustListType[] = "1.3.6.1.4.1.311.10.1";

std::string DigestBytes(const std::string& bytes, const char* algorithm);

// The statement that a file has this digest. The algorithm is in dotted numbers.
std::string IndirectData(const char* algorithm, const std::string& digest);

// A catalog's content, a member of it, and an attribute of a member.
std::string TrustList(unsigned version, const std::string& members);
std::string Member(const std::string& tag, const std::string& attributes = "");
std::string NameValue(const std::string& name, const std::string& value, const std::string& more = "");

enum class SignerForm {
  Plain,
  BareDigest,       // the content's digest alone is signed, without its algorithm and without attributes
  ByKeyIdentifier,  // this names the certificate, not issuer and serial number
  Pss,              // RSA-PSS; the mask is made with SHA-384
};

// Makes attributes from a signature, to be added to it.
using Attributes = std::function<std::string(const std::string& signature)>;

struct SignedParts {
  const char* contentType;
  std::string content;
  unsigned signerCount = 1;
  bool hasCertificate = true;
  Attributes unsignedAttributes = nullptr;
  SignerForm form = SignerForm::Plain;
};

// Signed data whose content is an octet string; that of the sample's files is a sequence.
std::string BuildSignedData(const SignedParts& parts);

// A catalog of these files.
std::string CatalogOf(const std::vector<std::string>& files, unsigned signerCount = 1,
                      const Attributes& timestamp = nullptr);

// Timestamps of a signature, as attributes of it: counter-signatures of the old kind and tokens of RFC 3161. Both state
// 2014-02-13 12:00:00, but a bare digest states no time.
std::string CounterSignature(const std::string& signature, SignerForm form = SignerForm::Plain);
std::string TimestampToken(const std::string& signature);

// The attribute that holds a further signature.
Attributes Nested(const std::string& message);

// An ASN.1 element with lists of indefinite length, down to a depth.
std::string Indefinite(const std::string& element, int depth);

// A program without a certificate table, of a size that is a multiple of 8 or not, and places in it.
std::string Program(std::size_t bytesOfCode = 24, std::size_t directoryCount = 16);
constexpr std::size_t kCheckSum = 0x80 + 24 + 64;
constexpr std::size_t kSecurityEntry = 0x80 + 24 + 96 + 4 * 8;

// The program with a certificate table of one signature.
std::string WithTable(std::string program, const std::string& signature);
