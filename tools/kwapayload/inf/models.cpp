#include "inf/models.h"

#include <map>
#include <set>
#include <utility>

#include "base/ascii_text.h"

namespace kwa {
namespace {

// Microsoft, "INF Manufacturer Section": the form is nt[Architecture][.version and more]. Without an architecture, the
// models are for x86 alone since Windows Server 2003 SP1, the first Windows for x64 included.
bool IsForPlatform(const std::string& decoration, InfPlatform platform) {
  const std::string name = UpperCase(decoration.substr(0, decoration.find('.')));
  return name == UpperCase("NT" + PlatformName(platform)) || (name == "NT" && platform == InfPlatform::X86);
}

class ModelsReader {
 public:
  ModelsReader(const SetupInf& parsed, InfPlatform wanted) : inf(parsed), platform(wanted) {}

  InfModels Read() {
    for (const InfLine& line : inf.Lines("Manufacturer")) {
      // Also with decorations: Windows 2000 and a Windows that no decoration fits use the undecorated section.
      if (platform == InfPlatform::X86) {
        ReadSection(line.Value(0));
      }
      for (std::size_t i = 1; i < line.values.size(); ++i) {
        const std::string& decoration = line.values[i];
        if (IsForPlatform(decoration, platform)) {
          const bool hasModels = ReadSection(line.Value(0) + "." + decoration);
          AddTarget(decoration, hasModels);
        }
      }
    }
    return std::move(models);
  }

 private:
  // Returns whether the section has models: "description = install section, hardware ID, compatible IDs".
  bool ReadSection(const std::string& name) {
    const std::vector<InfLine>& lines = inf.Lines(name);
    if (knownSections.insert(UpperCase(name)).second) {
      for (const InfLine& line : lines) {
        AddOnce(line.Value(0), &knownInstallSections, &models.installSections);
        for (std::size_t i = 1; i < line.values.size(); ++i) {
          AddOnce(line.values[i], &knownIds, &models.hardwareIds);
        }
      }
    }
    return !lines.empty();
  }

  void AddTarget(const std::string& decoration, bool hasModels) {
    const auto added = knownTargets.emplace(UpperCase(decoration), models.targets.size());
    if (added.second) {
      models.targets.push_back({decoration, false});
    }
    InfTarget& target = models.targets[added.first->second];
    target.hasModels = target.hasModels || hasModels;
  }

  static void AddOnce(const std::string& text, std::set<std::string>* known, std::vector<std::string>* list) {
    if (!text.empty() && known->insert(UpperCase(text)).second) {
      list->push_back(text);
    }
  }

  const SetupInf& inf;
  const InfPlatform platform;
  InfModels models;
  std::set<std::string> knownSections;
  std::set<std::string> knownInstallSections;
  std::set<std::string> knownIds;
  std::map<std::string, std::size_t> knownTargets;  // indexes of models.targets
};

}  // namespace

InfModels ReadModels(const SetupInf& inf, InfPlatform platform) {
  return ModelsReader(inf, platform).Read();
}

}  // namespace kwa
