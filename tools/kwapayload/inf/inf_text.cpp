#include "inf/inf_text.h"

namespace kwa {

InfText::InfText(ByteSpan file) {
  if (file.StartsWith("\xEF\xBB\xBF")) {
    encoding = Failure("begins with the byte-order mark of UTF-8, which not every Windows knows", "inf-encoding");
    bytes = file.From(3);
  } else if (file.StartsWith("\xFE\xFF")) {
    encoding = Failure("is UTF-16 text in big-endian order, which not every Windows knows", "inf-encoding");
  } else if (file.StartsWith("\xFF\xFE")) {
    isUtf16 = true;
    narrowed.reserve(file.Size() / 2);
    // The last byte of an odd number of bytes is left out; Windows completes it with a byte that is not in the file.
    for (std::uint64_t at = 2; file.Contains(at, 2); at += 2) {
      const std::uint16_t unit = file.U16(at);
      narrowed += unit < 0x80 ? static_cast<char>(unit) : kOtherUnit;
    }
  } else {
    bytes = file;
  }
}

}  // namespace kwa
