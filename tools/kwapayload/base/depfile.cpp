#include "base/depfile.h"

namespace kwa {
namespace {

std::string EscapedForMake(const std::filesystem::path& path) {
  std::string result;
  for (const char character : path.generic_string()) {
    if (character == ' ' || character == '#') {
      result += '\\';
    } else if (character == '$') {
      result += '$';
    }
    result += character;
  }
  return result;
}

}  // namespace

std::string MakeDepfile(const std::filesystem::path& target, const std::vector<std::filesystem::path>& sources) {
  std::string text = EscapedForMake(target) + ":";
  for (const std::filesystem::path& source : sources) {
    text += " \\\n  " + EscapedForMake(source);
  }
  return text + "\n";
}

}  // namespace kwa
