#include "inf/inf_source_files.h"

#include <map>

#include "base/ascii_text.h"
#include "inf/setup_section.h"

namespace kwa {

std::vector<InfSourceFile> ReadInfSourceFiles(const InfText& inf) {
  constexpr std::string_view kSeparators = " \t\\";
  std::map<std::string, std::string> diskFolders;
  for (const SetupLine& disk : ReadSetupSection(inf, "SourceDisksNames")) {
    constexpr std::size_t kPath = 3;
    // A disk of several platforms has the folder of whichever has one.
    std::string& folder = diskFolders[disk.key];
    folder = folder.empty() ? Trimmed(disk.Value(kPath), kSeparators) : folder;
  }
  std::vector<InfSourceFile> files;
  for (const SetupLine& line : ReadSetupSection(inf, "SourceDisksFiles")) {
    const std::string& diskFolder = diskFolders[line.Value(0)];
    const std::string ownFolder(Trimmed(line.Value(1), kSeparators));
    const bool isBoth = !diskFolder.empty() && !ownFolder.empty();
    files.push_back({line.key, line.platform, diskFolder + (isBoth ? "\\" : "") + ownFolder});
  }
  return files;
}

}  // namespace kwa
