#include "report/escaped_text.h"

#include <utf8.h>

#include <algorithm>
#include <cstdint>
#include <iterator>
#include <utility>

namespace kwa {
namespace {

// The first and the last character of each range.
constexpr std::pair<std::uint32_t, std::uint32_t> kUnsafe[] = {
    {0x0000, 0x001F},    // C0 controls
    {0x007F, 0x009F},    // DEL, C1 controls
    {0x061C, 0x061C},    // Arabic letter mark, a bidirectional control
    {0x200B, 0x200F},    // zero width; bidirectional marks
    {0x2028, 0x202E},    // line and paragraph separators; bidirectional embeddings and overrides
    {0x2060, 0x206F},    // invisible operators; bidirectional isolates; deprecated format characters
    {0xFEFF, 0xFEFF},    // byte-order mark
    {0xFFF9, 0xFFFB},    // interlinear annotations
    {0xE0000, 0xE007F},  // tags
};

bool IsUnsafe(std::uint32_t character) {
  return std::any_of(std::begin(kUnsafe), std::end(kUnsafe),
                     [character](const auto& range) { return character >= range.first && character <= range.second; });
}

void AppendHex(std::string_view bytes, std::string* result) {
  constexpr char kDigits[] = "0123456789ABCDEF";
  for (const char byte : bytes) {
    *result +=
        {'\\', 'x', kDigits[static_cast<unsigned char>(byte) / 16], kDigits[static_cast<unsigned char>(byte) % 16]};
  }
}

}  // namespace

std::string Escaped(std::string_view text) {
  std::string result;
  const char* at = text.data();
  const char* const end = at + text.size();
  bool isPlain = text.find("\\x") == std::string_view::npos;
  while (at != end) {
    for (const char* const invalid = utf8::find_invalid(at, end); at != invalid;) {
      const char* const begin = at;
      const std::uint32_t character = utf8::unchecked::next(at);
      const std::string_view bytes(begin, static_cast<std::size_t>(at - begin));
      if (IsUnsafe(character)) {
        AppendHex(bytes, &result);
        isPlain = false;
      } else {
        result += bytes == "\\" ? "\\\\" : bytes;
      }
    }
    if (at != end) {
      AppendHex({at++, 1}, &result);
      isPlain = false;
    }
  }
  return isPlain ? std::string(text) : result;
}

std::string Wrapped(std::string line, std::size_t width) {
  const std::size_t begin = std::min(line.find_first_not_of(' '), line.size());
  const std::size_t gap = line.find("  ", begin);
  std::size_t indent = gap == std::string::npos ? begin : std::min(line.find_first_not_of(' ', gap), line.size());
  constexpr std::size_t kOwnLine = 2;  // where a word begins that is too long for its column
  std::string wrapped;
  while (line.size() > width) {
    std::size_t end = line.rfind(' ', width);
    if (end == std::string::npos || end <= indent) {
      if (indent <= kOwnLine) {
        break;
      }
      end = indent - 1;
      indent = kOwnLine;
    }
    wrapped += line.substr(0, line.find_last_not_of(' ', end) + 1) + '\n';
    line = std::string(indent, ' ') + line.substr(end + 1);
  }
  return wrapped + line;
}

}  // namespace kwa
