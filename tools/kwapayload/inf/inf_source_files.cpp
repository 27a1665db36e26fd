#include "inf/inf_source_files.h"

#include <map>

#include "base/ascii_text.h"
#include "inf/setup_section.h"

namespace kwa {
namespace {

// As a path is written behind a backslash, or "." for the INF's own folder.
std::string Folder(const std::string& value) {
  const std::string_view folder = Trimmed(value, " \t\\");
  return folder == "." ? "" : std::string(folder);
}

// Whether the installer runs there. Setup's names for other platforms are of no use to it.
bool IsOurs(const std::string& platform) {
  return platform.empty() || platform == "x86" || platform == "amd64";
}

}  // namespace

std::vector<InfSourceFile> ReadInfSourceFiles(const InfText& inf) {
  std::map<std::string, std::string> diskFolders;
  for (const SetupLine& disk : ReadSetupSection(inf, "SourceDisksNames")) {
    constexpr std::size_t kPath = 3;
    // A disk of several platforms has the folder of whichever has one.
    std::string& folder = diskFolders[disk.key];
    folder = folder.empty() && IsOurs(disk.platform) ? Folder(disk.Value(kPath)) : folder;
  }
  std::vector<InfSourceFile> files;
  for (const SetupLine& line : ReadSetupSection(inf, "SourceDisksFiles")) {
    if (!IsOurs(line.platform)) {
      continue;
    }
    const std::string& diskFolder = diskFolders[line.Value(0)];
    const std::string ownFolder = Folder(line.Value(1));
    const bool isBoth = !diskFolder.empty() && !ownFolder.empty();
    files.push_back({line.key, line.platform, diskFolder + (isBoth ? "\\" : "") + ownFolder});
  }
  return files;
}

}  // namespace kwa
