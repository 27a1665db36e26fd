#include "inf/inf_source_files.h"

#include "inf/profile_text.h"
#include "payload/entry_name.h"

namespace kwa {
namespace {

constexpr std::size_t kLineLimit = 1024;
constexpr std::size_t kNameLimit = 260;

std::string Trimmed(const std::string& text) {
  const std::size_t begin = text.find_first_not_of(" \t");
  return begin == std::string::npos ? "" : text.substr(begin, text.find_last_not_of(" \t") + 1 - begin);
}

// The line without its comment.
std::string WithoutComment(const std::string& line) {
  bool isQuoted = false;
  for (std::size_t i = 0; i < line.size(); ++i) {
    isQuoted = isQuoted != (line[i] == '"');
    if (line[i] == ';' && !isQuoted) {
      return line.substr(0, i);
    }
  }
  return line;
}

bool IsSourceDisksFiles(const std::string& section) {
  const std::string upper = UpperCaseName(section);
  return upper == "SOURCEDISKSFILES" || upper.rfind("SOURCEDISKSFILES.", 0) == 0;
}

}  // namespace

std::vector<std::string> ReadInfSourceFiles(ByteSpan inf) {
  std::vector<std::string> names;
  const ProfileText text(inf);
  bool isInSection = false;
  for (std::uint64_t begin = 0; begin < text.Size();) {
    std::uint64_t end = begin;
    while (end < text.Size() && text[end] != u'\n' && text[end] != u'\r') {
      ++end;
    }
    const std::string line = Trimmed(WithoutComment(text.ToAnsi(begin, end, kLineLimit)));
    begin = end + 1;
    if (!line.empty() && line.front() == '[') {
      isInSection = IsSourceDisksFiles(Trimmed(line.substr(1, line.find(']') - 1)));
      continue;
    }
    const std::size_t equals = line.find('=');
    if (!isInSection || equals == std::string::npos) {
      continue;
    }
    std::string name = Trimmed(line.substr(0, equals));
    if (name.size() >= 2 && name.front() == '"' && name.back() == '"') {
      name = name.substr(1, name.size() - 2);
    }
    names.push_back(name.substr(0, kNameLimit));
  }
  return names;
}

}  // namespace kwa
