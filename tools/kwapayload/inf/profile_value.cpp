#include "inf/profile_value.h"

#include "base/ascii_text.h"

namespace kwa {
namespace {

// The characters that the platform removes around lines, names and values: blanks, and the old end-of-file character.
constexpr std::string_view kBlanks = " \t\v\f\x1A";

std::string_view UpToNul(std::string_view text) {
  return text.substr(0, text.find('\0'));
}

// Whether a line is the header of a section. The name ends at the last closing bracket.
bool ReadSectionHeader(std::string_view line, std::string_view* name) {
  const std::size_t closing = line.rfind(']');
  if (line.empty() || line.front() != '[' || closing == std::string_view::npos) {
    return false;
  }
  *name = Trimmed(line.substr(1, closing - 1), kBlanks);
  return true;
}

std::string_view WithoutQuotes(std::string_view value) {
  const bool isQuoted =
      value.size() >= 2 && (value.front() == '"' || value.front() == '\'') && value.back() == value.front();
  return isQuoted ? value.substr(1, value.size() - 2) : value;
}

}  // namespace

std::string ReadProfileValue(const InfText& inf, std::string_view section, std::string_view key, std::size_t limit) {
  bool inSection = false;
  for (std::string_view text = inf.Text(); !text.empty();) {
    const std::string_view line = Trimmed(TakeLine(&text), kBlanks);
    std::string_view header;
    if (ReadSectionHeader(line, &header)) {
      if (inSection) {
        break;
      }
      inSection = IsSameText(UpToNul(header), section);
    } else if (inSection) {
      const std::size_t equalsSign = line.find('=');
      if (!IsSameText(UpToNul(Trimmed(line.substr(0, equalsSign), kBlanks)), key)) {
        continue;
      }
      if (equalsSign == std::string_view::npos) {
        break;
      }
      const std::string_view value = UpToNul(Trimmed(line.substr(equalsSign + 1), kBlanks));
      return std::string(WithoutQuotes(value).substr(0, limit));
    }
  }
  return "";
}

}  // namespace kwa
