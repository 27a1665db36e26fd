#include "trust/built_signature.h"

#include <openssl/evp.h>
#include <openssl/rsa.h>
#include <openssl/x509.h>
#include <openssl/x509v3.h>

#include <array>

namespace {

constexpr char kSha256[] = "2.16.840.1.101.3.4.2.1";
constexpr char kSha384[] = "2.16.840.1.101.3.4.2.2";
constexpr char kKeyIdentifier[] = "the key of the tests";
const std::string kVersion1("\x02\x01\x01", 3);
const std::string kNull("\x05\x00", 2);

// The encoded form of something, by a function of libcrypto.
template <typename Value, typename Encode>
std::string Encoded(Value* value, Encode encode) {
  unsigned char* bytes = nullptr;
  const int size = encode(value, &bytes);
  std::string text(reinterpret_cast<const char*>(bytes), static_cast<std::size_t>(size));
  OPENSSL_free(bytes);
  return text;
}

std::string ObjectId(const char* dottedNumbers) {
  ASN1_OBJECT* const object = OBJ_txt2obj(dottedNumbers, 0);
  std::string bytes = Encoded(object, i2d_ASN1_OBJECT);
  ASN1_OBJECT_free(object);
  return bytes;
}

std::string Algorithm(const char* name) {
  return Der(kDerSequence, ObjectId(name) + kNull);
}

void SetCommonName(X509_NAME* name, const char* text) {
  X509_NAME_add_entry_by_txt(name, "CN", MBSTRING_ASC, reinterpret_cast<const unsigned char*>(text), -1, -1, 0);
}

struct Identity {
  Identity() {
    X509_set_version(certificate, X509_VERSION_3);
    ASN1_INTEGER_set(X509_get_serialNumber(certificate), 7);
    X509_NAME* const name = X509_get_subject_name(certificate);
    SetCommonName(name, "Tester");
    X509_set_issuer_name(certificate, name);
    X509_gmtime_adj(X509_getm_notBefore(certificate), 0);
    X509_gmtime_adj(X509_getm_notAfter(certificate), 60);
    X509_set_pubkey(certificate, key);
    ASN1_OCTET_STRING* const identifier = ASN1_OCTET_STRING_new();
    ASN1_STRING_set(identifier, kKeyIdentifier, -1);
    X509_add1_ext_i2d(certificate, NID_subject_key_identifier, identifier, 0, 0);
    ASN1_OCTET_STRING_free(identifier);
    X509_sign(certificate, key, EVP_sha256());
    certificates = OtherCertificate(true, 8) + OtherCertificate(false, 7) + Encoded(certificate, i2d_X509);
  }

  std::string OtherCertificate(bool hasSameIssuer, long serialNumber) const {
    X509* const other = X509_dup(certificate);
    X509_NAME* const name = X509_NAME_new();
    SetCommonName(name, "Other");
    X509_set_subject_name(other, name);
    if (!hasSameIssuer) {
      X509_set_issuer_name(other, name);
    }
    X509_NAME_free(name);
    ASN1_INTEGER_set(X509_get_serialNumber(other), serialNumber);
    X509_EXTENSION_free(X509_delete_ext(other, 0));
    X509_sign(other, key, EVP_sha256());
    std::string bytes = Encoded(other, i2d_X509);
    X509_free(other);
    return bytes;
  }

  // Weak on purpose: old signatures are to be read on systems that refuse such keys elsewhere.
  EVP_PKEY* key = EVP_RSA_gen(1024);
  X509* certificate = X509_new();
  std::string certificates;  // two others before it, of the same issuer and with the same serial number
};

const Identity& Tester() {
  static const Identity identity;
  return identity;
}

bool IsPss(SignerForm form) {
  return form == SignerForm::Pss || form == SignerForm::PssOtherDigest || form == SignerForm::PssUnknownMask;
}

std::string Sign(const std::string& digest, SignerForm form) {
  EVP_PKEY_CTX* const context = EVP_PKEY_CTX_new(Tester().key, nullptr);
  EVP_PKEY_sign_init(context);
  if (IsPss(form)) {
    EVP_PKEY_CTX_set_rsa_padding(context, RSA_PKCS1_PSS_PADDING);
    EVP_PKEY_CTX_set_rsa_mgf1_md(context, EVP_sha1());
  }
  if (form != SignerForm::BareDigest) {
    EVP_PKEY_CTX_set_signature_md(context, EVP_sha256());
  }
  std::array<unsigned char, 128> signature = {};
  std::size_t size = signature.size();
  EVP_PKEY_sign(context, signature.data(), &size, reinterpret_cast<const unsigned char*>(digest.data()), digest.size());
  EVP_PKEY_CTX_free(context);
  return {signature.begin(), signature.end()};
}

std::string SignatureAlgorithm(SignerForm form) {
  if (!IsPss(form)) {
    return Algorithm("rsaEncryption");
  }
  const char* const digest = form == SignerForm::PssOtherDigest ? kSha384 : kSha256;
  const char* const mask = form == SignerForm::PssUnknownMask ? "1.2.3" : "1.2.840.113549.1.1.8";
  return Der(kDerSequence,
             ObjectId("1.2.840.113549.1.1.10") +
                 Der(kDerSequence, Der(0xA0, Algorithm(digest)) +
                                       Der(0xA1, Der(kDerSequence, ObjectId(mask) + Algorithm("1.3.14.3.2.26")))));
}

// An element, in the form of indefinite length if `form` demands it.
std::string List(SignerForm form, unsigned char tag, const std::string& content) {
  return form == SignerForm::Indefinite ? std::string{static_cast<char>(tag), '\x80'} + content + std::string(2, '\0')
                                        : Der(tag, content);
}

std::string BuildSigner(const std::string& octets, const std::string& moreAttributes, const SignedParts& parts) {
  const std::string attributes = DerAttribute("contentType", ObjectId(parts.contentType)) +
                                 DerAttribute("messageDigest", Der(kDerOctets, DigestBytes(octets, "SHA256"))) +
                                 moreAttributes;
  const std::string signature = Sign(DigestBytes(Der(kDerSet, attributes), "SHA256"), parts.form);
  const std::string issuer = Encoded(X509_get_issuer_name(Tester().certificate), i2d_X509_NAME);
  const std::string serialNumber = Encoded(X509_get_serialNumber(Tester().certificate), i2d_ASN1_INTEGER);
  const bool isIndefinite = parts.form == SignerForm::IndefiniteAttributes;
  return List(parts.form, kDerSequence,
              kVersion1 +
                  (parts.form == SignerForm::ByKeyIdentifier ? Der(0x80, kKeyIdentifier)
                                                             : Der(kDerSequence, issuer + serialNumber)) +
                  Algorithm(kSha256) +
                  List(isIndefinite ? SignerForm::Indefinite : SignerForm::Plain, 0xA0, attributes) +
                  SignatureAlgorithm(parts.form) + Der(kDerOctets, signature) +
                  (parts.unsignedAttributes ? List(parts.form, 0xA1, parts.unsignedAttributes(signature)) : ""));
}

}  // namespace

std::string Der(unsigned char tag, const std::string& content) {
  std::string bytes(1, static_cast<char>(tag));
  if (content.size() < 0x80) {
    return bytes + static_cast<char>(content.size()) + content;
  }
  bytes += static_cast<char>(0x83);
  for (const int shift : {16, 8, 0}) {
    bytes += static_cast<char>(content.size() >> shift);
  }
  return bytes + content;
}

std::string DerAttribute(const char* type, const std::string& value) {
  return Der(kDerSequence, ObjectId(type) + Der(kDerSet, value));
}

std::string DigestBytes(const std::string& bytes, const char* algorithm) {
  std::array<unsigned char, EVP_MAX_MD_SIZE> digest = {};
  std::size_t size = 0;
  EVP_Q_digest(nullptr, algorithm, nullptr, bytes.data(), bytes.size(), digest.data(), &size);
  return {digest.begin(), digest.begin() + size};
}

std::string IndirectData(const char* algorithm, const std::string& digest) {
  return Der(kDerSequence, Der(kDerSequence, ObjectId("1.3.6.1.4.1.311.2.1.25")) +
                               Der(kDerSequence, Algorithm(algorithm) + Der(kDerOctets, digest)));
}

std::string TrustList(unsigned version, const std::string& members) {
  return Der(kDerSequence, Der(kDerSequence, ObjectId("1.3.6.1.4.1.311.12.1.1")) +
                               Der(kDerOctets, std::string(16, 'i')) + Der(0x17, "140213120000Z") +
                               Algorithm(version == 1 ? "1.3.6.1.4.1.311.12.1.2" : "1.3.6.1.4.1.311.12.1.3") +
                               Der(kDerSequence, members));
}

std::string BuildSignedData(const SignedParts& parts) {
  const std::size_t headerSize = Der(kDerSequence, "").size() + (parts.content.size() < 0x82 ? 0 : 3);
  const auto list = [&parts](unsigned char tag, const std::string& content) { return List(parts.form, tag, content); };
  const std::string octets = parts.content.substr(headerSize);
  const auto tag = static_cast<unsigned char>(parts.content[0]);
  constexpr unsigned char kConstructed = 0x20;
  const std::string content = parts.form != SignerForm::Indefinite
                                  ? parts.content
                                  : list(tag | kConstructed, tag == kDerOctets ? parts.content : octets);
  std::string signers;
  for (unsigned i = 0; i < parts.signerCount; ++i) {
    signers += BuildSigner(octets, "", parts);
  }
  const std::string certificates = parts.hasCertificate ? list(0xA0, Tester().certificates) : std::string();
  return list(
      kDerSequence,
      ObjectId("1.2.840.113549.1.7.2") +
          list(0xA0, list(kDerSequence, kVersion1 + list(kDerSet, Algorithm(kSha256)) +
                                            list(kDerSequence, ObjectId(parts.contentType) + list(0xA0, content)) +
                                            certificates + list(kDerSet, signers))));
}

std::string CounterSignature(const std::string& signature, SignerForm form, bool hasTime) {
  const std::string time = hasTime ? DerAttribute("signingTime", Der(0x17, "140213120000Z")) : "";
  return DerAttribute("1.2.840.113549.1.9.6",
                      BuildSigner(signature, time, {"1.2.840.113549.1.7.1", "", 1, true, nullptr, form}));
}

std::string TimestampToken(const std::string& signature, SignerForm form) {
  const std::string imprint = Der(kDerSequence, Algorithm(kSha256) + Der(kDerOctets, DigestBytes(signature, "SHA256")));
  const std::string info =
      Der(kDerSequence, kVersion1 + ObjectId("1.2.3") + imprint + kVersion1 + Der(0x18, "20140213120000Z"));
  return DerAttribute("1.3.6.1.4.1.311.3.3.1",
                      BuildSignedData({"1.2.840.113549.1.9.16.1.4", Der(kDerOctets, info), 1, true, nullptr, form}));
}
