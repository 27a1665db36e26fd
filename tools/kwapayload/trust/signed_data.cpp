#include "trust/signed_data.h"

#include <openssl/rsa.h>

#include <utility>

#include "trust/asn1.h"

namespace kwa {
namespace {

constexpr std::size_t kMaxSize = 64 * 1024 * 1024;
constexpr std::size_t kMaxSigners = 16;

struct ContentInfoFields {
  ASN1_OBJECT* type;
  ASN1_TYPE* content;
};
ASN1_SEQUENCE(ContentInfoFields) = {
    ASN1_SIMPLE(ContentInfoFields, type, ASN1_OBJECT),
    ASN1_EXP_OPT(ContentInfoFields, content, ASN1_ANY, 0),
} static_ASN1_SEQUENCE_END(ContentInfoFields);

struct SignedDataFields {
  ASN1_INTEGER* version;
  ASN1_TYPE* digestAlgorithms;
  ContentInfoFields* contentInfo;
  ASN1_STRING* certificates;
  ASN1_STRING* revocationLists;
  ASN1_TYPE* signers;
};
ASN1_SEQUENCE(SignedDataFields) = {
    ASN1_SIMPLE(SignedDataFields, version, ASN1_INTEGER),
    ASN1_SIMPLE(SignedDataFields, digestAlgorithms, ASN1_ANY),
    ASN1_SIMPLE(SignedDataFields, contentInfo, ContentInfoFields),
    ASN1_IMP_OPT(SignedDataFields, certificates, ASN1_SEQUENCE, 0),
    ASN1_IMP_OPT(SignedDataFields, revocationLists, ASN1_SEQUENCE, 1),
    ASN1_SIMPLE(SignedDataFields, signers, ASN1_ANY),
} static_ASN1_SEQUENCE_END(SignedDataFields);

struct IssuerAndNumberFields {
  ASN1_STRING* issuer;
  ASN1_INTEGER* serialNumber;
};
ASN1_SEQUENCE(IssuerAndNumberFields) = {
    ASN1_SIMPLE(IssuerAndNumberFields, issuer, ASN1_SEQUENCE),
    ASN1_SIMPLE(IssuerAndNumberFields, serialNumber, ASN1_INTEGER),
} static_ASN1_SEQUENCE_END(IssuerAndNumberFields);

struct SignerInfoFields {
  ASN1_INTEGER* version;
  IssuerAndNumberFields* issuerAndNumber;
  ASN1_OCTET_STRING* keyIdentifier;
  X509_ALGOR* digestAlgorithm;
  ASN1_STRING* signedAttributes;
  X509_ALGOR* signatureAlgorithm;
  ASN1_OCTET_STRING* signature;
  ASN1_STRING* unsignedAttributes;
};
ASN1_SEQUENCE(SignerInfoFields) = {
    ASN1_SIMPLE(SignerInfoFields, version, ASN1_INTEGER),
    ASN1_OPT(SignerInfoFields, issuerAndNumber, IssuerAndNumberFields),
    ASN1_IMP_OPT(SignerInfoFields, keyIdentifier, ASN1_OCTET_STRING, 0),
    ASN1_SIMPLE(SignerInfoFields, digestAlgorithm, X509_ALGOR),
    ASN1_IMP_OPT(SignerInfoFields, signedAttributes, ASN1_SEQUENCE, 0),
    ASN1_SIMPLE(SignerInfoFields, signatureAlgorithm, X509_ALGOR),
    ASN1_SIMPLE(SignerInfoFields, signature, ASN1_OCTET_STRING),
    ASN1_IMP_OPT(SignerInfoFields, unsignedAttributes, ASN1_SEQUENCE, 1),
} static_ASN1_SEQUENCE_END(SignerInfoFields);

struct IndirectDataFields {
  ASN1_TYPE* subject;
  X509_SIG* digest;
};
ASN1_SEQUENCE(IndirectDataFields) = {
    ASN1_SIMPLE(IndirectDataFields, subject, ASN1_ANY),
    ASN1_SIMPLE(IndirectDataFields, digest, X509_SIG),
} static_ASN1_SEQUENCE_END(IndirectDataFields);

PssParameters ReadPssParameters(const X509_ALGOR* algorithm) {
  const auto fields = Decoded<RSA_PSS_PARAMS>(EncodedOf(algorithm->parameter), ASN1_ITEM_rptr(RSA_PSS_PARAMS));
  if (!fields) {
    const std::string unread = DottedNumbers(algorithm->algorithm);
    return {unread, unread};
  }
  // Both are SHA-1 where nothing else is said (RFC 4055, 3.1).
  PssParameters pss = {"SHA1", "SHA1"};
  if (fields->hashAlgorithm != nullptr) {
    pss.digestAlgorithm = DigestName(fields->hashAlgorithm);
  }
  if (const X509_ALGOR* const mask = fields->maskGenAlgorithm) {
    const auto digest = Decoded<X509_ALGOR>(EncodedOf(mask->parameter), ASN1_ITEM_rptr(X509_ALGOR));
    const bool isKnown = OBJ_obj2nid(mask->algorithm) == NID_mgf1 && digest;
    pss.maskDigestAlgorithm = isKnown ? DigestName(digest.get()) : DottedNumbers(mask->algorithm);
  }
  return pss;
}

}  // namespace

ByteSpan SignedData::SignedOctets() const {
  const std::optional<Asn1Element> element = isOctetString ? std::nullopt : FrontElement(ByteSpan(content));
  return element ? element->content : ByteSpan(content);
}

Result<SignedData> ReadSignedData(ByteSpan bytes) {
  if (bytes.Size() > kMaxSize) {
    return Failure("is larger than 64 MiB");
  }
  const auto outer = Decoded<ContentInfoFields>(bytes, ASN1_ITEM_rptr(ContentInfoFields));
  if (!outer || OBJ_obj2nid(outer->type) != NID_pkcs7_signed) {
    return Failure("is no signed data");
  }
  const auto fields = Decoded<SignedDataFields>(EncodedOf(outer->content), ASN1_ITEM_rptr(SignedDataFields));
  if (!fields) {
    return Failure("is no signed data");
  }
  SignedData data = {};
  data.contentType = DottedNumbers(fields->contentInfo->type);
  data.certificates = TextOf(fields->certificates);
  if (const ASN1_TYPE* const content = fields->contentInfo->content) {
    data.isOctetString = ASN1_TYPE_get(content) == V_ASN1_OCTET_STRING;
    data.content = data.isOctetString ? TextOf(content->value.octet_string) : EncodedOf(content).Text();
    if (!data.isOctetString && data.content.empty()) {
      return Failure("is no signed data");
    }
  }
  const bool isWhole = ForEachElement(EncodedOf(fields->signers), [&](const Asn1Element& element) {
    Result<SignerInfo> signer = ReadSignerInfo(element.whole);
    if (signer) {
      data.signers.push_back(std::move(*signer));
    }
    return signer && data.signers.size() <= kMaxSigners;
  });
  if (data.signers.size() > kMaxSigners) {
    return Failure("has more than 16 signers");
  }
  if (!isWhole) {
    return Failure("has a damaged list of signers");
  }
  return data;
}

Result<SignerInfo> ReadSignerInfo(ByteSpan bytes) {
  const auto fields = Decoded<SignerInfoFields>(bytes, ASN1_ITEM_rptr(SignerInfoFields));
  if (!fields) {
    return Failure("is unreadable");
  }
  SignerInfo signer;
  if (fields->issuerAndNumber != nullptr) {
    signer.issuer = TextOf(fields->issuerAndNumber->issuer);
    signer.serialNumber = TextOf(fields->issuerAndNumber->serialNumber);
  }
  signer.keyIdentifier = TextOf(fields->keyIdentifier);
  signer.digestAlgorithm = DigestName(fields->digestAlgorithm);
  signer.signedAttributes = TextOf(fields->signedAttributes);
  if (!signer.signedAttributes.empty()) {
    constexpr char kSetTag = 0x31;
    signer.signedAttributes.front() = kSetTag;
  }
  if (OBJ_obj2nid(fields->signatureAlgorithm->algorithm) == NID_rsassaPss) {
    signer.pss = ReadPssParameters(fields->signatureAlgorithm);
  }
  signer.signature = TextOf(fields->signature);
  signer.unsignedAttributes = TextOf(fields->unsignedAttributes);
  return signer;
}

Result<IndirectData> ReadIndirectData(ByteSpan element) {
  const auto fields = Decoded<IndirectDataFields>(element, ASN1_ITEM_rptr(IndirectDataFields));
  if (!fields) {
    return Failure("is unreadable");
  }
  const X509_ALGOR* algorithm = nullptr;
  const ASN1_OCTET_STRING* digest = nullptr;
  X509_SIG_get0(fields->digest, &algorithm, &digest);
  if (BytesOf(digest).Empty()) {
    return Failure("has no digest");
  }
  return IndirectData{DigestName(algorithm), TextOf(digest)};
}

}  // namespace kwa
