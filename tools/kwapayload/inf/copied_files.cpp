#include "inf/copied_files.h"

#include <set>
#include <utility>

#include "base/ascii_text.h"
#include "inf/models.h"

namespace kwa {
namespace {

// Microsoft, "SetupDiGetActualSectionToInstall": the section for the platform, else the one for all Windows NT, else
// the undecorated one.
std::string ActualSection(const SetupInf& inf, const std::string& name, InfPlatform platform) {
  for (const std::string& decoration : {".NT" + PlatformName(platform), std::string(".NT")}) {
    if (inf.HasSection(name + decoration)) {
      return name + decoration;
    }
  }
  return name;
}

}  // namespace

// Microsoft, "INF CopyFiles Directive": a value "@file" is a file, another value is a section of lines "target,
// source". Such a section has no decorated forms.
std::vector<InfCopiedFile> ReadCopiedFiles(const SetupInf& inf, InfPlatform platform) {
  std::vector<std::string> installSections = {ActualSection(inf, "ClassInstall32", platform)};
  for (const std::string& name : ReadModels(inf, platform).installSections) {
    const std::string section = ActualSection(inf, name, platform);
    installSections.push_back(section);
    installSections.push_back(section + ".CoInstallers");
  }
  std::vector<InfCopiedFile> files;
  std::set<std::pair<std::string, std::string>> knownFiles;
  const auto add = [&](const std::string& target, const std::string& source, std::size_t line) {
    if (!target.empty() && knownFiles.emplace(UpperCase(target), UpperCase(source)).second) {
      files.push_back({target, source, line});
    }
  };
  // Each section is read once, however many others name it.
  std::set<std::string> knownLists;
  std::set<std::string> knownSections;
  for (const std::string& installSection : installSections) {
    if (!knownSections.insert(UpperCase(installSection)).second) {
      continue;
    }
    for (const InfLine& line : inf.Lines(installSection)) {
      if (!IsSameText(line.key, "CopyFiles")) {
        continue;
      }
      for (const std::string& value : line.values) {
        if (value.substr(0, 1) == "@") {
          add(value.substr(1), value.substr(1), line.number);
        } else if (knownLists.insert(UpperCase(value)).second) {
          for (const InfLine& file : inf.Lines(value)) {
            add(file.Value(0), file.Value(1).empty() ? file.Value(0) : file.Value(1), file.number);
          }
        }
      }
    }
  }
  return files;
}

}  // namespace kwa
