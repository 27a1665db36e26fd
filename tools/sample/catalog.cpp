#include "catalog.h"

#include <openssl/asn1t.h>

#include <memory>
#include <stdexcept>

#include "der.h"
#include "padding.h"
#include "program.h"
#include "trust/digest.h"

namespace kwa {
namespace {

constexpr char kTrustListType[] = "1.3.6.1.4.1.311.10.1";
constexpr char kCatalogUsage[] = "1.3.6.1.4.1.311.12.1.1";
constexpr char kSecondGeneration[] = "1.3.6.1.4.1.311.12.1.3";
constexpr char kNameValueType[] = "1.3.6.1.4.1.311.12.2.1";

struct NameValue {
  ASN1_BMPSTRING* name;
  ASN1_INTEGER* flags;
  ASN1_OCTET_STRING* value;
};

struct CatalogMember {
  ASN1_OCTET_STRING* tag;
  STACK_OF(X509_ATTRIBUTE) * attributes;
};
DEFINE_STACK_OF(CatalogMember)

struct TrustList {
  STACK_OF(ASN1_OBJECT) * usage;
  ASN1_OCTET_STRING* identifier;
  ASN1_UTCTIME* time;
  X509_ALGOR* generation;
  STACK_OF(CatalogMember) * members;
  STACK_OF(X509_EXTENSION) * extensions;
};

ASN1_SEQUENCE(NameValue) = {
    ASN1_SIMPLE(NameValue, name, ASN1_BMPSTRING), ASN1_SIMPLE(NameValue, flags, ASN1_INTEGER),
    ASN1_SIMPLE(NameValue, value, ASN1_OCTET_STRING),
    // cppcheck-suppress unknownMacro
} static_ASN1_SEQUENCE_END(NameValue);

ASN1_SEQUENCE(CatalogMember) = {
    ASN1_SIMPLE(CatalogMember, tag, ASN1_OCTET_STRING),
    ASN1_SET_OF(CatalogMember, attributes, X509_ATTRIBUTE),
} static_ASN1_SEQUENCE_END(CatalogMember);

ASN1_SEQUENCE(TrustList) = {
    ASN1_SEQUENCE_OF(TrustList, usage, ASN1_OBJECT),     ASN1_SIMPLE(TrustList, identifier, ASN1_OCTET_STRING),
    ASN1_SIMPLE(TrustList, time, ASN1_UTCTIME),          ASN1_SIMPLE(TrustList, generation, X509_ALGOR),
    ASN1_SEQUENCE_OF(TrustList, members, CatalogMember), ASN1_EXP_SEQUENCE_OF(TrustList, extensions, X509_EXTENSION, 0),
} static_ASN1_SEQUENCE_END(TrustList);

template <typename Value>
std::shared_ptr<Value> New(const ASN1_ITEM* item) {
  auto* const value = reinterpret_cast<Value*>(ASN1_item_new(item));
  Require(value != nullptr);
  return {value, [item](Value* owned) { ASN1_item_free(reinterpret_cast<ASN1_VALUE*>(owned), item); }};
}

void Set(ASN1_STRING* string, const std::string& bytes) {
  Require(ASN1_STRING_set(string, bytes.data(), static_cast<int>(bytes.size())) == 1);
}

std::string Utf16(const std::string& ascii) {
  std::string bytes;
  for (const char c : ascii + '\0') bytes.append({c, '\0'});
  return bytes;
}

// A name and a value that the catalog gives a member, or itself.
std::string NameValueDer(const std::string& name, const std::string& value) {
  const std::shared_ptr<NameValue> pair = New<NameValue>(ASN1_ITEM_rptr(NameValue));
  Require(ASN1_mbstring_copy(&pair->name, reinterpret_cast<const unsigned char*>(name.data()),
                             static_cast<int>(name.size()), MBSTRING_ASC, B_ASN1_BMPSTRING) > 0 &&
          ASN1_INTEGER_set(pair->flags, 0x10010001) == 1);
  Set(pair->value, value);
  return Der(pair.get(), ASN1_ITEM_rptr(NameValue));
}

void AddAttribute(CatalogMember* member, const char* type, const std::string& der) {
  X509_ATTRIBUTE* const attribute = X509_ATTRIBUTE_create_by_txt(
      nullptr, type, V_ASN1_SEQUENCE, reinterpret_cast<const unsigned char*>(der.data()), static_cast<int>(der.size()));
  Require(attribute != nullptr && sk_X509_ATTRIBUTE_push(member->attributes, attribute) > 0);
}

void AddMember(TrustList* list, const std::string& name, const std::string& content) {
  const bool isProgram = content.rfind("MZ", 0) == 0;
  const std::string digest = isProgram ? ImageDigest(content) : DigestOf(ByteSpan(content), "SHA256");
  auto* const member = reinterpret_cast<CatalogMember*>(ASN1_item_new(ASN1_ITEM_rptr(CatalogMember)));
  Require(member != nullptr && sk_CatalogMember_push(list->members, member) > 0);
  Set(member->tag, digest);
  AddAttribute(member, kNameValueType, NameValueDer("File", Utf16(name)));
  AddAttribute(member, kNameValueType, NameValueDer("OSAttr", Utf16("2:5.00,2:5.1,2:5.2,2:6.0,2:6.1,2:6.2,2:6.3")));
  AddAttribute(member, kIndirectDataType,
               IndirectData(isProgram ? DigestKind::ProgramImage : DigestKind::WholeFile, digest));
}

std::string Catalog(const std::map<std::string, std::string>& files, std::size_t remarkBytes, const Signer& signer) {
  const std::shared_ptr<TrustList> list = New<TrustList>(ASN1_ITEM_rptr(TrustList));
  Require(sk_ASN1_OBJECT_push(list->usage, ObjectId(kCatalogUsage)) > 0);
  Set(list->identifier, PaddingBytes(16, 0));
  Set(list->time, "140213120000Z");
  X509_ALGOR_set0(list->generation, ObjectId(kSecondGeneration), V_ASN1_NULL, nullptr);
  for (const auto& [name, content] : files) AddMember(list.get(), name, content);

  const std::shared_ptr<ASN1_STRING> remark(
      StringOf(V_ASN1_OCTET_STRING, NameValueDer("Remark", PaddingBytes(remarkBytes, 1))), ASN1_STRING_free);
  const std::shared_ptr<ASN1_OBJECT> type(ObjectId(kNameValueType), ASN1_OBJECT_free);
  X509_EXTENSION* const extension = X509_EXTENSION_create_by_OBJ(nullptr, type.get(), 0, remark.get());
  Require(extension != nullptr && sk_X509_EXTENSION_push(list->extensions, extension) > 0);
  return SignedData(signer, kTrustListType, Der(list.get(), ASN1_ITEM_rptr(TrustList)));
}

}  // namespace

std::string MakeCatalog(const std::map<std::string, std::string>& files, std::size_t size, const Signer& signer) {
  // Below this remark, lengths would take fewer bytes; above the catalog's greatest size, more.
  constexpr std::size_t kSmallestRemark = 256;
  const std::size_t smallest = Catalog(files, kSmallestRemark, signer).size();
  RequireSize(smallest, size);
  if (size > 0xFFFF) throw std::runtime_error("the list of contents asks for more than 65535 bytes");
  return Catalog(files, kSmallestRemark + size - smallest, signer);
}

}  // namespace kwa
