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

class CopiedFilesReader {
 public:
  explicit CopiedFilesReader(const SetupInf& parsed) : inf(parsed) {}

  void ReadInstallSection(const std::string& section) {
    if (!knownSections.insert(UpperCase(section)).second) {
      return;
    }
    for (const InfLine& line : inf.Lines(section)) {
      if (!IsSameText(line.key, "CopyFiles")) {
        continue;
      }
      for (const std::string& value : line.values) {
        if (value.substr(0, 1) == "@") {
          Add(value.substr(1), value.substr(1), line.number);
        } else {
          ReadList(value);
        }
      }
    }
  }

  std::vector<InfCopiedFile> TakeFiles() { return std::move(files); }

 private:
  // Reads a section of lines "target, source, unused, flags". Microsoft, "INF CopyFiles Directive": such a section has
  // no decorated forms.
  void ReadList(const std::string& section) {
    if (!knownLists.insert(UpperCase(section)).second) {
      return;
    }
    for (const InfLine& line : inf.Lines(section)) {
      Add(line.Value(0), line.Value(1).empty() ? line.Value(0) : line.Value(1), line.number);
    }
  }

  void Add(const std::string& target, const std::string& source, std::size_t line) {
    if (!target.empty() && knownFiles.emplace(UpperCase(target), UpperCase(source)).second) {
      files.push_back({target, source, line});
    }
  }

  const SetupInf& inf;
  std::vector<InfCopiedFile> files;
  std::set<std::string> knownSections;
  std::set<std::string> knownLists;
  std::set<std::pair<std::string, std::string>> knownFiles;
};

}  // namespace

std::vector<InfCopiedFile> ReadCopiedFiles(const SetupInf& inf, InfPlatform platform) {
  CopiedFilesReader reader(inf);
  for (const std::string& name : ReadModels(inf, platform).installSections) {
    const std::string section = ActualSection(inf, name, platform);
    reader.ReadInstallSection(section);
    reader.ReadInstallSection(section + ".CoInstallers");
  }
  reader.ReadInstallSection(ActualSection(inf, "ClassInstall32", platform));
  return reader.TakeFiles();
}

}  // namespace kwa
