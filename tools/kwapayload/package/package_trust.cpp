#include "package/package_trust.h"

#include <algorithm>
#include <set>
#include <utility>

#include "base/ascii_text.h"
#include "content/text_kind.h"
#include "inf/catalog_names.h"
#include "inf/inf_source_files.h"
#include "trust/authenticode.h"

namespace kwa {
namespace {

// The platforms that the installer runs on, as INFs call them.
constexpr const char* kPlatforms[] = {"x86", "amd64"};

const ArchiveItem* FindItem(const InstallerFile& installer, const std::string& name) {
  for (const LocatedArchive& located : installer.archives) {
    for (const ArchiveItem& item : located.archive.items) {
      if (IsSameText(item.name, name)) {
        return &item;
      }
    }
  }
  return nullptr;
}

// For each catalog, by its index, the upper-case names of the files that it must cover.
using Duties = std::vector<std::set<std::string>>;

Duties ReadCatalogs(const InstallerFile& installer, const ArchiveItem& infItem, std::vector<PackageCatalog>* catalogs) {
  Duties duties;
  const InfText inf(infItem.body);
  const std::vector<InfSourceFile> sources = ReadInfSourceFiles(inf);
  for (const char* const platform : kPlatforms) {
    const std::string name = CatalogName(inf, platform);
    if (name.empty()) {
      continue;
    }
    auto known = std::find_if(catalogs->begin(), catalogs->end(),
                              [&name](const PackageCatalog& catalog) { return IsSameText(catalog.name, name); });
    if (known == catalogs->end()) {
      known = catalogs->insert(known, {name, FindItem(installer, name), "", {}, 0});
      duties.emplace_back();
      if (known->item != nullptr) {
        ReadCatalog(ByteSpan(known->item->body), &known->catalog, &known->fault);
      }
    }
    std::set<std::string>& duty = duties[static_cast<std::size_t>(known - catalogs->begin())];
    duty.insert(UpperCase(infItem.name));
    for (const InfSourceFile& source : sources) {
      if (source.platform.empty() || source.platform == platform) {
        duty.insert(UpperCase(source.name));
      }
    }
  }
  for (const PackageCatalog& catalog : *catalogs) {
    for (std::set<std::string>& duty : duties) {
      duty.erase(UpperCase(catalog.name));
    }
  }
  return duties;
}

void JudgeCoverage(const Duties& duties, FileDigests* digests, std::vector<PackageCatalog>* catalogs, FileTrust* file) {
  const std::string name = UpperCase(file->item->name);
  for (std::size_t i = 0; i < catalogs->size(); ++i) {
    PackageCatalog& catalog = (*catalogs)[i];
    if (catalog.item == nullptr || !catalog.fault.empty() || duties[i].count(name) == 0) {
      continue;
    }
    const bool isCovered = Covers(catalog.catalog, digests);
    file->isCovered = file->isCovered.value_or(true) && isCovered;
    if (isCovered) {
      ++catalog.coveredCount;
    } else {
      file->uncoveringNames.push_back(catalog.name);
      file->isNamed = file->isNamed || catalog.catalog.fileNames.count(name) != 0;
      if (!TextKind(digests->File()).empty()) {
        file->coveringLineEnds = CoveringLineEnds(catalog.catalog, digests->File());
      }
    }
  }
}

}  // namespace

PackageTrust ReadPackageTrust(const InstallerFile& installer) {
  PackageTrust trust;
  Duties duties;
  const ArchiveItem* const inf = FindInf(installer);
  if (inf != nullptr && InfText(inf->body).Fault().empty()) {
    duties = ReadCatalogs(installer, *inf, &trust.catalogs);
  }
  for (const LocatedArchive& located : installer.archives) {
    for (const ArchiveItem& item : located.archive.items) {
      FileDigests digests(item.body);
      FileTrust file = {&located, &item, ReadEmbeddedSignatures(&digests), {}, {}, "", false};
      JudgeCoverage(duties, &digests, &trust.catalogs, &file);
      trust.files.push_back(std::move(file));
    }
  }
  return trust;
}

}  // namespace kwa
