#include "trust/signer_check.h"

#include <openssl/err.h>
#include <openssl/evp.h>
#include <openssl/rsa.h>
#include <openssl/x509.h>
#include <openssl/x509v3.h>

#include <algorithm>
#include <memory>

#include "report/escaped_text.h"
#include "trust/asn1_value.h"
#include "trust/digest.h"

namespace kwa {
namespace {

constexpr std::size_t kMaxCertificates = 64;
constexpr std::size_t kMaxCertificateSize = 16 * 1024;
constexpr std::size_t kMaxNameSize = 128;  // twice what the standard allows

constexpr char kMessageDigest[] = "1.2.840.113549.1.9.4";

struct Free {
  void operator()(X509* certificate) const { X509_free(certificate); }
  void operator()(EVP_PKEY_CTX* context) const { EVP_PKEY_CTX_free(context); }
  void operator()(unsigned char* text) const { OPENSSL_free(text); }
};
template <typename T>
using Owned = std::unique_ptr<T, Free>;

bool IsOf(const X509* certificate, const SignerInfo& signer) {
  if (!signer.keyIdentifier.empty()) {
    return TextOf(X509_get0_subject_key_id(const_cast<X509*>(certificate))) == signer.keyIdentifier;
  }
  const unsigned char* name = nullptr;
  std::size_t nameSize = 0;
  return X509_NAME_get0_der(X509_get_issuer_name(certificate), &name, &nameSize) == 1 &&
         ByteSpan(name, nameSize).Text() == signer.issuer &&
         TextOf(X509_get0_serialNumber(certificate)) == signer.serialNumber;
}

std::string CommonName(const X509* certificate) {
  const X509_NAME* const subject = X509_get_subject_name(certificate);
  const int index = X509_NAME_get_index_by_NID(subject, NID_commonName, -1);
  if (index < 0) {
    return "";
  }
  unsigned char* utf8 = nullptr;
  const int size = ASN1_STRING_to_UTF8(&utf8, X509_NAME_ENTRY_get_data(X509_NAME_get_entry(subject, index)));
  const Owned<unsigned char> owner(utf8);
  return size < 0 ? "" : EscapedText(ByteSpan(utf8, std::min(static_cast<std::size_t>(size), kMaxNameSize)).Text());
}

// isBare  whether the digest alone was signed, without its algorithm
bool FitsKey(EVP_PKEY* key, const SignerInfo& signer, ByteSpan digest, bool isBare) {
  const Owned<EVP_PKEY_CTX> context(EVP_PKEY_CTX_new(key, nullptr));
  if (!context || EVP_PKEY_verify_init(context.get()) != 1) {
    return false;
  }
  const EVP_MD* const algorithm = EVP_get_digestbyname(signer.digestAlgorithm.c_str());
  if (signer.isPss && (EVP_PKEY_CTX_set_rsa_padding(context.get(), RSA_PKCS1_PSS_PADDING) != 1 ||
                       EVP_PKEY_CTX_set_rsa_pss_saltlen(context.get(), RSA_PSS_SALTLEN_AUTO) != 1)) {
    return false;
  }
  if (!isBare && EVP_PKEY_CTX_set_signature_md(context.get(), algorithm) != 1) {
    return false;
  }
  const ByteSpan signature(signer.signature);
  return EVP_PKEY_verify(context.get(), signature.Data(), signature.Size(), digest.Data(), digest.Size()) == 1;
}

std::string SignerFault(const SignerInfo& signer, ByteSpan content, const X509* certificate, SignerKind kind) {
  std::string digest = DigestOf(content, signer.digestAlgorithm);
  if (digest.empty()) {
    return "is made with the algorithm " + signer.digestAlgorithm + ", which is not known here";
  }
  const ByteSpan attributes(signer.signedAttributes);
  if (!attributes.Empty()) {
    const Asn1Value<ASN1_OCTET_STRING> stated(AttributeValue(attributes, kMessageDigest),
                                              ASN1_ITEM_rptr(ASN1_OCTET_STRING));
    if (BytesOf(stated.Get()).Text() != digest) {
      return "does not fit what it signs";
    }
    digest = DigestOf(attributes, signer.digestAlgorithm);
  }
  if (certificate == nullptr) {
    return "comes without the signer's certificate";
  }
  EVP_PKEY* const key = X509_get0_pubkey(certificate);
  const bool mayBeBare = kind == SignerKind::CounterSigner && !signer.isPss;
  if (key == nullptr || (!FitsKey(key, signer, ByteSpan(digest), false) &&
                         !(mayBeBare && FitsKey(key, signer, ByteSpan(digest), true)))) {
    return "does not fit the signer's certificate";
  }
  return "";
}

}  // namespace

struct Certificates::One {
  ByteSpan encoded;
  bool isRead = false;
  Owned<X509> decoded;  // null where it is not read, or no certificate
};

Certificates::Certificates(const std::string& encodedList) {
  std::size_t count = 0;
  ForEachElement(ByteSpan(encodedList), [&](ByteSpan element) {
    if (element.Size() <= kMaxCertificateSize) {
      list.push_back({element, false, nullptr});
    }
    return ++count < kMaxCertificates;
  });
}

Certificates::~Certificates() = default;

const X509* Certificates::Find(const SignerInfo& signer) {
  // Decoding takes a thousand times as long as a look whether it could be the one.
  const std::string& part = signer.keyIdentifier.empty() ? signer.issuer : signer.keyIdentifier;
  for (One& one : list) {
    if (one.encoded.Text().find(part) == std::string_view::npos) {
      continue;
    }
    if (!one.isRead) {
      const unsigned char* at = one.encoded.Data();
      one.decoded.reset(d2i_X509(nullptr, &at, static_cast<long>(one.encoded.Size())));
      one.isRead = true;
    }
    if (one.decoded && IsOf(one.decoded.get(), signer)) {
      return one.decoded.get();
    }
  }
  return nullptr;
}

SignerCheck CheckSigner(const SignerInfo& signer, ByteSpan content, Certificates* certificates, SignerKind kind) {
  const X509* const certificate = certificates->Find(signer);
  SignerCheck check;
  check.name = certificate != nullptr ? CommonName(certificate) : "";
  check.fault = SignerFault(signer, content, certificate, kind);
  ERR_clear_error();
  return check;
}

}  // namespace kwa
