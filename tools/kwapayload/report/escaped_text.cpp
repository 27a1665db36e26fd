#include "report/escaped_text.h"

namespace kwa {
namespace {

void AppendHex(char character, std::string* result) {
  constexpr char kDigits[] = "0123456789ABCDEF";
  const auto byte = static_cast<unsigned char>(character);
  *result += "\\x";
  *result += kDigits[byte / 16];
  *result += kDigits[byte % 16];
}

bool IsControl(char character) {
  const auto byte = static_cast<unsigned char>(character);
  return byte < 0x20 || byte == 0x7F;
}

}  // namespace

std::string EscapedText(std::string_view text) {
  std::string result;
  for (const char character : text) {
    if (character == '\\') {
      result += "\\\\";
    } else if (IsControl(character) || static_cast<unsigned char>(character) > 0x7E) {
      AppendHex(character, &result);
    } else {
      result += character;
    }
  }
  return result;
}

std::string ShownPath(const std::filesystem::path& path) {
  std::string result;
  for (const char character : path.string()) {
    if (IsControl(character)) {
      AppendHex(character, &result);
    } else {
      result += character;
    }
  }
  return result;
}

}  // namespace kwa
