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
      Note(isAfterReturn ? LineEnds::CrLf : LineEnds::Lf);
    } else if (isAfterReturn) {
      Note(LineEnds::Cr);
    }
    isAfterReturn = character == '\r';
  }

  // Called once, at the end.
  LineEnds Found() {
    Add('\0');
    return found;
  }

 private:
  void Note(LineEnds lineEnd) { found = found == LineEnds::None || found == lineEnd ? lineEnd : LineEnds::Mixed; }

  LineEnds found = LineEnds::None;
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
    const std::uint32_t unit = isBigEndian ? std::uint32_t{text.U8(at)} << 8U | text.U8(at + 1) : text.U16(at);
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
  const TextEncoding encoding = !IsUtf8(text)                 ? TextEncoding::EightBit
                                : hasByteOrderMark || !is7Bit ? TextEncoding::Utf8
                                                              : TextEncoding::Ascii;
  return TextKind{encoding, hasByteOrderMark, lineEnds.Found()};
}

}  // namespace kwa
