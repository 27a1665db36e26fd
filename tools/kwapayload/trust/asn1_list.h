#pragma once

#include <functional>
#include <optional>

#include "base/byte_span.h"

// Lists in DER or BER, walked without decoding them.

namespace kwa {

struct Asn1Element {
  ByteSpan whole;    // with tag and length and, where the length is indefinite, the two zeros at its end
  ByteSpan content;  // without them
};

// The element that the bytes begin with. Nothing where they begin with no whole element.
std::optional<Asn1Element> FrontElement(ByteSpan bytes);

// Returns whether to go on.
using VisitElement = std::function<bool(const Asn1Element&)>;

// Visits the elements of an encoded list. Returns whether it visited all: the list is well-formed, and no visit ended
// it.
bool ForEachElement(ByteSpan list, const VisitElement& visit);

// Visits the values of all attributes of a type in an encoded list.
//
// type  in dotted numbers
void ForEachAttributeValue(ByteSpan attributes, const char* type, const VisitElement& visit);

// The first value of the attributes of a type, or an empty span.
ByteSpan AttributeValue(ByteSpan attributes, const char* type);

}  // namespace kwa
