#include "trust/catalog.h"

#include <openssl/crypto.h>
#include <openssl/x509.h>

#include <algorithm>
#include <array>

#include "base/ascii_text.h"
#include "trust/asn1.h"
#include "trust/signed_data.h"

namespace kwa {
namespace {

constexpr std::size_t kMaxMembers = 100000;

constexpr char kTrustList[] = "1.3.6.1.4.1.311.10.1";
constexpr char kMemberVersion1[] = "1.3.6.1.4.1.311.12.1.2";
constexpr char kMemberVersion2[] = "1.3.6.1.4.1.311.12.1.3";
constexpr char kIndirectData[] = "1.3.6.1.4.1.311.2.1.4";
constexpr char kNameValue[] = "1.3.6.1.4.1.311.12.2.1";

struct TrustListFields {
  ASN1_INTEGER* version;
  ASN1_STRING* usage;
  ASN1_OCTET_STRING* identifier;
  ASN1_INTEGER* sequenceNumber;
  ASN1_TIME* time;
  ASN1_TIME* nextTime;
  X509_ALGOR* memberAlgorithm;
  ASN1_STRING* members;
  ASN1_TYPE* extensions;
};
ASN1_SEQUENCE(TrustListFields) = {
    ASN1_OPT(TrustListFields, version, ASN1_INTEGER),
    ASN1_SIMPLE(TrustListFields, usage, ASN1_SEQUENCE),
    ASN1_OPT(TrustListFields, identifier, ASN1_OCTET_STRING),
    ASN1_OPT(TrustListFields, sequenceNumber, ASN1_INTEGER),
    ASN1_SIMPLE(TrustListFields, time, ASN1_TIME),
    ASN1_OPT(TrustListFields, nextTime, ASN1_TIME),
    ASN1_SIMPLE(TrustListFields, memberAlgorithm, X509_ALGOR),
    ASN1_OPT(TrustListFields, members, ASN1_SEQUENCE),
    ASN1_EXP_OPT(TrustListFields, extensions, ASN1_ANY, 0),
} static_ASN1_SEQUENCE_END(TrustListFields);

struct MemberFields {
  ASN1_OCTET_STRING* tag;
  ASN1_TYPE* attributes;
};
ASN1_SEQUENCE(MemberFields) = {
    ASN1_SIMPLE(MemberFields, tag, ASN1_OCTET_STRING),
    ASN1_OPT(MemberFields, attributes, ASN1_ANY),
} static_ASN1_SEQUENCE_END(MemberFields);

// The text up to a zero; characters beyond ASCII become '?'.
std::string NarrowText(ByteSpan wide) {
  const std::string text = NarrowedUtf16(wide, '?');
  return text.substr(0, text.find('\0'));
}

// MakeCat knows no other algorithms (learn.microsoft.com, "MakeCat", HashAlgorithms).
const char* AlgorithmOfSize(std::size_t digestSize) {
  return digestSize == 20 ? "SHA1" : digestSize == 32 ? "SHA256" : nullptr;
}

// The digest in a tag, where it is its bytes or hexadecimal UTF-16 text; "" for another tag.
std::string TagDigest(ByteSpan tag) {
  if (AlgorithmOfSize(tag.Size()) != nullptr) {
    return std::string(tag.Text());
  }
  std::array<unsigned char, EVP_MAX_MD_SIZE> bytes = {};
  std::size_t size = 0;
  const bool isDigest = OPENSSL_hexstr2buf_ex(bytes.data(), bytes.size(), &size, NarrowText(tag).c_str(), '\0') == 1 &&
                        AlgorithmOfSize(size) != nullptr;
  return isDigest ? std::string(bytes.begin(), bytes.begin() + size) : "";
}

// Adds what an attribute says: a sequence of name, flags and value. MakeCat writes "OSAttr" ("2:5.1,2:6.0") for
// members, Inf2Cat also "OS" ("XPX86,7X64") for the catalog.
void AddNameValue(ByteSpan attribute, Catalog& catalog) {
  constexpr std::size_t kMaxWindows = 64;
  constexpr std::string_view kFile("\0F\0i\0l\0e", 8);
  constexpr std::string_view kMemberWindows("\0O\0S\0A\0t\0t\0r", 12);
  constexpr std::string_view kCatalogWindows("\0O\0S", 4);
  std::array<ByteSpan, 3> fields;
  std::size_t count = 0;
  ForEachElement(attribute, [&](const Asn1Element& field) {
    fields[count++] = field.content;
    return count < fields.size();
  });
  if (fields[0].Text() == kFile) {
    catalog.fileNames.insert(UpperCase(NarrowText(fields[2])));
  } else if ((fields[0].Text() == kMemberWindows || fields[0].Text() == kCatalogWindows) &&
             catalog.windows.size() < kMaxWindows) {
    catalog.windows.insert(NarrowText(fields[2]));
  }
}

// The catalog's own attributes are extensions: sequences of a type and an octet string with the attribute.
void AddExtensions(ByteSpan extensions, Catalog& catalog) {
  ForEachElement(extensions, [&](const Asn1Element& extension) {
    ByteSpan last;
    ForEachElement(extension.whole, [&](const Asn1Element& field) {
      last = field.content;
      return true;
    });
    AddNameValue(last, catalog);
    return true;
  });
}

bool AddMember(ByteSpan member, Catalog& catalog) {
  const auto fields = Decoded<MemberFields>(member, ASN1_ITEM_rptr(MemberFields));
  if (!fields) {
    return false;
  }
  const ByteSpan attributes = EncodedOf(fields->attributes);
  // Windows finds a member by its tag, which the digest of the file must be (learn.microsoft.com,
  // CryptCATAdminEnumCatalogFromHash), and then compares the digest in the indirect data, if there is any.
  const std::string digest = TagDigest(BytesOf(fields->tag));
  bool isFound = !digest.empty();
  if (const ByteSpan value = AttributeValue(attributes, kIndirectData); !value.Empty()) {
    const Result<IndirectData> data = ReadIndirectData(value);
    if (!data) {
      return false;
    }
    isFound = isFound && data->digest == digest && data->algorithm == AlgorithmOfSize(digest.size());
  }
  if (isFound) {
    catalog.digests[AlgorithmOfSize(digest.size())].insert(digest);
  }
  ForEachAttributeValue(attributes, kNameValue, [&](const Asn1Element& value) {
    AddNameValue(value.whole, catalog);
    return true;
  });
  return true;
}

Result<Catalog> ReadTrustList(ByteSpan content) {
  const auto fields = Decoded<TrustListFields>(content, ASN1_ITEM_rptr(TrustListFields));
  if (!fields) {
    return Failure("is a catalog whose list of members is damaged");
  }
  Catalog catalog = {};
  const std::string algorithm = DottedNumbers(fields->memberAlgorithm->algorithm);
  catalog.version = algorithm == kMemberVersion1 ? 1 : algorithm == kMemberVersion2 ? 2 : 0;
  AddExtensions(EncodedOf(fields->extensions), catalog);
  const bool isWhole =
      fields->members == nullptr || ForEachElement(BytesOf(fields->members), [&catalog](const Asn1Element& element) {
        if (catalog.memberCount == kMaxMembers || !AddMember(element.whole, catalog)) {
          return false;
        }
        ++catalog.memberCount;
        return true;
      });
  if (isWhole) {
    return catalog;
  }
  if (catalog.memberCount == kMaxMembers) {
    return Failure("is a catalog of more than 100000 members");
  }
  return Failure("is a catalog whose member " + std::to_string(catalog.memberCount + 1) + " is damaged");
}

}  // namespace

Result<Catalog> ReadCatalog(ByteSpan file) {
  const Result<SignedData> data = ReadSignedData(file);
  if (!data) {
    return tl::unexpected(data.error());
  }
  if (data->contentType != kTrustList) {
    return Failure("is signed data, but no catalog");
  }
  Result<Catalog> catalog = ReadTrustList(ByteSpan(data->content));
  if (catalog) {
    // A nested signature can be copied from another catalog.
    const auto checkContent = [&data](const SignedData& other) -> Check {
      if (other.contentType != data->contentType || other.content != data->content) {
        return Failure("is one of another catalog");
      }
      return {};
    };
    AppendSignatures(file, checkContent, catalog->signatures);
  }
  return catalog;
}

bool Covers(const Catalog& catalog, FileDigests& file) {
  return std::any_of(catalog.digests.begin(), catalog.digests.end(),
                     [&file](const auto& ofOne) { return ofOne.second.count(file.Of(ofOne.first)) != 0; });
}

std::optional<std::string> CoveringLineEnds(const Catalog& catalog, ByteSpan text) {
  for (const auto& [algorithm, digests] : catalog.digests) {
    for (const bool isCrLf : {true, false}) {
      if (digests.count(DigestWithLineEnds(text, isCrLf ? "\r\n" : "\n", algorithm)) != 0) {
        return isCrLf ? "CR LF" : "LF";
      }
    }
  }
  return std::nullopt;
}

}  // namespace kwa
