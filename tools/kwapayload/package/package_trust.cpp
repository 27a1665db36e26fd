#include "package/package_trust.h"

#include <algorithm>
#include <set>
#include <utility>

#include "base/ascii_text.h"
#include "content/text_kind.h"
#include "trust/authenticode.h"

namespace kwa {
namespace {

// For each catalog, by its index, the upper-case names of the files that it must cover.
using RequiredFiles = std::vector<std::set<std::string>>;

// The catalog with that name; it is added if it is new.
std::size_t IndexOf(const std::string& name, const std::vector<ArchiveItem>& items,
                    std::vector<PackageCatalog>* catalogs) {
  const auto known = std::find_if(catalogs->begin(), catalogs->end(),
                                  [&name](const PackageCatalog& catalog) { return IsSameText(catalog.name, name); });
  if (known != catalogs->end()) {
    return static_cast<std::size_t>(known - catalogs->begin());
  }
  PackageCatalog& added = catalogs->emplace_back();
  added.name = name;
  if (const ArchiveItem* const item = FindItem(items, name)) {
    added.item = *item;
    added.catalog = ReadCatalog(item->body);
  }
  return catalogs->size() - 1;
}

RequiredFiles ReadCatalogs(const std::vector<ArchiveItem>& items, const DriverPackage& package,
                           std::vector<PackageCatalog>* catalogs) {
  RequiredFiles required;
  for (const PackagePlatform& platform : package.setup->platforms) {
    if (platform.catalogName.empty()) {
      continue;
    }
    const std::size_t index = IndexOf(platform.catalogName, items, catalogs);
    required.resize(catalogs->size());
    required[index].insert(UpperCase(package.inf.name));
    for (const InfSourceFile& source : platform.sourceFiles) {
      required[index].insert(UpperCase(source.name));
    }
  }
  for (const PackageCatalog& catalog : *catalogs) {
    for (std::set<std::string>& names : required) {
      names.erase(UpperCase(catalog.name));
    }
  }
  return required;
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

void JudgeCoverage(const ArchiveItem& item, const RequiredFiles& required, FileDigests& digests, PackageTrust* trust,
                   FileTrust* file) {
  const std::string name = UpperCase(item.name);
  for (std::size_t i = 0; i < trust->catalogs.size(); ++i) {
    PackageCatalog& owner = trust->catalogs[i];
    if (!owner.catalog || !*owner.catalog || required[i].count(name) == 0) {
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
  RequiredFiles required;
  if (package && package->setup) {
    required = ReadCatalogs(items, *package, &trust.catalogs);
  }
  std::size_t signatureCount = 0;
  for (const ArchiveItem& item : items) {
    FileDigests digests(item.body);
    FileTrust& file = trust.files.emplace_back();
    const PackageCatalog* const own = trust.CatalogOf(item);
    const bool isCatalog = own != nullptr && *own->catalog;
    file.signatures = isCatalog ? (*own->catalog)->signatures : ReadSignatures(digests, &signatureCount);
    JudgeCoverage(item, required, digests, &trust, &file);
  }
  return trust;
}

}  // namespace kwa
