#include "trust/asn1.h"

#include <openssl/evp.h>
#include <openssl/objects.h>

#include <array>

namespace kwa {
namespace {

struct ElementHeader {
  std::size_t size;         // of tag and length
  std::size_t contentSize;  // 0 where the length is indefinite
  bool isIndefinite;
  bool isEnd;  // of an element of indefinite length
};

std::optional<ElementHeader> ReadHeader(ByteSpan bytes) {
  constexpr int kFault = 0x80;
  constexpr int kIndefiniteLength = 1;
  const unsigned char* at = bytes.Data();
  long length = 0;
  int tag = 0;
  int tagClass = 0;
  const auto size = static_cast<long>(std::min<std::size_t>(bytes.Size(), INT_MAX));
  const int result = size == 0 ? kFault : ASN1_get_object(&at, &length, &tag, &tagClass, size);
  if ((result & kFault) != 0) {
    ERR_clear_error();
    return std::nullopt;
  }
  const bool isEnd = tag == V_ASN1_EOC && tagClass == V_ASN1_UNIVERSAL && length == 0;
  return ElementHeader{static_cast<std::size_t>(at - bytes.Data()), static_cast<std::size_t>(length),
                       (result & kIndefiniteLength) != 0, isEnd};
}

}  // namespace

std::optional<Asn1Element> FrontElement(ByteSpan bytes) {
  const std::optional<ElementHeader> front = ReadHeader(bytes);
  if (!front) {
    return std::nullopt;
  }
  std::size_t end = front->size + front->contentSize;
  std::size_t contentEnd = end;
  for (std::size_t openCount = front->isIndefinite ? 1 : 0; openCount != 0;) {
    const std::optional<ElementHeader> header = ReadHeader(bytes.From(end));
    if (!header) {
      return std::nullopt;
    }
    openCount = header->isIndefinite ? openCount + 1 : header->isEnd ? openCount - 1 : openCount;
    contentEnd = end;
    end += header->size + header->contentSize;
  }
  return Asn1Element{bytes.Part(0, end), bytes.Part(front->size, contentEnd - front->size)};
}

bool ForEachElement(ByteSpan list, const VisitElement& visit) {
  const std::optional<Asn1Element> outer = FrontElement(list);
  if (!outer) {
    return false;
  }
  for (ByteSpan rest = outer->content; !rest.Empty();) {
    const std::optional<Asn1Element> element = FrontElement(rest);
    if (!element || !visit(*element)) {
      return false;
    }
    rest = rest.From(element->whole.Size());
  }
  return true;
}

void ForEachAttributeValue(ByteSpan attributes, const char* type, const VisitElement& visit) {
  const std::unique_ptr<ASN1_OBJECT, decltype(&ASN1_OBJECT_free)> wanted(OBJ_txt2obj(type, 1), &ASN1_OBJECT_free);
  const ByteSpan wantedNumbers(OBJ_get0_data(wanted.get()), OBJ_length(wanted.get()));
  bool goesOn = true;
  ForEachElement(attributes, [&](const Asn1Element& attribute) {
    // An attribute is a sequence of two: the type, and the set of values.
    const std::optional<Asn1Element> itsType = FrontElement(attribute.content);
    if (itsType && itsType->content.Text() == wantedNumbers.Text()) {
      ForEachElement(attribute.content.From(itsType->whole.Size()),
                     [&](const Asn1Element& value) { return goesOn = visit(value); });
    }
    return itsType && goesOn;
  });
}

ByteSpan AttributeValue(ByteSpan attributes, const char* type) {
  ByteSpan first;
  ForEachAttributeValue(attributes, type, [&first](const Asn1Element& value) {
    first = value.whole;
    return false;
  });
  return first;
}

ByteSpan BytesOf(const ASN1_STRING* text) {
  return text == nullptr ? ByteSpan()
                         : ByteSpan(ASN1_STRING_get0_data(text), static_cast<std::size_t>(ASN1_STRING_length(text)));
}

std::string TextOf(const ASN1_STRING* text) {
  return std::string(BytesOf(text).Text());
}

ByteSpan EncodedOf(const ASN1_TYPE* value) {
  const int type = value == nullptr ? V_ASN1_UNDEF : ASN1_TYPE_get(value);
  return type == V_ASN1_SEQUENCE || type == V_ASN1_SET ? BytesOf(value->value.asn1_string) : ByteSpan();
}

std::string DottedNumbers(const ASN1_OBJECT* object) {
  std::array<char, 128> text = {};
  OBJ_obj2txt(text.data(), static_cast<int>(text.size()), object, 1);
  return text.data();
}

std::string DigestName(const X509_ALGOR* algorithm) {
  const EVP_MD* const digest = EVP_get_digestbynid(OBJ_obj2nid(algorithm->algorithm));
  return digest == nullptr ? DottedNumbers(algorithm->algorithm) : EVP_MD_get0_name(digest);
}

}  // namespace kwa
