#pragma once

#include <cstddef>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <vector>

#include "dpinst/device_families.h"
#include "inf/platform_inf.h"
#include "inf/setup_inf.h"
#include "package/package_identity.h"
#include "payload/archive_reader.h"
#include "trust/catalog.h"
#include "trust/signature.h"

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

// A catalog that the INF names, for x86 or x64 Windows.
struct PackageCatalog {
  std::string name;                        // as the INF has it
  std::optional<Result<Catalog>> catalog;  // nothing where it is not carried
  std::set<std::string> requiredFiles;     // the upper-case names of the files that it must cover
  std::size_t coveredCount = 0;            // how many of them that are carried it covers
};

// What vouches for a carried file.
struct FileTrust {
  std::shared_ptr<const PackageCatalog> catalog;  // null for what is no catalog of the package; carried
  std::vector<Signature> signatures;              // those of the file itself; of a catalog, the catalog's
  std::optional<bool> isCovered;                  // by all catalogs that must; nothing where none must or can be read
  std::vector<std::string> uncoveringNames;       // the catalogs that must cover it and do not
  std::optional<std::string> coveringLineEnds;    // see CoveringLineEnds
  bool isNamed = false;  // whether such a catalog names the file, and so covered another state of it
};

struct PackageTrust {
  std::vector<std::shared_ptr<PackageCatalog>> catalogs;
  std::vector<FileTrust> files;  // for each item, in the order of the items
};

// Judges the items by the package's catalogs, which must cover the INF and the files that it lists for their platform,
// except other catalogs. Without a package, only the signatures of the items are read.
PackageTrust ReadPackageTrust(const std::vector<ArchiveItem>& items, const std::optional<DriverPackage>& package);

}  // namespace kwa
