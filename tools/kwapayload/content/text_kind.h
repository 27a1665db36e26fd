#pragma once

#include <optional>

#include "base/byte_span.h"

namespace kwa {

// KindText has words for the values of both in this order.
enum class TextEncoding { Ascii, Utf8, EightBit, Utf16LittleEndian, Utf16BigEndian };

enum class LineEnds { None, CrLf, Lf, Cr, Mixed };

struct TextKind {
  TextEncoding encoding;
  bool hasByteOrderMark;  // UTF-16 is recognised by it alone
  LineEnds lineEnds;
};

// The kind of a text. Nothing for bytes with control characters other than tab, line end and page end.
std::optional<TextKind> ReadTextKind(ByteSpan file);

// Whether the bytes are well-formed UTF-8: no overlong form, no surrogate, nothing above U+10FFFF.
bool IsUtf8(ByteSpan bytes);

}  // namespace kwa
