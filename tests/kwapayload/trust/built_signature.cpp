#include "trust/built_signature.h"

#include <openssl/cms.h>
#include <openssl/rsa.h>

#include <memory>

#include "built_archive.h"
#include "pe/built_image.h"
#include "trust/asn1.h"
#include "trust/digest.h"

namespace {

constexpr char kSha256[] = "2.16.840.1.101.3.4.2.1";
const std::string kVersion1 = Der(V_ASN1_INTEGER, "\1");

const kwa::Signer& SampleSigner() {
  static const kwa::Signer signer = kwa::ReadSigner(KWA_SIGNER);
  return signer;
}

// The sample's certificate with other fields. Only that of the signer has a key identifier.
std::shared_ptr<X509> Certificate(bool isSigner, const char* issuer, long serialNumber) {
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

void AddSigner(CMS_ContentInfo* message, SignerForm form, unsigned flags) {
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

void AddUnsignedAttributes(CMS_SignerInfo* signer, const Attributes& make) {
  const std::string attributes = make(kwa::TextOf(CMS_SignerInfo_get0_signature(signer)));
  const auto* at = reinterpret_cast<const unsigned char*>(attributes.data());
  for (const unsigned char* const end = at + attributes.size(); at != end;) {
    const std::shared_ptr<X509_ATTRIBUTE> attribute(d2i_X509_ATTRIBUTE(nullptr, &at, end - at), X509_ATTRIBUTE_free);
    CMS_unsigned_add1_attr(signer, attribute.get());
  }
}

}  // namespace

std::string DigestBytes(const std::string& bytes, const char* algorithm) {
  return kwa::DigestOf(kwa::ByteSpan(bytes), algorithm);
}

std::string IndirectData(const char* algorithm, const std::string& digest) {
  return Der(kDerSequence,
             Der(kDerSequence, kwa::DerObjectId("1.3.6.1.4.1.311.2.1.25")) +
                 Der(kDerSequence, Der(kDerSequence, kwa::DerObjectId(algorithm)) + Der(kDerOctets, digest)));
}

std::string TrustList(unsigned version, const std::string& members) {
  const char* const memberVersion = version == 1 ? "1.3.6.1.4.1.311.12.1.2" : "1.3.6.1.4.1.311.12.1.3";
  return Der(kDerSequence, Der(kDerSequence, kwa::DerObjectId("1.3.6.1.4.1.311.12.1.1")) +
                               Der(kDerOctets, std::string(16, 'i')) + Der(V_ASN1_UTCTIME, kwa::kSigningTime) +
                               Der(kDerSequence, kwa::DerObjectId(memberVersion)) + Der(kDerSequence, members));
}

std::string Member(const std::string& tag, const std::string& attributes) {
  return Der(kDerSequence, Der(kDerOctets, tag) + (attributes.empty() ? "" : Der(kDerSet, attributes)));
}

std::string NameValue(const std::string& name, const std::string& value, const std::string& more) {
  std::string bigEndian = '\0' + Utf16(name);
  bigEndian.pop_back();
  return DerAttribute("1.3.6.1.4.1.311.12.2.1", Der(kDerSequence, Der(V_ASN1_BMPSTRING, bigEndian) + kVersion1 +
                                                                      Der(kDerOctets, Utf16(value)) + more));
}

std::string CatalogOf(const std::vector<std::string>& files, unsigned signerCount, const Attributes& timestamp) {
  std::string members;
  for (const std::string& file : files) {
    members += Member(DigestBytes(file, "SHA256"));
  }
  return BuildSignedData({kTrustListType, TrustList(2, members), signerCount, true, timestamp});
}

std::string BuildSignedData(const SignedParts& parts) {
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

std::string CounterSignature(const std::string& signature, SignerForm form) {
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

std::string TimestampToken(const std::string& signature) {
  const std::string imprint = Der(
      kDerSequence, Der(kDerSequence, kwa::DerObjectId(kSha256)) + Der(kDerOctets, DigestBytes(signature, "SHA256")));
  const std::string time = Der(V_ASN1_GENERALIZEDTIME, std::string("20") + kwa::kSigningTime);
  const std::string info = Der(kDerSequence, kVersion1 + kwa::DerObjectId("1.2.3") + imprint + kVersion1 + time);
  return DerAttribute("1.3.6.1.4.1.311.3.3.1", BuildSignedData({"1.2.840.113549.1.9.16.1.4", info}));
}

Attributes Nested(const std::string& message) {
  return [message](const std::string&) { return DerAttribute("1.3.6.1.4.1.311.2.4.1", message); };
}

std::string Indefinite(const std::string& element, int depth) {
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

std::string Program(std::size_t bytesOfCode, std::size_t directoryCount) {
  BuiltImage built;
  built.sections = {{".text", kCode, std::string(bytesOfCode, '\x90')}};
  built.directories.resize(directoryCount);
  return BuildImage(built);
}

std::string WithTable(std::string program, const std::string& signature) {
  program.resize((program.size() + 7) / 8 * 8);
  std::string table = WordBytes(static_cast<std::uint32_t>(8 + signature.size())) + WordBytes(0x00020200) + signature;
  table.resize((table.size() + 7) / 8 * 8);
  PutWord(program, kSecurityEntry, static_cast<std::uint32_t>(program.size()));
  PutWord(program, kSecurityEntry + 4, static_cast<std::uint32_t>(table.size()));
  return program + table;
}
