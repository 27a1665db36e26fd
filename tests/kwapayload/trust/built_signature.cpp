#include "trust/built_signature.h"

#include <openssl/evp.h>
#include <openssl/rsa.h>
#include <openssl/x509.h>

#include <array>

namespace {

constexpr char kSha256[] = "2.16.840.1.101.3.4.2.1";
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

struct Identity {
  Identity() {
    X509_set_version(certificate, X509_VERSION_3);
    ASN1_INTEGER_set(X509_get_serialNumber(certificate), 7);
    X509_NAME* const name = X509_get_subject_name(certificate);
    X509_NAME_add_entry_by_txt(name, "CN", MBSTRING_ASC, reinterpret_cast<const unsigned char*>("Tester"), -1, -1, 0);
    X509_set_issuer_name(certificate, name);
    X509_gmtime_adj(X509_getm_notBefore(certificate), 0);
    X509_gmtime_adj(X509_getm_notAfter(certificate), 60);
    X509_set_pubkey(certificate, key);
    X509_sign(certificate, key, EVP_sha256());
  }
  // Weak on purpose: old signatures are to be read on systems that refuse such keys elsewhere.
  EVP_PKEY* key = EVP_RSA_gen(1024);
  X509* certificate = X509_new();
};

const Identity& Tester() {
  static const Identity identity;
  return identity;
}

std::string Sign(const std::string& digest, bool isBare) {
  EVP_PKEY_CTX* const context = EVP_PKEY_CTX_new(Tester().key, nullptr);
  EVP_PKEY_sign_init(context);
  if (!isBare) {
    EVP_PKEY_CTX_set_signature_md(context, EVP_sha256());
  }
  std::array<unsigned char, 128> signature = {};
  std::size_t size = signature.size();
  EVP_PKEY_sign(context, signature.data(), &size, reinterpret_cast<const unsigned char*>(digest.data()), digest.size());
  EVP_PKEY_CTX_free(context);
  return {signature.begin(), signature.end()};
}

std::string BuildSigner(const std::string& octets, const std::string& moreAttributes, bool isBare,
                        const SignedParts& parts) {
  const std::string attributes = DerAttribute("contentType", ObjectId(parts.contentType)) +
                                 DerAttribute("messageDigest", Der(kDerOctets, DigestBytes(octets, "SHA256"))) +
                                 moreAttributes;
  const std::string signature = Sign(DigestBytes(Der(kDerSet, attributes), "SHA256"), isBare);
  const std::string added = parts.unsignedAttributes ? Der(0xA1, parts.unsignedAttributes(signature)) : "";
  const std::string issuer = Encoded(X509_get_issuer_name(Tester().certificate), i2d_X509_NAME);
  const std::string serialNumber = Encoded(X509_get_serialNumber(Tester().certificate), i2d_ASN1_INTEGER);
  return Der(kDerSequence, kVersion1 + Der(kDerSequence, issuer + serialNumber) + Algorithm(kSha256) +
                               Der(0xA0, attributes) + Algorithm("rsaEncryption") + Der(kDerOctets, signature) + added);
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
  std::string signers;
  for (unsigned i = 0; i < parts.signerCount; ++i) {
    signers += BuildSigner(parts.content.substr(headerSize), "", false, parts);
  }
  const std::string certificates =
      parts.hasCertificate ? Der(0xA0, Encoded(Tester().certificate, i2d_X509)) : std::string();
  return Der(
      kDerSequence,
      ObjectId("1.2.840.113549.1.7.2") +
          Der(0xA0, Der(kDerSequence, kVersion1 + Der(kDerSet, Algorithm(kSha256)) +
                                          Der(kDerSequence, ObjectId(parts.contentType) + Der(0xA0, parts.content)) +
                                          certificates + Der(kDerSet, signers))));
}

std::string CounterSignature(const std::string& signature, bool isBare) {
  SignedParts parts = {};
  parts.contentType = "1.2.840.113549.1.7.1";
  return DerAttribute("1.2.840.113549.1.9.6",
                      BuildSigner(signature, DerAttribute("signingTime", Der(0x17, "140213120000Z")), isBare, parts));
}

std::string TimestampToken(const std::string& signature) {
  const std::string imprint = Der(kDerSequence, Algorithm(kSha256) + Der(kDerOctets, DigestBytes(signature, "SHA256")));
  const std::string info =
      Der(kDerSequence, kVersion1 + ObjectId("1.2.3") + imprint + kVersion1 + Der(0x18, "20140213120000Z"));
  return DerAttribute("1.3.6.1.4.1.311.3.3.1", BuildSignedData({"1.2.840.113549.1.9.16.1.4", Der(kDerOctets, info)}));
}
