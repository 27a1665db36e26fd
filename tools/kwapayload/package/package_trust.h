#pragma once

#include <optional>
#include <string>
#include <vector>

#include "installer/installer_file.h"
#include "trust/catalog.h"
#include "trust/signature.h"

namespace kwa {

// A catalog that the INF names, for x86 or x64 Windows.
struct PackageCatalog {
  std::string name;         // as the INF has it
  const ArchiveItem* item;  // null where it is not carried
  std::string fault;        // why it is unreadable; "" where it is readable or not carried
  Catalog catalog;
  std::size_t coveredCount = 0;  // of the files that are carried and that it must cover
};

// What vouches for a file that is carried.
struct FileTrust {
  const LocatedArchive* archive;
  const ArchiveItem* item;
  std::vector<Signature> signatures;         // that it has itself
  std::optional<bool> isCovered;             // by all catalogs that must; nothing where none must, or can be read
  std::vector<std::string> uncoveringNames;  // the catalogs that must cover it and do not
  std::string coveringLineEnds;              // see CoveringLineEnds
  bool isNamed = false;  // whether such a catalog names the file, and so covered another state of it
};

struct PackageTrust {
  std::vector<PackageCatalog> catalogs;
  std::vector<FileTrust> files;  // all, in the order of the archives
};

// Catalogs must cover the INF and what it lists for their platform, other catalogs apart. Without an INF, there are
// only signatures.
PackageTrust ReadPackageTrust(const InstallerFile& installer);

}  // namespace kwa
