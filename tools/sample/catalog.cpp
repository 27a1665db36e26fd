#include "catalog.h"

#include <set>
#include <stdexcept>

#include "base/byte_span.h"
#include "der.h"
#include "padding.h"
#include "program.h"
#include "trust/digest.h"

namespace kwa {
namespace {

using namespace std::string_literals;

constexpr char kTrustListType[] = "1.3.6.1.4.1.311.10.1";
constexpr char kCatalogUsage[] = "1.3.6.1.4.1.311.12.1.1";
constexpr char kCatalogVersion2[] = "1.3.6.1.4.1.311.12.1.3";
constexpr char kNameValueType[] = "1.3.6.1.4.1.311.12.2.1";
constexpr char kSupportedWindows[] = "2:5.00,2:5.1,2:5.2,2:6.0,2:6.1,2:6.2,2:6.3";

std::string Utf16(const std::string& ascii, bool isBigEndian) {
  std::string bytes;
  for (const char c : ascii) {
    bytes += isBigEndian ? std::string{'\0', c} : std::string{c, '\0'};
  }
  return bytes;
}

// A name and a value, as an attribute of a member or of the catalog.
std::string NameValue(const std::string& name, const std::string& value) {
  const std::string flags = "\x10\x01\x00\x01"s;
  return Der(kDerSequence,
             Der(V_ASN1_BMPSTRING, Utf16(name, true)) + Der(V_ASN1_INTEGER, flags) + Der(V_ASN1_OCTET_STRING, value));
}

std::string TextValue(const std::string& name, const std::string& text) {
  return NameValue(name, Utf16(text + '\0', false));
}

std::string Member(const std::string& name, const std::string& content) {
  const bool isProgram = content.rfind("MZ", 0) == 0;
  const std::string digest = isProgram ? ImageDigest(content) : DigestOf(ByteSpan(content), "SHA256");
  const DigestKind kind = isProgram ? DigestKind::ProgramImage : DigestKind::WholeFile;
  // DER sorts the values of a set by their bytes.
  const std::set<std::string> attributes = {
      DerAttribute(kNameValueType, TextValue("File", name)),
      DerAttribute(kNameValueType, TextValue("OSAttr", kSupportedWindows)),
      DerAttribute(kIndirectDataType, Der(kDerSequence, IndirectDataContent(kind, digest))),
  };
  std::string set;
  for (const std::string& attribute : attributes) {
    set += attribute;
  }
  return Der(kDerSequence, Der(V_ASN1_OCTET_STRING, digest) + Der(kDerSet, set));
}

std::string Catalog(const std::map<std::string, std::string>& files, std::size_t remarkBytes, const Signer& signer) {
  std::string members;
  for (const auto& [name, content] : files) {
    members += Member(name, content);
  }
  const std::string remark = NameValue("Remark", PaddingBytes(remarkBytes, 1));
  const std::string extension = Der(kDerSequence, DerObjectId(kNameValueType) + Der(V_ASN1_OCTET_STRING, remark));
  const std::string trustList = Der(kDerSequence, DerObjectId(kCatalogUsage)) +
                                Der(V_ASN1_OCTET_STRING, PaddingBytes(16, 0)) + Der(V_ASN1_UTCTIME, kSigningTime) +
                                Der(kDerSequence, DerObjectId(kCatalogVersion2) + Der(V_ASN1_NULL, "")) +
                                Der(kDerSequence, members) + Der(kDerExplicit0, Der(kDerSequence, extension));
  return SignedMessage(signer, kTrustListType, trustList);
}

}  // namespace

std::string MakeCatalog(const std::map<std::string, std::string>& files, std::size_t size, const Signer& signer) {
  // A remark of this size or more, in a catalog below 64 KB, keeps the number of bytes that each DER length takes.
  constexpr std::size_t kSmallestRemark = 256;
  const std::size_t smallest = Catalog(files, kSmallestRemark, signer).size();
  RequireSize(smallest, size);
  if (size > 0xFFFF) {
    throw std::runtime_error("has more than 65535 bytes in the list of contents");
  }
  return Catalog(files, kSmallestRemark + size - smallest, signer);
}

}  // namespace kwa
