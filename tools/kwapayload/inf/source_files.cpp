#include "inf/source_files.h"

#include <charconv>
#include <cstdint>
#include <map>
#include <optional>
#include <set>
#include <utility>

#include "base/ascii_text.h"

namespace kwa {
namespace {

// Microsoft, "SetupGetIntField": a decimal number, or a hexadecimal one after 0x. Disk numbers are not negative and
// have at most 4 bytes ("INF SourceDisksNames Section").
std::optional<std::uint32_t> DiskNumber(std::string_view text) {
  if (!text.empty() && text.front() == '+') {
    text.remove_prefix(1);
  }
  const bool isHexadecimal = IsSameText(text.substr(0, 2), "0x");
  text.remove_prefix(isHexadecimal ? 2 : 0);
  std::uint32_t number = 0;
  const char* const end = text.data() + text.size();
  const auto read = std::from_chars(text.data(), end, number, isHexadecimal ? 16 : 10);
  return read.ec == std::errc() && read.ptr == end ? std::optional(number) : std::nullopt;
}

// A folder without backslashes around it, or "" for ".", the folder of the INF.
std::string Folder(const std::string& value) {
  const std::string_view folder = Trimmed(value, " \t\\");
  return folder == "." ? "" : std::string(folder);
}

// Microsoft, "INF SourceDisksFiles Section" and "INF SourceDisksNames Section": Setup looks into the section for the
// platform first. The decorations are "x86" and "amd64", without "nt".
std::vector<const InfLine*> PlatformLines(const SetupInf& inf, const std::string& section, InfPlatform platform) {
  std::vector<const InfLine*> lines;
  for (const std::string& name : {section + "." + PlatformName(platform), section}) {
    for (const InfLine& line : inf.Lines(name)) {
      lines.push_back(&line);
    }
  }
  return lines;
}

}  // namespace

std::vector<InfSourceFile> ReadSourceFiles(const SetupInf& inf, InfPlatform platform) {
  std::map<std::uint32_t, std::string> diskFolders;
  for (const InfLine* const line : PlatformLines(inf, "SourceDisksNames", platform)) {
    constexpr std::size_t kPath = 3;
    if (const auto disk = DiskNumber(line->key)) {
      diskFolders.emplace(*disk, Folder(line->Value(kPath)));
    }
  }
  std::vector<InfSourceFile> files;
  std::set<std::string> names;
  for (const InfLine* const line : PlatformLines(inf, "SourceDisksFiles", platform)) {
    if (line->key.empty() || !names.insert(UpperCase(line->key)).second) {
      continue;
    }
    const auto disk = DiskNumber(line->Value(0));
    const auto found = disk ? diskFolders.find(*disk) : diskFolders.end();
    const bool isDiskListed = found != diskFolders.end();
    std::string folder = isDiskListed ? found->second : "";
    const std::string ownFolder = Folder(line->Value(1));
    folder += (folder.empty() || ownFolder.empty() ? "" : "\\") + ownFolder;
    files.push_back({line->key, line->Value(0), isDiskListed, std::move(folder), line->number});
  }
  return files;
}

}  // namespace kwa
