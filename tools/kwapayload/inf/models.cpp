#include "inf/models.h"

#include <algorithm>
#include <set>

#include "base/ascii_text.h"

namespace kwa {
namespace {

// Microsoft, "INF Manufacturer Section": the form is nt[Architecture][.version and more]. Without an architecture, the
// models are for x86 alone since Windows Server 2003 SP1, the first Windows for x64.
bool IsForPlatform(const std::string& decoration, InfPlatform platform) {
  const std::string name = UpperCase(decoration.substr(0, decoration.find('.')));
  return name == UpperCase("NT" + PlatformName(platform)) || (name == "NT" && platform == InfPlatform::X86);
}

// Texts in their order, each once without regard to case.
class UniqueTexts {
 public:
  void Add(const std::string& text) {
    if (!text.empty() && known.insert(UpperCase(text)).second) {
      texts.push_back(text);
    }
  }
  const std::vector<std::string>& Texts() const { return texts; }

 private:
  std::vector<std::string> texts;
  std::set<std::string> known;
};

}  // namespace

InfModels ReadModels(const SetupInf& inf, InfPlatform platform) {
  UniqueTexts sections;
  UniqueTexts decorations;
  std::set<std::string> usedDecorations;
  for (const InfLine& line : inf.Lines("Manufacturer")) {
    // Also beside decorations: Windows 2000, and a Windows that no decoration fits, use the undecorated section.
    if (platform == InfPlatform::X86) {
      sections.Add(line.values[0]);
    }
    for (std::size_t i = 1; i < line.values.size(); ++i) {
      const std::string& decoration = line.values[i];
      if (IsForPlatform(decoration, platform)) {
        const std::string section = line.values[0] + "." + decoration;
        sections.Add(section);
        decorations.Add(decoration);
        if (!inf.Lines(section).empty()) {
          usedDecorations.insert(UpperCase(decoration));
        }
      }
    }
  }
  // The lines of the sections are "description = install section, hardware ID, compatible IDs".
  UniqueTexts installSections;
  UniqueTexts hardwareIds;
  for (const std::string& section : sections.Texts()) {
    for (const InfLine& line : inf.Lines(section)) {
      installSections.Add(line.values[0]);
      std::for_each(line.values.begin() + 1, line.values.end(), [&](const std::string& id) { hardwareIds.Add(id); });
    }
  }
  InfModels models = {{}, installSections.Texts(), hardwareIds.Texts()};
  for (const std::string& decoration : decorations.Texts()) {
    models.targets.push_back({decoration, usedDecorations.count(UpperCase(decoration)) != 0});
  }
  return models;
}

}  // namespace kwa
