#pragma once

#include <cstddef>
#include <optional>
#include <set>
#include <string>
#include <vector>

#include "package/driver_package.h"
#include "trust/catalog.h"
#include "trust/signature.h"

namespace kwa {

// A catalog that the INF names, for x86 or x64 Windows.
struct PackageCatalog {
  std::string name;                        // as the INF has it
  std::optional<ArchiveItem> item;         // nothing where it is not carried
  std::optional<Result<Catalog>> catalog;  // likewise
  std::set<std::string> requiredFiles;     // the upper-case names of the files that it must cover
  std::size_t coveredCount = 0;            // how many of them that are carried it covers
};

// What vouches for a carried file.
struct FileTrust {
  std::vector<Signature> signatures;            // those of the file itself; of a catalog, the catalog's
  std::optional<bool> isCovered;                // by all catalogs that must; nothing where none must or can be read
  std::vector<std::string> uncoveringNames;     // the catalogs that must cover it and do not
  std::optional<std::string> coveringLineEnds;  // see CoveringLineEnds
  bool isNamed = false;  // whether such a catalog names the file, and so covered another state of it
};

struct PackageTrust {
  std::vector<PackageCatalog> catalogs;
  std::vector<FileTrust> files;  // for each item, in the order of the items

  // What an item is as a catalog of the package, or null.
  const PackageCatalog* CatalogOf(const ArchiveItem& item) const;
};

// Judges the items by the package's catalogs, which must cover the INF and the files that it lists for their platform,
// except other catalogs. Without a package, only the signatures of the items are read.
PackageTrust ReadPackageTrust(const std::vector<ArchiveItem>& items, const std::optional<DriverPackage>& package);

}  // namespace kwa
