#include "trust/signed_data.h"

#include <memory>

#include "trust/asn1_value.h"

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

// Returns false where the bytes do not begin with a whole element of a known length.
bool SplitElement(ByteSpan bytes, ByteSpan* element, ByteSpan* content) {
  const unsigned char* at = bytes.Data();
  long length = 0;
  int tag = 0;
  int tagClass = 0;
  constexpr int kFault = 0x80;
  constexpr int kUnknownLength = 1;
  const auto size = static_cast<long>(std::min<std::size_t>(bytes.Size(), INT_MAX));
  if (size == 0) {
    return false;
  }
  const int result = ASN1_get_object(&at, &length, &tag, &tagClass, size);
  if ((result & (kFault | kUnknownLength)) != 0) {
    ERR_clear_error();
    return false;
  }
  const auto headerSize = static_cast<std::size_t>(at - bytes.Data());
  *element = bytes.Part(0, headerSize + static_cast<std::size_t>(length));
  *content = element->From(headerSize);
  return true;
}

}  // namespace

bool ReadSignedData(ByteSpan bytes, SignedData* data, std::string* fault) {
  *data = {};
  if (bytes.Size() > kMaxSize) {
    *fault = "is larger than 64 MiB";
    return false;
  }
  *fault = "is no signed data";
  const Asn1Value<ContentInfoFields> outer(bytes, ASN1_ITEM_rptr(ContentInfoFields));
  if (!outer || OBJ_obj2nid(outer->type) != NID_pkcs7_signed) {
    return false;
  }
  const Asn1Value<SignedDataFields> fields(EncodedOf(outer->content), ASN1_ITEM_rptr(SignedDataFields));
  if (!fields) {
    return false;
  }
  data->contentType = DottedNumbers(fields->contentInfo->type);
  data->certificates = TextOf(fields->certificates);
  if (const ASN1_TYPE* const content = fields->contentInfo->content) {
    ByteSpan element;
    ByteSpan octets;
    if (ASN1_TYPE_get(content) == V_ASN1_OCTET_STRING) {
      data->content = TextOf(content->value.octet_string);
    } else if (SplitElement(EncodedOf(content), &element, &octets)) {
      data->content = element.Text();
      data->signedFrom = element.Size() - octets.Size();
    } else {
      return false;
    }
  }
  const bool isList = ForEachElement(EncodedOf(fields->signers), [&](ByteSpan element) {
    return data->signers.size() <= kMaxSigners && ReadSignerInfo(element, &data->signers.emplace_back());
  });
  if (data->signers.size() > kMaxSigners) {
    *fault = "has more than 16 signers";
    return false;
  }
  if (!isList || (!data->signers.empty() && data->signers.back().digestAlgorithm.empty())) {
    return false;
  }
  fault->clear();
  return true;
}

bool ReadSignerInfo(ByteSpan bytes, SignerInfo* signer) {
  *signer = {};
  const Asn1Value<SignerInfoFields> fields(bytes, ASN1_ITEM_rptr(SignerInfoFields));
  if (!fields) {
    return false;
  }
  if (fields->issuerAndNumber != nullptr) {
    signer->issuer = TextOf(fields->issuerAndNumber->issuer);
    signer->serialNumber = TextOf(fields->issuerAndNumber->serialNumber);
  }
  signer->keyIdentifier = TextOf(fields->keyIdentifier);
  signer->digestAlgorithm = DigestName(fields->digestAlgorithm);
  signer->signedAttributes = TextOf(fields->signedAttributes);
  if (!signer->signedAttributes.empty()) {
    constexpr char kSetTag = 0x31;
    signer->signedAttributes.front() = kSetTag;
  }
  const ASN1_OBJECT* signatureAlgorithm = nullptr;
  X509_ALGOR_get0(&signatureAlgorithm, nullptr, nullptr, fields->signatureAlgorithm);
  signer->isPss = OBJ_obj2nid(signatureAlgorithm) == NID_rsassaPss;
  signer->signature = TextOf(fields->signature);
  signer->unsignedAttributes = TextOf(fields->unsignedAttributes);
  return true;
}

bool ReadIndirectData(ByteSpan element, std::string* algorithm, std::string* digest) {
  const Asn1Value<IndirectDataFields> fields(element, ASN1_ITEM_rptr(IndirectDataFields));
  if (!fields) {
    return false;
  }
  const X509_ALGOR* digestAlgorithm = nullptr;
  const ASN1_OCTET_STRING* octets = nullptr;
  X509_SIG_get0(fields->digest, &digestAlgorithm, &octets);
  *algorithm = DigestName(digestAlgorithm);
  *digest = TextOf(octets);
  return true;
}

bool ForEachElement(ByteSpan list, const VisitElement& visit) {
  ByteSpan element;
  ByteSpan rest;
  if (!SplitElement(list, &element, &rest)) {
    return false;
  }
  while (!rest.Empty()) {
    ByteSpan content;
    if (!SplitElement(rest, &element, &content)) {
      return false;
    }
    if (!visit(element)) {
      break;
    }
    rest = rest.From(element.Size());
  }
  return true;
}

ByteSpan FirstElement(ByteSpan list) {
  ByteSpan first;
  ForEachElement(list, [&first](ByteSpan element) {
    first = element;
    return false;
  });
  return first;
}

void ForEachAttributeValue(ByteSpan attributes, const char* type, const VisitElement& visit) {
  const std::unique_ptr<ASN1_OBJECT, decltype(&ASN1_OBJECT_free)> wanted(OBJ_txt2obj(type, 1), &ASN1_OBJECT_free);
  const ByteSpan wantedNumbers(OBJ_get0_data(wanted.get()), OBJ_length(wanted.get()));
  bool goesOn = true;
  ForEachElement(attributes, [&](ByteSpan attribute) {
    // A sequence of two: the type, and the set of values.
    const ByteSpan typeElement = FirstElement(attribute);
    ByteSpan element;
    ByteSpan content;
    if (!SplitElement(typeElement, &element, &content)) {
      return false;
    }
    if (content.Text() == wantedNumbers.Text() && SplitElement(attribute, &element, &content)) {
      ForEachElement(content.From(typeElement.Size()), [&](ByteSpan value) { return goesOn = visit(value); });
    }
    return goesOn;
  });
}

ByteSpan AttributeValue(ByteSpan attributes, const char* type) {
  ByteSpan first;
  ForEachAttributeValue(attributes, type, [&first](ByteSpan value) {
    first = value;
    return false;
  });
  return first;
}

}  // namespace kwa
