#pragma once

#include <string>

#include "base/byte_span.h"

namespace kwa {

// What a file is by its own bytes, worded as lists of contents word it: "PE32, x86, native", "PKCS #7 signed data",
// "7-bit ASCII text, CR LF line ends", … "unknown data" for all else.
std::string FileKind(ByteSpan file);

}  // namespace kwa
