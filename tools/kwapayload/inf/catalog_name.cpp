#include "inf/catalog_name.h"

namespace kwa {

// Microsoft, "INF Version Section": an undecorated entry is for the platforms without a decorated one.
std::string CatalogName(const SetupInf& inf, InfPlatform platform) {
  for (const std::string& decoration : {".nt" + PlatformName(platform), std::string(".nt"), std::string()}) {
    const InfLine* const line = inf.FindLine("Version", "CatalogFile" + decoration);
    if (line != nullptr && !line->Value(0).empty()) {
      return line->Value(0);
    }
  }
  return "";
}

}  // namespace kwa
