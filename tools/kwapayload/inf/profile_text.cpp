#include "inf/profile_text.h"

#include "inf/ansi_code_page.h"

namespace kwa {
namespace {

constexpr std::uint32_t kReplacement = 0xFFFD;

// Bytes of the character that a byte begins; 1 where it begins none.
unsigned Utf8Length(std::uint8_t lead) {
  if (lead >= 0xC2 && lead <= 0xDF) {
    return 2;
  }
  if (lead >= 0xE0 && lead <= 0xEF) {
    return 3;
  }
  return lead >= 0xF0 && lead <= 0xF4 ? 4 : 1;
}

// Whether the first two bytes of a character rule it out: it could have been shorter, is half of a surrogate pair, or
// lies beyond the last.
bool IsRuledOut(std::uint8_t lead, std::uint8_t second) {
  return (lead == 0xE0 && second < 0xA0) || (lead == 0xED && second > 0x9F) || (lead == 0xF0 && second < 0x90) ||
         (lead == 0xF4 && second > 0x8F);
}

// The character at *offset, which moves behind it. A fault is one replacement character for as many bytes as the
// platform takes for it.
std::uint32_t NextUtf8(ByteSpan text, std::uint64_t* offset) {
  const std::uint8_t lead = text.U8((*offset)++);
  const unsigned length = Utf8Length(lead);
  if (length == 1) {
    return lead < 0x80 ? lead : kReplacement;
  }
  if (!text.Contains(*offset - 1, length)) {
    *offset = text.Size();
    return kReplacement;
  }
  std::uint32_t character = lead & (0x7FU >> length);
  for (unsigned i = 1; i < length; ++i) {
    const std::uint8_t next = text.U8(*offset);
    if ((next & 0xC0U) != 0x80) {
      return kReplacement;
    }
    ++*offset;
    if (i == 1 && IsRuledOut(lead, next)) {
      return kReplacement;
    }
    character = character << 6 | (next & 0x3FU);
  }
  return character;
}

// Where the file's end cuts a character short, the platform takes all that is left for it.
std::uint64_t SizeWithoutCutTail(ByteSpan text) {
  for (std::uint64_t i = text.Size() < 3 ? 0 : text.Size() - 3; i < text.Size(); ++i) {
    if (!text.Contains(i, Utf8Length(text.U8(i)))) {
      return i + 1;
    }
  }
  return text.Size();
}

}  // namespace

ProfileText::ProfileText(ByteSpan file) : units(file), size(file.Size()) {
  if (file.StartsWith("\xEF\xBB\xBF")) {
    encoding = Encoding::Utf8;
    units = file.From(3);
    size = SizeWithoutCutTail(units);
  } else if (file.StartsWith("\xFF\xFE") || file.StartsWith("\xFE\xFF")) {
    encoding = file.U8(0) == 0xFF ? Encoding::Utf16LittleEndian : Encoding::Utf16BigEndian;
    units = file.From(2);
    size = units.Size() / 2;
  }
}

char16_t ProfileText::operator[](std::uint64_t index) const {
  switch (encoding) {
    case Encoding::Utf16LittleEndian:
      return units.U16(2 * index);
    case Encoding::Utf16BigEndian:
      return static_cast<char16_t>(units.U8(2 * index) << 8 | units.U8(2 * index + 1));
    default:
      return index < size ? units.U8(index) : char16_t{0};
  }
}

std::string ProfileText::ToAnsi(std::uint64_t begin, std::uint64_t end, std::size_t limit) const {
  std::string result;
  if (encoding == Encoding::Utf8) {
    while (begin < end && result.size() < limit) {
      const std::uint32_t character = NextUtf8(units, &begin);
      if (character > 0xFFFF) {
        result += "??";  // a pair of surrogates
      } else {
        result += ToCodePage1252(static_cast<char16_t>(character));
      }
    }
    return result.substr(0, limit);
  }
  for (; begin < end && result.size() < limit; ++begin) {
    const char16_t unit = (*this)[begin];
    result += encoding == Encoding::Ansi ? static_cast<char>(unit) : ToCodePage1252(unit);
  }
  return result;
}

}  // namespace kwa
