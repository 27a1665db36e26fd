#include "signer.h"

#include <openssl/asn1t.h>
#include <openssl/pem.h>
#include <openssl/pkcs7.h>

#include "files/tool_failure.h"
#include "der.h"
#include "trust/digest.h"

namespace kwa {
namespace {

constexpr char kSigningTime[] = "140213120000Z";

struct SpcIndirectData {
  X509_ALGOR* what;  // an identifier and a value that fits it, as in an algorithm
  X509_SIG* digest;  // algorithm and digest
};

ASN1_SEQUENCE(SpcIndirectData) = {
    ASN1_SIMPLE(SpcIndirectData, what, X509_ALGOR),
    ASN1_SIMPLE(SpcIndirectData, digest, X509_SIG),
} static_ASN1_SEQUENCE_END(SpcIndirectData);

}  // namespace

Signer ReadSigner(const std::filesystem::path& path) {
  const std::shared_ptr<BIO> file(BIO_new_file(path.c_str(), "rb"), BIO_free);
  if (file == nullptr) throw ToolFailure(path, "cannot be read");
  Signer signer = {{PEM_read_bio_PrivateKey(file.get(), nullptr, nullptr, nullptr), EVP_PKEY_free},
                   {PEM_read_bio_X509(file.get(), nullptr, nullptr, nullptr), X509_free}};
  if (signer.key == nullptr || signer.certificate == nullptr ||
      X509_check_private_key(signer.certificate.get(), signer.key.get()) != 1) {
    throw ToolFailure(path, "does not hold a private key and its certificate");
  }
  return signer;
}

std::string SignedData(const Signer& signer, const char* contentType, const std::string& content) {
  const std::shared_ptr<PKCS7> message(PKCS7_new(), PKCS7_free);
  Require(PKCS7_set_type(message.get(), NID_pkcs7_signed) == 1);
  PKCS7* const inner = PKCS7_new();
  Require(PKCS7_set_content(message.get(), inner) == 1);
  inner->type = ObjectId(contentType);
  inner->d.other = ASN1_TYPE_new();
  Require(inner->d.other != nullptr);
  ASN1_TYPE_set(inner->d.other, V_ASN1_SEQUENCE, StringOf(V_ASN1_SEQUENCE, content));

  Require(PKCS7_add_certificate(message.get(), signer.certificate.get()) == 1);
  PKCS7_SIGNER_INFO* const info =
      PKCS7_add_signature(message.get(), signer.certificate.get(), signer.key.get(), EVP_sha256());
  Require(info != nullptr);
  // What is digested lacks the sequence's own tag and length.
  const auto* octets = reinterpret_cast<const unsigned char*>(content.data());
  long octetCount = 0;
  int tag = 0;
  int tagClass = 0;
  ASN1_get_object(&octets, &octetCount, &tag, &tagClass, static_cast<long>(content.size()));
  const std::string digest =
      DigestOf(ByteSpan(content).From(content.size() - static_cast<std::size_t>(octetCount)), "SHA256");
  Require(PKCS7_add_attrib_content_type(info, ObjectId(contentType)) == 1 &&
          PKCS7_add0_attrib_signing_time(info, StringOf(V_ASN1_UTCTIME, kSigningTime)) == 1 &&
          PKCS7_add1_attrib_digest(info, reinterpret_cast<const unsigned char*>(digest.data()),
                                   static_cast<int>(digest.size())) == 1 &&
          PKCS7_SIGNER_INFO_sign(info) == 1);
  return Der(message.get(), ASN1_ITEM_rptr(PKCS7));
}

std::string IndirectData(DigestKind kind, const std::string& digest) {
  const std::shared_ptr<SpcIndirectData> data(
      reinterpret_cast<SpcIndirectData*>(ASN1_item_new(ASN1_ITEM_rptr(SpcIndirectData))), [](SpcIndirectData* owned) {
        ASN1_item_free(reinterpret_cast<ASN1_VALUE*>(owned), ASN1_ITEM_rptr(SpcIndirectData));
      });
  Require(data != nullptr);
  // Both name the file by an empty text: in a program behind flags, none of them set.
  const std::string link("\xA2\x02\x80\x00", 4);
  const std::string image = std::string("\x30\x09\x03\x01\x00\xA0\x04", 7) + link;
  const bool isImage = kind == DigestKind::ProgramImage;
  X509_ALGOR_set0(data->what, ObjectId(isImage ? "1.3.6.1.4.1.311.2.1.15" : "1.3.6.1.4.1.311.2.1.25"),
                  isImage ? V_ASN1_SEQUENCE : V_ASN1_OTHER,
                  isImage ? StringOf(V_ASN1_SEQUENCE, image) : StringOf(V_ASN1_OTHER, link));
  X509_ALGOR* algorithm = nullptr;
  ASN1_OCTET_STRING* octets = nullptr;
  X509_SIG_getm(data->digest, &algorithm, &octets);
  X509_ALGOR_set0(algorithm, OBJ_nid2obj(NID_sha256), V_ASN1_NULL, nullptr);
  Require(ASN1_STRING_set(octets, digest.data(), static_cast<int>(digest.size())) == 1);
  return Der(data.get(), ASN1_ITEM_rptr(SpcIndirectData));
}

}  // namespace kwa
