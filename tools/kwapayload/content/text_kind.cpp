#include "content/text_kind.h"

#include <utf8.h>

#include <cstdint>

namespace kwa {
namespace {

constexpr std::string_view kUtf8ByteOrderMark = "\xEF\xBB\xBF";

// Notes which line ends occur, character by character.
class LineEndNotes {
 public:
  void Add(std::uint32_t character) {
    if (character == '\n') {
      (isAfterReturn ? hasCrLf : hasLf) = true;
    } else if (isAfterReturn) {
      hasCr = true;
    }
    isAfterReturn = character == '\r';
  }

  LineEnds Found() const {
    const bool hasAnyCr = hasCr || isAfterReturn;
    if (int{hasCrLf} + int{hasLf} + int{hasAnyCr} > 1) {
      return LineEnds::Mixed;
    }
    return hasCrLf ? LineEnds::CrLf : hasLf ? LineEnds::Lf : hasAnyCr ? LineEnds::Cr : LineEnds::None;
  }

 private:
  bool hasCrLf = false;
  bool hasLf = false;
  bool hasCr = false;
  bool isAfterReturn = false;
};

bool IsControl(std::uint32_t character) {
  const bool isLayout = character == '\t' || character == '\n' || character == '\r' || character == '\f';
  return (character < 0x20 && !isLayout) || character == 0x7F;
}

std::optional<TextKind> ReadUtf16Kind(ByteSpan text, TextEncoding encoding) {
  const bool isBigEndian = encoding == TextEncoding::Utf16BigEndian;
  LineEndNotes lineEnds;
  for (std::uint64_t at = 0; at + 1 < text.Size(); at += 2) {
    const std::uint32_t low = text.U8(at + (isBigEndian ? 1 : 0));
    const std::uint32_t high = text.U8(at + (isBigEndian ? 0 : 1));
    const std::uint32_t unit = high << 8 | low;
    if (IsControl(unit)) {
      return std::nullopt;
    }
    lineEnds.Add(unit);
  }
  return TextKind{encoding, true, lineEnds.Found()};
}

}  // namespace

bool IsUtf8(ByteSpan bytes) {
  return utf8::is_valid(bytes.begin(), bytes.end());
}

std::optional<TextKind> ReadTextKind(ByteSpan file) {
  if (file.StartsWith("\xFF\xFE")) {
    return ReadUtf16Kind(file.From(2), TextEncoding::Utf16LittleEndian);
  }
  if (file.StartsWith("\xFE\xFF")) {
    return ReadUtf16Kind(file.From(2), TextEncoding::Utf16BigEndian);
  }
  const bool hasByteOrderMark = file.StartsWith(kUtf8ByteOrderMark);
  const ByteSpan text = hasByteOrderMark ? file.From(kUtf8ByteOrderMark.size()) : file;
  LineEndNotes lineEnds;
  bool is7Bit = true;
  for (const std::uint8_t byte : text) {
    if (IsControl(byte)) {
      return std::nullopt;
    }
    is7Bit = is7Bit && byte < 0x80;
    lineEnds.Add(byte);
  }
  TextEncoding encoding = TextEncoding::Ascii;
  if (!IsUtf8(text)) {
    encoding = TextEncoding::EightBit;
  } else if (hasByteOrderMark || !is7Bit) {
    encoding = TextEncoding::Utf8;
  }
  return TextKind{encoding, hasByteOrderMark, lineEnds.Found()};
}

}  // namespace kwa
