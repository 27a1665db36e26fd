#include "package/driver_package.h"

#include <algorithm>

#include "base/ascii_text.h"
#include "inf/inf_text.h"
#include "payload/entry_name.h"

namespace kwa {

std::optional<DriverPackage> ReadDriverPackage(const std::vector<ArchiveItem>& items) {
  const ArchiveItem* inf = nullptr;
  for (const ArchiveItem& item : items) {
    if (IsInfName(item.name) && (inf == nullptr || UpperCase(item.name) < UpperCase(inf->name))) {
      inf = &item;
    }
  }
  if (inf == nullptr) {
    return std::nullopt;
  }
  const InfText text(inf->body);
  DriverPackage package = {*inf, ReadHostPackageIdentity(text), nullptr, std::nullopt, {}};
  package.family = FindDeviceFamily(package.identity.displayName.text.c_str());
  if (text.Encoding()) {
    package.setup = SetupInf(text);
    for (const InfPlatform platform : kInfPlatforms) {
      package.platforms.push_back(ReadPlatformInf(*package.setup, platform));
    }
  }
  return package;
}

const ArchiveItem* FindItem(const std::vector<ArchiveItem>& items, std::string_view name) {
  const auto found =
      std::find_if(items.begin(), items.end(), [name](const ArchiveItem& item) { return IsSameText(item.name, name); });
  return found == items.end() ? nullptr : &*found;
}

}  // namespace kwa
