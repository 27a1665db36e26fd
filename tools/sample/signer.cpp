#include "signer.h"

#include <openssl/pem.h>
#include <openssl/pkcs7.h>

#include <stdexcept>

#include "base/byte_span.h"
#include "der.h"
#include "trust/digest.h"

namespace kwa {
namespace {

using namespace std::string_literals;

ASN1_STRING* StringOf(int type, const std::string& bytes) {
  ASN1_STRING* const string = ASN1_STRING_type_new(type);
  Require(string != nullptr && ASN1_STRING_set(string, bytes.data(), static_cast<int>(bytes.size())) == 1);
  return string;
}

}  // namespace

Signer ReadSigner(const std::filesystem::path& path) {
  const std::shared_ptr<BIO> file(BIO_new_file(path.c_str(), "rb"), BIO_free);
  if (file == nullptr) {
    throw std::runtime_error(path.string() + ": cannot be read");
  }
  Signer signer = {{PEM_read_bio_PrivateKey(file.get(), nullptr, nullptr, nullptr), EVP_PKEY_free},
                   {PEM_read_bio_X509(file.get(), nullptr, nullptr, nullptr), X509_free}};
  if (signer.key == nullptr || signer.certificate == nullptr ||
      X509_check_private_key(signer.certificate.get(), signer.key.get()) != 1) {
    throw std::runtime_error(path.string() + ": does not hold a private key and its certificate");
  }
  return signer;
}

std::string SignedMessage(const Signer& signer, const char* contentType, const std::string& sequence) {
  const std::shared_ptr<PKCS7> message(PKCS7_new(), PKCS7_free);
  Require(PKCS7_set_type(message.get(), NID_pkcs7_signed) == 1);
  PKCS7* const inner = PKCS7_new();
  Require(PKCS7_set_content(message.get(), inner) == 1);
  inner->type = ObjectId(contentType);
  inner->d.other = ASN1_TYPE_new();
  Require(inner->d.other != nullptr);
  ASN1_TYPE_set(inner->d.other, V_ASN1_SEQUENCE, StringOf(V_ASN1_SEQUENCE, Der(kDerSequence, sequence)));

  Require(PKCS7_add_certificate(message.get(), signer.certificate.get()) == 1);
  PKCS7_SIGNER_INFO* const info =
      PKCS7_add_signature(message.get(), signer.certificate.get(), signer.key.get(), EVP_sha256());
  Require(info != nullptr);
  // The digest does not cover the tag and the length of the sequence.
  const std::string digest = DigestOf(ByteSpan(sequence), "SHA256");
  Require(PKCS7_add_attrib_content_type(info, ObjectId(contentType)) == 1 &&
          PKCS7_add0_attrib_signing_time(info, StringOf(V_ASN1_UTCTIME, kSigningTime)) == 1 &&
          PKCS7_add1_attrib_digest(info, reinterpret_cast<const unsigned char*>(digest.data()),
                                   static_cast<int>(digest.size())) == 1 &&
          PKCS7_SIGNER_INFO_sign(info) == 1);
  unsigned char* bytes = nullptr;
  const int size = i2d_PKCS7(message.get(), &bytes);
  Require(size > 0);
  const std::string encoded(bytes, bytes + size);
  OPENSSL_free(bytes);
  return encoded;
}

std::string IndirectDataContent(DigestKind kind, const std::string& digest) {
  const bool isImage = kind == DigestKind::ProgramImage;
  // Both kinds name the file by an empty text. For a program, flags come before it, and none is set.
  const std::string link = "\xA2\x02\x80\x00"s;
  const std::string image = Der(kDerSequence, "\x03\x01\x00"s + Der(kDerExplicit0, link));
  const std::string type = DerObjectId(isImage ? "1.3.6.1.4.1.311.2.1.15" : "1.3.6.1.4.1.311.2.1.25");
  const std::string algorithm = DerObjectId("2.16.840.1.101.3.4.2.1") + Der(V_ASN1_NULL, "");
  return Der(kDerSequence, type + (isImage ? image : link)) +
         Der(kDerSequence, Der(kDerSequence, algorithm) + Der(V_ASN1_OCTET_STRING, digest));
}

}  // namespace kwa
