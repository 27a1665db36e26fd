#pragma once

#include <string>

#include "base/byte_span.h"

namespace kwa {

// The SHA-256 digest in 64 lower-case hexadecimal digits.
std::string Sha256Hex(ByteSpan bytes);

}  // namespace kwa
