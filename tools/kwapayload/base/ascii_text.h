#pragma once

#include <string>
#include <string_view>

#include "base/byte_span.h"

// Text whose meaning is ASCII; other bytes pass as they are.

namespace kwa {

// a to z as A to Z.
std::string UpperCase(std::string_view text);

// Whether two texts are the same without regard to case.
bool IsSameText(std::string_view one, std::string_view other);

// The text without any of `blanks` at its beginning and end.
std::string_view Trimmed(std::string_view text, std::string_view blanks = " \t");

// Takes the first line off the text and returns it without its end, a CR or LF. Between CR and LF there is an empty
// line.
std::string_view TakeLine(std::string_view* text);

// UTF-16 text with ASCII characters as they are and `other` for any other unit. The last byte of an odd number of bytes
// is left out.
std::string NarrowedUtf16(ByteSpan text, char other, bool isBigEndian = false);

}  // namespace kwa
