#include "report/wrapped_text.h"

#include <algorithm>

namespace kwa {

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
