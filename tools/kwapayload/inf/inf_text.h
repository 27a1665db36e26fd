#pragma once

#include <string>
#include <string_view>

#include "base/byte_span.h"

namespace kwa {

// The text of an INF as every Windows sees it: the bytes of an 8-bit file as they are, or the ASCII of a UTF-16 file
// that begins with the little-endian mark. Which bytes any other character becomes is decided by each Windows.
class InfText {
 public:
  // What stands for a UTF-16 unit that is not ASCII. Nothing else in a UTF-16 file becomes it.
  static constexpr char kOtherUnit = '\xFF';

  // The file's bytes must outlive this.
  explicit InfText(ByteSpan file);

  std::string_view Text() const { return isUtf16 ? std::string_view(narrowed) : bytes.Text(); }
  bool IsUtf16() const { return isUtf16; }

  // Why it cannot be known what Windows reads of the file, whatever it holds, or "": it begins with another mark.
  const std::string& Fault() const { return fault; }

 private:
  ByteSpan bytes;  // behind the mark
  bool isUtf16 = false;
  std::string narrowed;
  std::string fault;
};

}  // namespace kwa
