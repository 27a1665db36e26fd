#pragma once

#include <openssl/cms.h>
#include <openssl/rsa.h>

#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "der.h"
#include "pe/built_image.h"
#include "signer.h"
#include "trust/asn1.h"
#include "trust/digest.h"

// Signatures and catalogs for tests. They are signed, with SHA-256, by the sample's key; the name in its certificate is
// "Tester".

using kwa::Der;
using kwa::DerAttribute;
using kwa::kDerSequence;
using kwa::kDerSet;
using kwa::kIndirectDataType;
constexpr int kDerOctets = V_ASN1_OCTET_STRING;
constexpr char kTrustListType[] = "1.3.6.1.4.1.311.10.1";
constexpr char kSha1[] = "1.3.14.3.2.26";
constexpr char kSha256[] = "2.16.840.1.101.3.4.2.1";
const std::string kVersion1 = Der(V_ASN1_INTEGER, "\1");

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

inline const kwa::Signer& SampleSigner() {
  static const kwa::Signer signer = kwa::ReadSigner(KWA_SOURCES "/tools/sample/files/signer.pem");
  return signer;
}

// The sample's certificate with other fields. Only that of the signer has a key identifier.
inline std::shared_ptr<X509> Certificate(bool isSigner, const char* issuer, long serialNumber) {
  const std::shared_ptr<X509> certificate(X509_dup(SampleSigner().certificate.get()), X509_free);
  const auto setName = [&certificate](auto set, const char* text) {
    const std::shared_ptr<X509_NAME> name(X509_NAME_new(), X509_NAME_free);
    X509_NAME_add_entry_by_txt(name.get(), "CN", MBSTRING_ASC, reinterpret_cast<const unsigned char*>(text), -1, -1, 0);
    set(certificate.get(), name.get());
  };
  setName(X509_set_subject_name, isSigner ? "Tester" : "Other");
  setName(X509_set_issuer_name, issuer);
  ASN1_INTEGER_set(X509_get_serialNumber(certificate.get()), serialNumber);
  if (!isSigner) {
    const int index = X509_get_ext_by_NID(certificate.get(), NID_subject_key_identifier, -1);
    X509_EXTENSION_free(X509_delete_ext(certificate.get(), index));
  }
  i2d_re_X509_tbs(certificate.get(), nullptr);  // forgets the former encoding
  return certificate;
}

inline void AddSigner(CMS_ContentInfo* message, SignerForm form, unsigned flags) {
  CMS_SignerInfo* const signer =
      CMS_add1_signer(message, Certificate(true, "Tester", 1).get(), SampleSigner().key.get(), EVP_sha256(), flags);
  EVP_PKEY_CTX* const context = CMS_SignerInfo_get0_pkey_ctx(signer);
  if (form == SignerForm::BareDigest) {
    EVP_PKEY_sign_init(context);  // forgets the algorithm of the digest
    return;
  }
  if (form == SignerForm::Pss) {
    EVP_PKEY_CTX_set_rsa_padding(context, RSA_PKCS1_PSS_PADDING);
    EVP_PKEY_CTX_set_rsa_mgf1_md(context, EVP_sha384());
  }
  CMS_signed_add1_attr_by_NID(signer, NID_pkcs9_signingTime, V_ASN1_UTCTIME, kwa::kSigningTime,
                              sizeof kwa::kSigningTime - 1);
}

inline void AddUnsignedAttributes(CMS_SignerInfo* signer, const Attributes& make) {
  const std::string attributes = make(kwa::TextOf(CMS_SignerInfo_get0_signature(signer)));
  const auto* at = reinterpret_cast<const unsigned char*>(attributes.data());
  for (const unsigned char* const end = at + attributes.size(); at != end;) {
    const std::shared_ptr<X509_ATTRIBUTE> attribute(d2i_X509_ATTRIBUTE(nullptr, &at, end - at), X509_ATTRIBUTE_free);
    CMS_unsigned_add1_attr(signer, attribute.get());
  }
}

inline std::string DigestBytes(const std::string& bytes, const char* algorithm) {
  return kwa::DigestOf(kwa::ByteSpan(bytes), algorithm);
}

// The statement that a file has this digest. The algorithm is in dotted numbers.
inline std::string IndirectData(const char* algorithm, const std::string& digest) {
  return Der(kDerSequence,
             Der(kDerSequence, kwa::DerObjectId("1.3.6.1.4.1.311.2.1.25")) +
                 Der(kDerSequence, Der(kDerSequence, kwa::DerObjectId(algorithm)) + Der(kDerOctets, digest)));
}

// A catalog's content, a member of it, and an attribute of a member.
inline std::string TrustList(unsigned version, const std::string& members) {
  const char* const memberVersion = version == 1 ? "1.3.6.1.4.1.311.12.1.2" : "1.3.6.1.4.1.311.12.1.3";
  return Der(kDerSequence, Der(kDerSequence, kwa::DerObjectId("1.3.6.1.4.1.311.12.1.1")) +
                               Der(kDerOctets, std::string(16, 'i')) + Der(V_ASN1_UTCTIME, kwa::kSigningTime) +
                               Der(kDerSequence, kwa::DerObjectId(memberVersion)) + Der(kDerSequence, members));
}

inline std::string Member(const std::string& tag, const std::string& attributes = "") {
  return Der(kDerSequence, Der(kDerOctets, tag) + (attributes.empty() ? "" : Der(kDerSet, attributes)));
}

inline std::string NameValue(const std::string& name, const std::string& value, const std::string& more = "") {
  std::string bigEndian = '\0' + Utf16(name);
  bigEndian.pop_back();
  return DerAttribute("1.3.6.1.4.1.311.12.2.1", Der(kDerSequence, Der(V_ASN1_BMPSTRING, bigEndian) + kVersion1 +
                                                                      Der(kDerOctets, Utf16(value)) + more));
}

// Signed data whose content is an octet string; that of the sample's files is a sequence.
inline std::string BuildSignedData(const SignedParts& parts) {
  const unsigned flags = CMS_PARTIAL | CMS_BINARY | CMS_NOSMIMECAP | CMS_KEY_PARAM |
                         (parts.hasCertificate ? 0U : CMS_NOCERTS) |
                         (parts.form == SignerForm::BareDigest ? CMS_NOATTR : 0U) |
                         (parts.form == SignerForm::ByKeyIdentifier ? CMS_USE_KEYID : 0U);
  const std::shared_ptr<CMS_ContentInfo> message(CMS_sign(nullptr, nullptr, nullptr, nullptr, flags),
                                                 CMS_ContentInfo_free);
  const std::shared_ptr<ASN1_OBJECT> type(kwa::ObjectId(parts.contentType), ASN1_OBJECT_free);
  CMS_set1_eContentType(message.get(), type.get());
  // Others of the same issuer, and with the same number. Being smaller, they come first.
  CMS_add1_cert(message.get(), Certificate(false, "Tester", 2).get());
  CMS_add1_cert(message.get(), Certificate(false, "Other", 1).get());
  for (unsigned i = 0; i < parts.signerCount; ++i) {
    // Each signer would add its certificate again.
    AddSigner(message.get(), parts.form, flags | (i == 0 ? 0U : CMS_NOCERTS));
  }
  const std::shared_ptr<BIO> content(BIO_new_mem_buf(parts.content.data(), static_cast<int>(parts.content.size())),
                                     BIO_free);
  // Without a signer, CMS_final leaves the content out.
  ASN1_STRING_set(*CMS_get0_content(message.get()), parts.content.data(), static_cast<int>(parts.content.size()));
  CMS_final(message.get(), content.get(), nullptr, flags);
  if (parts.unsignedAttributes) {
    AddUnsignedAttributes(sk_CMS_SignerInfo_value(CMS_get0_SignerInfos(message.get()), 0), parts.unsignedAttributes);
  }
  unsigned char* bytes = nullptr;
  const int size = i2d_CMS_ContentInfo(message.get(), &bytes);
  const std::string encoded(bytes, bytes + size);
  OPENSSL_free(bytes);
  return encoded;
}

// A catalog of these files.
inline std::string CatalogOf(const std::vector<std::string>& files, unsigned signerCount = 1,
                             const Attributes& timestamp = nullptr) {
  std::string members;
  for (const std::string& file : files) {
    members += Member(DigestBytes(file, "SHA256"));
  }
  return BuildSignedData({kTrustListType, TrustList(2, members), signerCount, true, timestamp});
}

// Timestamps of a signature, as attributes of it: counter-signatures of the old kind and tokens of RFC 3161. Both state
// 2014-02-13 12:00:00, but a bare digest states no time.
inline std::string CounterSignature(const std::string& signature, SignerForm form = SignerForm::Plain) {
  const std::string message = BuildSignedData({"1.2.840.113549.1.7.1", signature, 1, true, nullptr, form});
  // The signer is the last element of the last element, and so on.
  kwa::ByteSpan last(message);
  for (int depth = 0; depth < 4; ++depth) {
    kwa::ForEachElement(last, [&last](const kwa::Asn1Element& element) {
      last = element.whole;
      return true;
    });
  }
  return DerAttribute("1.2.840.113549.1.9.6", std::string(last.Text()));
}

inline std::string TimestampToken(const std::string& signature) {
  const std::string imprint = Der(
      kDerSequence, Der(kDerSequence, kwa::DerObjectId(kSha256)) + Der(kDerOctets, DigestBytes(signature, "SHA256")));
  const std::string time = Der(V_ASN1_GENERALIZEDTIME, std::string("20") + kwa::kSigningTime);
  const std::string info = Der(kDerSequence, kVersion1 + kwa::DerObjectId("1.2.3") + imprint + kVersion1 + time);
  return DerAttribute("1.3.6.1.4.1.311.3.3.1", BuildSignedData({"1.2.840.113549.1.9.16.1.4", info}));
}

// The attribute that holds a further signature.
inline Attributes Nested(const std::string& message) {
  return [message](const std::string&) { return DerAttribute("1.3.6.1.4.1.311.2.4.1", message); };
}

// An ASN.1 element with lists of indefinite length, down to a depth.
inline std::string Indefinite(const std::string& element, int depth) {
  constexpr char kConstructed = 0x20;
  if (depth == 0 || (element.at(0) & kConstructed) == 0) {
    return element;
  }
  std::string bytes = {element[0], '\x80'};
  kwa::ForEachElement(kwa::ByteSpan(element), [&bytes, depth](const kwa::Asn1Element& part) {
    bytes += Indefinite(std::string(part.whole.Text()), depth - 1);
    return true;
  });
  return bytes + std::string(2, '\0');
}

constexpr std::size_t kCheckSum = 0x80 + 24 + 64;
constexpr std::size_t kSecurityEntry = 0x80 + 24 + 96 + 4 * 8;

// A program without a certificate table, of a size that is a multiple of 8 or not.
inline std::string Program(std::size_t bytesOfCode = 24, std::size_t directoryCount = 16) {
  BuiltImage built;
  built.sections = {{".text", kCode, std::string(bytesOfCode, '\x90')}};
  built.directories.resize(directoryCount);
  return BuildImage(built);
}

// The program with a certificate table of one signature.
inline std::string WithTable(std::string program, const std::string& signature) {
  program.resize((program.size() + 7) / 8 * 8);
  std::string table = WordBytes(8 + signature.size()) + WordBytes(0x00020200) + signature;
  table.resize((table.size() + 7) / 8 * 8);
  PutWord(program, kSecurityEntry, program.size());
  PutWord(program, kSecurityEntry + 4, table.size());
  return program + table;
}
