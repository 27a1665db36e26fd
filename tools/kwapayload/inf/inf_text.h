#pragma once

#include <string>
#include <string_view>

#include "base/byte_span.h"
#include "base/fault.h"

namespace kwa {

// The text of an INF as every Windows reads it: the bytes of an 8-bit or UTF-8 file without the byte-order mark, or the
// ASCII characters of a little-endian UTF-16 file. Big-endian text is empty.
class InfText {
 public:
  // Replaces a UTF-16 unit that is not ASCII, because each Windows converts it in its own way. Nothing else in a UTF-16
  // file becomes this character.
  static constexpr char kOtherUnit = '\xFF';

  // The file's bytes must outlive this object.
  explicit InfText(ByteSpan file);

  std::string_view Text() const { return isUtf16 ? std::string_view(narrowed) : bytes.Text(); }
  bool IsUtf16() const { return isUtf16; }
  // Fails for an encoding that not every Windows reads. The code is "inf-encoding".
  const Check& Encoding() const { return encoding; }

 private:
  ByteSpan bytes;  // of an 8-bit or UTF-8 file, after the byte-order mark
  Check encoding;
  bool isUtf16 = false;  // little-endian
  std::string narrowed;
};

}  // namespace kwa
