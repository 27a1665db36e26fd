#include "inf/inf_source_files.h"

#include "base/ascii_text.h"

namespace kwa {
namespace {

constexpr std::size_t kNameLimit = 260;

std::string_view WithoutComment(std::string_view line) {
  bool isQuoted = false;
  for (std::size_t i = 0; i < line.size(); ++i) {
    isQuoted = isQuoted != (line[i] == '"');
    if (line[i] == ';' && !isQuoted) {
      return line.substr(0, i);
    }
  }
  return line;
}

bool IsSourceDisksFiles(std::string_view section) {
  constexpr std::string_view kName = "SourceDisksFiles";
  return IsSameText(section.substr(0, section.find('.')), kName);
}

}  // namespace

std::vector<std::string> ReadInfSourceFiles(const InfText& inf) {
  std::vector<std::string> names;
  bool isInSection = false;
  for (std::string_view text = inf.Text(); !text.empty();) {
    const std::string_view line = Trimmed(WithoutComment(TakeLine(&text)));
    if (!line.empty() && line.front() == '[') {
      isInSection = IsSourceDisksFiles(Trimmed(line.substr(1, line.find(']') - 1)));
      continue;
    }
    const std::size_t equals = line.find('=');
    if (!isInSection || equals == std::string_view::npos) {
      continue;
    }
    std::string_view name = Trimmed(line.substr(0, equals));
    if (name.size() >= 2 && name.front() == '"' && name.back() == '"') {
      name = name.substr(1, name.size() - 2);
    }
    names.emplace_back(name.substr(0, kNameLimit));
  }
  return names;
}

}  // namespace kwa
