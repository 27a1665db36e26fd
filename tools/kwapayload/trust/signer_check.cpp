#include "trust/signer_check.h"

#include <openssl/bn.h>
#include <openssl/core_names.h>
#include <openssl/err.h>
#include <openssl/evp.h>
#include <openssl/rsa.h>
#include <openssl/x509.h>
#include <openssl/x509v3.h>

#include <algorithm>
#include <array>
#include <cstdint>
#include <memory>

#include "trust/asn1.h"
#include "trust/digest.h"

namespace kwa {
namespace {

constexpr std::size_t kMaxCertificates = 32;
constexpr std::size_t kMaxCertificateSize = 16 * 1024;

constexpr char kMessageDigest[] = "1.2.840.113549.1.9.4";

bool BelongsTo(const X509* certificate, const SignerInfo& signer) {
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
  if (size < 0) {
    return "";
  }
  const std::string name(utf8, utf8 + size);
  OPENSSL_free(utf8);
  return name;
}

std::string CertificateDigest(const X509* certificate) {
  std::array<unsigned char, EVP_MAX_MD_SIZE> digest = {};
  unsigned size = 0;
  X509_digest(certificate, EVP_sha256(), digest.data(), &size);
  return Hex(std::string(digest.begin(), digest.begin() + size));
}

// Whether a check with the key takes long: keys of more than 8192 bits, or an RSA exponent of more than 32.
// Certificates have 4096 bits at most and the exponent 65537.
bool IsSlow(const EVP_PKEY* key) {
  BIGNUM* exponent = nullptr;
  const bool isSlow = EVP_PKEY_get_bn_param(key, OSSL_PKEY_PARAM_RSA_E, &exponent) == 1 && BN_num_bits(exponent) > 32;
  BN_free(exponent);
  return isSlow || EVP_PKEY_get_bits(key) > 8192;
}

// isBare  whether the digest alone was signed, without its algorithm
Check CheckWithKey(EVP_PKEY* key, const SignerInfo& signer, ByteSpan digest, bool isBare) {
  const std::shared_ptr<EVP_PKEY_CTX> context(EVP_PKEY_CTX_new(key, nullptr), EVP_PKEY_CTX_free);
  const EVP_MD* const algorithm = EVP_get_digestbyname(signer.digestAlgorithm.c_str());
  bool isReady = context && EVP_PKEY_verify_init(context.get()) == 1;
  if (signer.pss) {
    const EVP_MD* const maskAlgorithm = EVP_get_digestbyname(signer.pss->maskDigestAlgorithm.c_str());
    isReady = isReady && EVP_PKEY_CTX_set_rsa_padding(context.get(), RSA_PKCS1_PSS_PADDING) == 1 &&
              EVP_PKEY_CTX_set_rsa_pss_saltlen(context.get(), RSA_PSS_SALTLEN_AUTO) == 1 &&
              EVP_PKEY_CTX_set_rsa_mgf1_md(context.get(), maskAlgorithm) == 1;
  }
  isReady = isReady && (isBare || EVP_PKEY_CTX_set_signature_md(context.get(), algorithm) == 1);
  if (!isReady) {
    return Failure("is made with a kind of key that is not known here");
  }
  const ByteSpan signature(signer.signature);
  if (EVP_PKEY_verify(context.get(), signature.Data(), signature.Size(), digest.Data(), digest.Size()) != 1) {
    return Failure("does not fit the signer's certificate");
  }
  return {};
}

Check CheckAlgorithms(const SignerInfo& signer) {
  const PssParameters pss = signer.pss.value_or(PssParameters{signer.digestAlgorithm, signer.digestAlgorithm});
  for (const std::string& algorithm : {signer.digestAlgorithm, pss.digestAlgorithm, pss.maskDigestAlgorithm}) {
    if (DigestOf({}, algorithm).empty()) {
      return Failure(UnknownAlgorithmText(algorithm));
    }
  }
  if (pss.digestAlgorithm != signer.digestAlgorithm) {
    return Failure("names two algorithms for one digest: " + signer.digestAlgorithm + " and " + pss.digestAlgorithm);
  }
  return {};
}

Check CheckSignature(const SignerInfo& signer, ByteSpan content, const X509* certificate, SignerKind kind) {
  if (Check check = CheckAlgorithms(signer); !check) {
    return check;
  }
  std::string digest = DigestOf(content, signer.digestAlgorithm);
  const ByteSpan attributes(signer.signedAttributes);
  constexpr std::uint8_t kIndefiniteLength = 0x80;
  if (attributes.U8(1) == kIndefiniteLength) {
    // Their DER form is signed.
    return Failure("has signed attributes of indefinite length, which are not known here");
  }
  if (!attributes.Empty()) {
    const auto stated =
        Decoded<ASN1_OCTET_STRING>(AttributeValue(attributes, kMessageDigest), ASN1_ITEM_rptr(ASN1_OCTET_STRING));
    if (BytesOf(stated.get()).Text() != digest) {
      return Failure("does not fit what it signs");
    }
    digest = DigestOf(attributes, signer.digestAlgorithm);
  }
  if (certificate == nullptr) {
    return Failure("comes without the signer's certificate");
  }
  EVP_PKEY* const key = X509_get0_pubkey(certificate);
  if (key == nullptr || IsSlow(key)) {
    return Failure("is made with a kind of key that is not known here");
  }
  Check check = CheckWithKey(key, signer, ByteSpan(digest), false);
  if (!check && kind == SignerKind::CounterSigner && !signer.pss && CheckWithKey(key, signer, ByteSpan(digest), true)) {
    return {};
  }
  return check;
}

}  // namespace

Certificates ReadCertificates(const std::string& encodedList) {
  Certificates certificates;
  ForEachElement(ByteSpan(encodedList), [&certificates](const Asn1Element& element) {
    const bool isSmall = element.whole.Size() <= kMaxCertificateSize;
    certificates.push_back(isSmall ? Decoded<X509>(element.whole, ASN1_ITEM_rptr(X509)) : nullptr);
    return certificates.size() < kMaxCertificates;
  });
  return certificates;
}

SignerCheck CheckSigner(const SignerInfo& signer, ByteSpan content, const Certificates& certificates, SignerKind kind) {
  const auto found = std::find_if(certificates.begin(), certificates.end(), [&signer](const auto& certificate) {
    return certificate && BelongsTo(certificate.get(), signer);
  });
  const X509* const certificate = found == certificates.end() ? nullptr : found->get();
  SignerCheck result = {certificate != nullptr ? CommonName(certificate) : "",
                        CheckSignature(signer, content, certificate, kind),
                        certificate != nullptr ? CertificateDigest(certificate) : ""};
  ERR_clear_error();
  return result;
}

std::string UnknownAlgorithmText(const std::string& algorithm) {
  return "is made with the algorithm " + algorithm + ", which is not known here";
}

}  // namespace kwa
