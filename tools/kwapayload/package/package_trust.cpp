#include "package/package_trust.h"

#include <algorithm>

#include "base/ascii_text.h"
#include "content/file_kind.h"
#include "trust/signature.h"

namespace kwa {
namespace {

std::vector<PackageCatalog> ReadCatalogs(const std::vector<ArchiveItem>& items, const DriverPackage& package) {
  std::vector<PackageCatalog> catalogs;
  for (const PlatformInf& platform : package.platforms) {
    const std::string& name = platform.catalogName;
    if (name.empty()) {
      continue;
    }
    auto catalog = std::find_if(catalogs.begin(), catalogs.end(),
                                [&name](const PackageCatalog& known) { return IsSameText(known.name, name); });
    if (catalog == catalogs.end()) {
      catalog = catalogs.insert(catalog, {name, {}, {}, {}, 0});
      if (const ArchiveItem* const item = FindItem(items, name)) {
        catalog->item = *item;
        catalog->catalog = ReadCatalog(item->body);
      }
    }
    catalog->requiredFiles.insert(UpperCase(package.inf.name));
    for (const InfSourceFile& source : platform.sourceFiles) {
      catalog->requiredFiles.insert(UpperCase(source.name));
    }
  }
  for (PackageCatalog& catalog : catalogs) {
    for (const PackageCatalog& other : catalogs) {
      catalog.requiredFiles.erase(UpperCase(other.name));
    }
  }
  return catalogs;
}

// The signatures of a file, unless the files before it already have more than any package: each takes time.
std::vector<Signature> ReadSignatures(FileDigests& digests, std::size_t* count) {
  constexpr std::size_t kMaxSignatures = 256;
  if (*count <= kMaxSignatures) {
    std::vector<Signature> signatures = ReadEmbeddedSignatures(digests);
    *count += signatures.size();
    return signatures;
  }
  const PeImage* const image = digests.Image();
  if (image == nullptr || image->CertificateTable().Empty()) {
    return {};
  }
  return {{"", Failure("is one of more than 256 in all files, and not read"), false, {}}};
}

void JudgeCoverage(const ArchiveItem& item, FileDigests& digests, PackageTrust* trust, FileTrust* file) {
  const std::string name = UpperCase(item.name);
  for (PackageCatalog& owner : trust->catalogs) {
    if (!owner.catalog || !*owner.catalog || owner.requiredFiles.count(name) == 0) {
      continue;
    }
    const Catalog& catalog = **owner.catalog;
    const bool isCovered = Covers(catalog, digests);
    file->isCovered = file->isCovered.value_or(true) && isCovered;
    if (isCovered) {
      ++owner.coveredCount;
      continue;
    }
    file->uncoveringNames.push_back(owner.name);
    file->isNamed = file->isNamed || catalog.fileNames.count(name) != 0;
    if (ReadTextKind(item.body)) {
      file->coveringLineEnds = CoveringLineEnds(catalog, item.body);
    }
  }
}

}  // namespace

const PackageCatalog* PackageTrust::CatalogOf(const ArchiveItem& item) const {
  const auto found = std::find_if(catalogs.begin(), catalogs.end(), [&item](const PackageCatalog& catalog) {
    return catalog.item && catalog.item->name.data() == item.name.data();  // the same item, not one of its name
  });
  return found == catalogs.end() ? nullptr : &*found;
}

PackageTrust ReadPackageTrust(const std::vector<ArchiveItem>& items, const std::optional<DriverPackage>& package) {
  PackageTrust trust;
  if (package) {
    trust.catalogs = ReadCatalogs(items, *package);
  }
  std::size_t signatureCount = 0;
  for (const ArchiveItem& item : items) {
    FileDigests digests(item.body);
    FileTrust& file = trust.files.emplace_back();
    const PackageCatalog* const own = trust.CatalogOf(item);
    const bool isCatalog = own != nullptr && *own->catalog;
    file.signatures = isCatalog ? (*own->catalog)->signatures : ReadSignatures(digests, &signatureCount);
    JudgeCoverage(item, digests, &trust, &file);
  }
  return trust;
}

}  // namespace kwa
