#pragma once

#include <iosfwd>
#include <string>

#include "base/byte_span.h"
#include "installer/listing.h"

namespace kwa {

// A bill of materials of an installer or archive in CycloneDX 1.6 (JSON): the file itself, and each payload file as a
// component. The same bytes for the same file and name: no time stands in it, and the serial number is made of the
// rest.
//
// file  the bytes that the listing was made from
// name  of the file, as it is released
void WriteBillOfMaterials(ByteSpan file, const std::string& name, const Listing& listing, std::ostream& stream);

}  // namespace kwa
