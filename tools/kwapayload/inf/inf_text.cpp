#include "inf/inf_text.h"

#include "base/ascii_text.h"

namespace kwa {

InfText::InfText(ByteSpan file) {
  if (file.StartsWith("\xEF\xBB\xBF")) {
    encoding = Failure("begins with the byte-order mark of UTF-8, which not every Windows knows", "inf-encoding");
    bytes = file.From(3);
  } else if (file.StartsWith("\xFE\xFF")) {
    encoding = Failure("is UTF-16 text in big-endian order, which not every Windows knows", "inf-encoding");
  } else if (file.StartsWith("\xFF\xFE")) {
    isUtf16 = true;
    // Windows completes a last odd byte with one that is not in the file.
    narrowed = NarrowedUtf16(file.From(2), kOtherUnit);
  } else {
    bytes = file;
  }
}

}  // namespace kwa
