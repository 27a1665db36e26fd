#pragma once

#include <string>

#include "base/byte_span.h"

namespace kwa {

// The coding and the line ends of a text, such as "7-bit ASCII text, CR LF line ends", or "" for what is no text: bytes
// with control characters other than tab, line and page ends.
std::string TextKind(ByteSpan file);

// Whether the bytes are well-formed UTF-8: no overlong form, no surrogate, nothing above U+10FFFF.
bool IsUtf8(ByteSpan bytes);

}  // namespace kwa
