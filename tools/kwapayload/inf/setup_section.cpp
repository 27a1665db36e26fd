#include "inf/setup_section.h"

#include <algorithm>
#include <map>
#include <utility>

#include "base/ascii_text.h"

namespace kwa {
namespace {

constexpr std::size_t kTextLimit = 260;
// Far more than an INF has: what is made to fill the memory does not.
constexpr std::size_t kMaxLines = 100000;
constexpr std::size_t kMaxValues = 16;
using Strings = std::map<std::string, std::string>;  // by upper-case name

// Takes the text up to a separator outside quotes off *line, and the separator.
std::string_view TakeUpTo(std::string_view* line, char separator) {
  bool isQuoted = false;
  std::size_t end = 0;
  while (end < line->size() && (isQuoted || (*line)[end] != separator)) {
    isQuoted = isQuoted != ((*line)[end] == '"');
    ++end;
  }
  const std::string_view part = line->substr(0, end);
  line->remove_prefix(end < line->size() ? end + 1 : end);
  return part;
}

std::string Unquoted(std::string_view text) {
  text = Trimmed(text);
  if (text.size() >= 2 && text.front() == '"' && text.back() == '"') {
    text = text.substr(1, text.size() - 2);
  }
  return std::string(text.substr(0, kTextLimit));
}

// With the values for each %name%, "%" for "%%", and unknown names as they are.
std::string WithStrings(std::string_view text, const Strings& strings) {
  std::string whole;
  while (whole.size() < kTextLimit) {
    const std::size_t begin = text.find('%');
    const std::size_t end = begin == std::string_view::npos ? begin : text.find('%', begin + 1);
    if (end == std::string_view::npos) {
      break;
    }
    const auto known = strings.find(UpperCase(text.substr(begin + 1, end - begin - 1)));
    whole += text.substr(0, begin);
    whole += known != strings.end() ? known->second : end == begin + 1 ? "%" : text.substr(begin, end - begin);
    // What closes no known name may open one.
    text.remove_prefix(known != strings.end() || end == begin + 1 ? end + 1 : end);
  }
  whole += text;
  return whole.substr(0, kTextLimit);
}

std::vector<SetupLine> ReadLines(const InfText& inf, std::string_view section, const Strings& strings) {
  std::vector<SetupLine> lines;
  bool isInSection = false;
  std::string platform;
  for (std::string_view text = inf.Text(); !text.empty() && lines.size() < kMaxLines;) {
    std::string_view line = TakeLine(&text);
    line = Trimmed(TakeUpTo(&line, ';'));
    if (!line.empty() && line.front() == '[') {
      const std::string_view header = Trimmed(line.substr(1, line.find(']') - 1));
      const std::size_t point = std::min(header.find('.'), header.size());
      isInSection = IsSameText(header.substr(0, point), section);
      platform = point == header.size() ? "" : LowerCase(header.substr(point + 1));
    } else if (isInSection && line.find('=') != std::string_view::npos) {
      SetupLine read = {platform, WithStrings(Unquoted(TakeUpTo(&line, '=')), strings), {}};
      do {
        read.values.push_back(WithStrings(Unquoted(TakeUpTo(&line, ',')), strings));
      } while (!line.empty() && read.values.size() < kMaxValues);
      lines.push_back(std::move(read));
    }
  }
  return lines;
}

}  // namespace

std::vector<SetupLine> ReadSetupSection(const InfText& inf, std::string_view section) {
  Strings strings;
  for (const SetupLine& line : ReadLines(inf, "Strings", {})) {
    if (line.platform.empty()) {
      strings.emplace(UpperCase(line.key), line.Value(0));
    }
  }
  return ReadLines(inf, section, strings);
}

}  // namespace kwa
