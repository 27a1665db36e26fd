#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "dpinst/device_families.h"
#include "inf/copied_files.h"
#include "inf/inf_platform.h"
#include "inf/models.h"
#include "inf/setup_inf.h"
#include "inf/source_files.h"
#include "package/package_identity.h"
#include "payload/archive_reader.h"

namespace kwa {

// What the INF says for one platform.
struct PackagePlatform {
  InfPlatform platform;
  std::string catalogName;  // "" where it names none
  InfModels models;
  std::vector<InfSourceFile> sourceFiles;
  std::vector<InfCopiedFile> copiedFiles;
};

// What Setup reads of the INF.
struct PackageSetup {
  SetupInf inf;
  std::vector<PackagePlatform> platforms;  // one for each of kInfPlatforms
};

// The driver package as its INF describes it, read once.
struct DriverPackage {
  ArchiveItem inf;  // the INF itself
  PackageIdentity identity;
  const DeviceFamily* family;         // that the display name chooses; null for none
  std::optional<PackageSetup> setup;  // nothing where it cannot be known what Windows reads of the INF
};

// The package whose INF the installer takes: of the items whose names end in ".inf" without regard to case, the first
// by upper-case name, which is the first that the file system lists. Nothing where no item is an INF.
std::optional<DriverPackage> ReadDriverPackage(const std::vector<ArchiveItem>& items);

// The item with that name, without regard to case as on Windows, or null.
const ArchiveItem* FindItem(const std::vector<ArchiveItem>& items, std::string_view name);

}  // namespace kwa
