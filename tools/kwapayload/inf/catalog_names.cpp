#include "inf/catalog_names.h"

#include "base/ascii_text.h"
#include "inf/setup_section.h"

namespace kwa {

std::string CatalogName(const InfText& inf, const std::string& platform) {
  const std::vector<SetupLine> lines = ReadSetupSection(inf, "Version");
  for (const std::string& key :
       {"CatalogFile.nt" + platform, std::string("CatalogFile.nt"), std::string("CatalogFile")}) {
    for (const SetupLine& line : lines) {
      if (line.platform.empty() && IsSameText(line.key, key) && !line.Value(0).empty()) {
        return line.Value(0);
      }
    }
  }
  return "";
}

}  // namespace kwa
