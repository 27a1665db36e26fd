#include "content/text_kind.h"

#include <utf8.h>

#include <cstdint>

namespace kwa {
namespace {

constexpr std::string_view kUtf8Mark = "\xEF\xBB\xBF";

// Counts line ends of each sort, character by character.
class LineEnds {
 public:
  void Add(std::uint32_t character) {
    if (character == '\n') {
      ++(isAfterReturn ? crLf : lf);
    } else if (isAfterReturn) {
      ++cr;
    }
    isAfterReturn = character == '\r';
  }

  std::string Text() const {
    const std::uint64_t lastReturn = isAfterReturn ? 1 : 0;
    const int sorts = (crLf != 0 ? 1 : 0) + (lf != 0 ? 1 : 0) + (cr + lastReturn != 0 ? 1 : 0);
    if (sorts == 0) {
      return "no line ends";
    }
    if (sorts > 1) {
      return "mixed line ends";
    }
    return crLf != 0 ? "CR LF line ends" : lf != 0 ? "LF line ends" : "CR line ends";
  }

 private:
  std::uint64_t crLf = 0;
  std::uint64_t lf = 0;
  std::uint64_t cr = 0;
  bool isAfterReturn = false;
};

bool IsControl(std::uint32_t character) {
  const bool isLayout = character == '\t' || character == '\n' || character == '\r' || character == '\f';
  return (character < 0x20 && !isLayout) || character == 0x7F;
}

std::string Utf16Kind(ByteSpan text, bool isBigEndian) {
  LineEnds lineEnds;
  for (std::uint64_t at = 0; at + 1 < text.Size(); at += 2) {
    const std::uint32_t low = text.U8(at + (isBigEndian ? 1 : 0));
    const std::uint32_t high = text.U8(at + (isBigEndian ? 0 : 1));
    const std::uint32_t unit = high << 8 | low;
    if (IsControl(unit)) {
      return "";
    }
    lineEnds.Add(unit);
  }
  return std::string("UTF-16 text, ") + (isBigEndian ? "big-endian" : "little-endian") + ", with byte-order mark, " +
         lineEnds.Text();
}

}  // namespace

bool IsUtf8(ByteSpan bytes) {
  return utf8::is_valid(bytes.begin(), bytes.end());
}

std::string TextKind(ByteSpan file) {
  if (file.StartsWith("\xFF\xFE")) {
    return Utf16Kind(file.From(2), false);
  }
  if (file.StartsWith("\xFE\xFF")) {
    return Utf16Kind(file.From(2), true);
  }
  const bool hasMark = file.StartsWith(kUtf8Mark);
  const ByteSpan text = hasMark ? file.From(kUtf8Mark.size()) : file;
  LineEnds lineEnds;
  bool is7Bit = true;
  for (const std::uint8_t byte : text) {
    if (IsControl(byte)) {
      return "";
    }
    is7Bit = is7Bit && byte < 0x80;
    lineEnds.Add(byte);
  }
  std::string kind;
  if (!IsUtf8(text)) {
    kind = "8-bit text";
  } else if (hasMark || !is7Bit) {
    kind = "UTF-8 text";
  } else {
    kind = "7-bit ASCII text";
  }
  return kind + (hasMark ? " with byte-order mark, " : ", ") + lineEnds.Text();
}

}  // namespace kwa
