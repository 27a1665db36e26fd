#include "inf/platform_inf.h"

#include <algorithm>
#include <charconv>
#include <cstdint>
#include <iterator>
#include <map>
#include <optional>
#include <set>
#include <utility>

#include "base/ascii_text.h"

namespace kwa {
namespace {

// The longest path of Windows. Thousands of files can be in the folder of one disk.
constexpr std::size_t kMaxPath = 260;

// Texts in their order, each once without regard to case.
struct UniqueTexts {
  std::vector<std::string> texts;
  std::set<std::string> known;

  // Returns whether the text is new and not empty.
  bool Add(const std::string& text) {
    const bool isNew = !text.empty() && known.insert(UpperCase(text)).second;
    if (isNew) {
      texts.push_back(text);
    }
    return isNew;
  }
};

// Microsoft, "INF Version Section": an undecorated entry is for the platforms without a decorated one.
std::string CatalogName(const SetupInf& inf, InfPlatform platform) {
  for (const std::string& decoration : {".nt" + PlatformName(platform), std::string(".nt"), std::string()}) {
    if (const std::string name = inf.FindLine("Version", "CatalogFile" + decoration).Value(0); !name.empty()) {
      return name;
    }
  }
  return "";
}

// Microsoft, "INF Manufacturer Section": the form is nt[Architecture][.version and more]. Without an architecture, the
// models are for x86 alone since Windows Server 2003 SP1, the first Windows for x64.
bool IsForPlatform(const std::string& decoration, InfPlatform platform) {
  const std::string name = UpperCase(decoration.substr(0, decoration.find('.')));
  return name == UpperCase("NT" + PlatformName(platform)) || (name == "NT" && platform == InfPlatform::X86);
}

void ReadModels(const SetupInf& inf, PlatformInf* read) {
  UniqueTexts sections;
  UniqueTexts decorations;
  std::set<std::string> usedDecorations;
  for (const InfLine& line : inf.Lines("Manufacturer")) {
    // Also beside decorations: Windows 2000, and a Windows that no decoration fits, use the undecorated section.
    if (read->platform == InfPlatform::X86) {
      sections.Add(line.values[0]);
    }
    for (std::size_t i = 1; i < line.values.size(); ++i) {
      const std::string& decoration = line.values[i];
      if (IsForPlatform(decoration, read->platform)) {
        const std::string section = line.values[0] + "." + decoration;
        sections.Add(section);
        decorations.Add(decoration);
        if (!inf.Lines(section).empty()) {
          usedDecorations.insert(UpperCase(decoration));
        }
      }
    }
  }
  std::copy_if(decorations.texts.begin(), decorations.texts.end(), std::back_inserter(read->windowsVersions),
               [&](const std::string& decoration) { return usedDecorations.count(UpperCase(decoration)) != 0; });
  // The lines of the sections are "description = install section, hardware ID, compatible IDs".
  UniqueTexts installSections;
  UniqueTexts hardwareIds;
  for (const std::string& section : sections.texts) {
    for (const InfLine& line : inf.Lines(section)) {
      installSections.Add(line.values[0]);
      std::for_each(line.values.begin() + 1, line.values.end(), [&](const std::string& id) { hardwareIds.Add(id); });
    }
  }
  read->installSections = installSections.texts;
  read->hardwareIds = hardwareIds.texts;
}

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
  return folder == "." ? "" : std::string(folder.substr(0, kMaxPath));
}

// Microsoft, "INF SourceDisksFiles Section" and "INF SourceDisksNames Section": Setup looks into the section for the
// platform first. The decorations are "x86" and "amd64", without "nt".
std::vector<InfLine> PlatformLines(const SetupInf& inf, const std::string& section, InfPlatform platform) {
  std::vector<InfLine> lines = inf.Lines(section + "." + PlatformName(platform));
  const std::vector<InfLine>& others = inf.Lines(section);
  lines.insert(lines.end(), others.begin(), others.end());
  return lines;
}

void ReadSourceFiles(const SetupInf& inf, PlatformInf* read) {
  std::map<std::optional<std::uint32_t>, std::string> diskFolders;
  for (const InfLine& line : PlatformLines(inf, "SourceDisksNames", read->platform)) {
    constexpr std::size_t kPath = 3;
    diskFolders.emplace(DiskNumber(line.key), Folder(line.Value(kPath)));
  }
  diskFolders.erase(std::nullopt);
  UniqueTexts names;
  for (const InfLine& line : PlatformLines(inf, "SourceDisksFiles", read->platform)) {
    if (names.Add(line.key)) {
      const auto disk = diskFolders.find(DiskNumber(line.Value(0)));
      const bool isDiskListed = disk != diskFolders.end();
      const std::string folder = (isDiskListed ? disk->second + "\\" : "") + Folder(line.Value(1));
      read->sourceFiles.push_back({line.key, line.Value(0), isDiskListed, Folder(folder), line.number});
    }
  }
  read->sourceNames = std::move(names.known);
}

// Microsoft, "SetupDiGetActualSectionToInstall": the section for the platform, else the one for all Windows NT, else
// the undecorated one.
std::string ActualSection(const SetupInf& inf, const std::string& name, InfPlatform platform) {
  const std::string forPlatform = name + ".NT" + PlatformName(platform);
  return inf.HasSection(forPlatform) ? forPlatform : inf.HasSection(name + ".NT") ? name + ".NT" : name;
}

// Microsoft, "INF CopyFiles Directive": a value "@file" is a file, another value is a section of lines "target,
// source". Such a section has no decorated forms.
void ReadCopiedFiles(const SetupInf& inf, PlatformInf* read) {
  // Each section is read once, however many others name it.
  UniqueTexts sections;
  sections.Add(ActualSection(inf, "ClassInstall32", read->platform));
  for (const std::string& name : read->installSections) {
    const std::string section = ActualSection(inf, name, read->platform);
    sections.Add(section);
    sections.Add(section + ".CoInstallers");
  }
  std::set<std::pair<std::string, std::string>> knownFiles;
  const auto add = [&](const std::string& target, const std::string& source, std::size_t line) {
    if (!target.empty() && knownFiles.emplace(UpperCase(target), UpperCase(source)).second) {
      read->copiedFiles.push_back({target, source, line});
    }
  };
  std::set<std::string> lists;
  for (const std::string& section : sections.texts) {
    for (const InfLine& line : inf.Lines(section)) {
      if (!IsSameText(line.key, "CopyFiles")) {
        continue;
      }
      for (const std::string& value : line.values) {
        if (value.substr(0, 1) == "@") {
          add(value.substr(1), value.substr(1), line.number);
        } else if (lists.insert(UpperCase(value)).second) {
          for (const InfLine& file : inf.Lines(value)) {
            add(file.Value(0), file.Value(1).empty() ? file.Value(0) : file.Value(1), file.number);
          }
        }
      }
    }
  }
}

}  // namespace

std::string PlatformName(InfPlatform platform) {
  return platform == InfPlatform::X86 ? "x86" : "amd64";
}

PlatformInf ReadPlatformInf(const SetupInf& inf, InfPlatform platform) {
  PlatformInf read = {platform, CatalogName(inf, platform), {}, {}, {}, {}, {}, {}};
  ReadModels(inf, &read);
  ReadSourceFiles(inf, &read);
  ReadCopiedFiles(inf, &read);
  return read;
}

}  // namespace kwa
