#pragma once

#include <string>
#include <string_view>

#include "base/byte_span.h"
#include "base/fault.h"

namespace kwa {

enum class InfEncoding {
  EightBit,           // no byte-order mark: the code page of each Windows
  Utf8,               // with a byte-order mark
  Utf16LittleEndian,  // with a byte-order mark
  Utf16BigEndian,     // with a byte-order mark
};

// The text of an INF as every Windows reads it: the bytes of an 8-bit or UTF-8 file without the byte-order mark, or the
// ASCII characters of a little-endian UTF-16 file. Big-endian text is empty.
class InfText {
 public:
  // Replaces a UTF-16 unit that is not ASCII, because each Windows converts it in its own way. Nothing else in a UTF-16
  // file becomes this character.
  static constexpr char kOtherUnit = '\xFF';

  // The file's bytes must outlive this object.
  explicit InfText(ByteSpan file);

  std::string_view Text() const { return isNarrowed ? std::string_view(narrowed) : bytes.Text(); }
  InfEncoding Encoding() const { return encoding; }

 private:
  ByteSpan bytes;  // after the byte-order mark
  InfEncoding encoding = InfEncoding::EightBit;
  bool isNarrowed = false;
  std::string narrowed;
};

// Fails for an encoding that not every Windows reads. The code is "inf-encoding".
Check CheckEncoding(const InfText& inf);

}  // namespace kwa
