#include "base/ascii_text.h"

#include <algorithm>

namespace kwa {
namespace {

char UpperCaseLetter(char letter) {
  return letter >= 'a' && letter <= 'z' ? static_cast<char>(letter - 'a' + 'A') : letter;
}

}  // namespace

std::string UpperCase(std::string_view text) {
  std::string upper(text);
  std::transform(upper.begin(), upper.end(), upper.begin(), UpperCaseLetter);
  return upper;
}

bool IsSameText(std::string_view one, std::string_view other) {
  return std::equal(one.begin(), one.end(), other.begin(), other.end(),
                    [](char left, char right) { return UpperCaseLetter(left) == UpperCaseLetter(right); });
}

std::string_view Trimmed(std::string_view text, std::string_view blanks) {
  const std::size_t begin = text.find_first_not_of(blanks);
  return begin == std::string_view::npos ? "" : text.substr(begin, text.find_last_not_of(blanks) + 1 - begin);
}

std::string_view TakeLine(std::string_view* text) {
  const std::string_view line = text->substr(0, text->find_first_of("\r\n"));
  text->remove_prefix(std::min(line.size() + 1, text->size()));
  return line;
}

std::string NarrowedUtf16(ByteSpan text, char other, bool isBigEndian) {
  std::string narrowed;
  narrowed.reserve(text.Size() / 2);
  for (std::uint64_t at = 0; text.Contains(at, 2); at += 2) {
    const int unit = isBigEndian ? text.U8(at) << 8 | text.U8(at + 1) : text.U16(at);
    narrowed += unit < 0x80 ? static_cast<char>(unit) : other;
  }
  return narrowed;
}

}  // namespace kwa
