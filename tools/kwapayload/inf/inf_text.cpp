#include "inf/inf_text.h"

namespace kwa {

InfText::InfText(ByteSpan file) : bytes(file) {
  if (file.StartsWith("\xEF\xBB\xBF")) {
    bytes = file.From(3);
    fault = "begins with the mark of UTF-8, which not every Windows knows";
  } else if (file.StartsWith("\xFE\xFF")) {
    fault = "is UTF-16 text in big-endian order, which not every Windows knows";
  } else if (file.StartsWith("\xFF\xFE")) {
    isUtf16 = true;
    // The last of an odd number of bytes is left out; the platform completes it with whatever follows in memory.
    for (std::uint64_t at = 2; file.Contains(at, 2); at += 2) {
      const std::uint16_t unit = file.U16(at);
      narrowed += unit < 0x80 ? static_cast<char>(unit) : kOtherUnit;
    }
  }
}

}  // namespace kwa
