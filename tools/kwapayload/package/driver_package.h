#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "dpinst/device_families.h"
#include "inf/platform_inf.h"
#include "inf/setup_inf.h"
#include "package/package_identity.h"
#include "payload/archive_reader.h"

namespace kwa {

// The driver package as its INF describes it, read once.
struct DriverPackage {
  ArchiveItem inf;  // the INF itself
  PackageIdentity identity;
  const DeviceFamily* family;          // that the display name chooses; null for none
  std::optional<SetupInf> setup;       // nothing where it cannot be known what Windows reads of the INF
  std::vector<PlatformInf> platforms;  // likewise none; otherwise one for each of kInfPlatforms
};

// The package whose INF the installer takes: of the items whose names end in ".inf" without regard to case, the first
// by upper-case name, which is the first that the file system lists. Nothing where no item is an INF.
std::optional<DriverPackage> ReadDriverPackage(const std::vector<ArchiveItem>& items);

// The item with that name, without regard to case as on Windows, or null.
const ArchiveItem* FindItem(const std::vector<ArchiveItem>& items, std::string_view name);

}  // namespace kwa
