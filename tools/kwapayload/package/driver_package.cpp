#include "package/driver_package.h"

#include <algorithm>

#include "base/ascii_text.h"
#include "content/file_kind.h"
#include "inf/inf_text.h"
#include "payload/entry_name.h"

namespace kwa {
namespace {

void ReadCatalogs(const std::vector<ArchiveItem>& items, const DriverPackage& package, PackageTrust* trust) {
  std::vector<std::shared_ptr<PackageCatalog>>& catalogs = trust->catalogs;
  for (const PlatformInf& platform : package.platforms) {
    const std::string& name = platform.catalogName;
    if (name.empty()) {
      continue;
    }
    // With two platforms, only the last catalog can be the same.
    if (catalogs.empty() || !IsSameText(catalogs.back()->name, name)) {
      catalogs.push_back(std::make_shared<PackageCatalog>());
      catalogs.back()->name = name;
      if (const ArchiveItem* const item = FindItem(items, name)) {
        catalogs.back()->catalog = ReadCatalog(item->body);
        trust->files[static_cast<std::size_t>(item - items.data())].catalog = catalogs.back();
      }
    }
    std::set<std::string>& required = catalogs.back()->requiredFiles;
    required.insert(platform.sourceNames.begin(), platform.sourceNames.end());
    required.insert(UpperCase(package.inf.name));
  }
  for (const std::shared_ptr<PackageCatalog>& catalog : catalogs) {
    for (const std::shared_ptr<PackageCatalog>& other : catalogs) {
      catalog->requiredFiles.erase(UpperCase(other->name));
    }
  }
}

// The signatures of a file, unless the files before it already have more than any package: each takes time.
std::vector<Signature> ReadSignatures(FileDigests& digests, std::size_t* count) {
  constexpr std::size_t kMaxSignatures = 256;
  if (*count <= kMaxSignatures) {
    std::vector<Signature> signatures = ReadEmbeddedSignatures(digests);
    *count += signatures.size();
    return signatures;
  }
  if (digests.Image() == nullptr || digests.Image()->CertificateTable().Empty()) {
    return {};
  }
  return {{"", Failure("is one of more than 256 in all files, and not read"), false, {}}};
}

void JudgeCoverage(const ArchiveItem& item, FileDigests& digests, PackageTrust* trust, FileTrust* file) {
  const std::string name = UpperCase(item.name);
  for (const std::shared_ptr<PackageCatalog>& owner : trust->catalogs) {
    if (!owner->catalog || !*owner->catalog || owner->requiredFiles.count(name) == 0) {
      continue;
    }
    const Catalog& catalog = **owner->catalog;
    const bool isCovered = Covers(catalog, digests);
    file->isCovered = file->isCovered.value_or(true) && isCovered;
    if (isCovered) {
      ++owner->coveredCount;
      continue;
    }
    file->uncoveringNames.push_back(owner->name);
    file->isNamed = file->isNamed || catalog.fileNames.count(name) != 0;
    if (ReadTextKind(item.body)) {
      file->coveringLineEnds = CoveringLineEnds(catalog, item.body);
    }
  }
}

}  // namespace

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

PackageTrust ReadPackageTrust(const std::vector<ArchiveItem>& items, const std::optional<DriverPackage>& package) {
  PackageTrust trust = {{}, std::vector<FileTrust>(items.size())};
  if (package) {
    ReadCatalogs(items, *package, &trust);
  }
  std::size_t signatureCount = 0;
  for (std::size_t i = 0; i < items.size(); ++i) {
    FileDigests digests(items[i].body);
    FileTrust& file = trust.files[i];
    const bool isCatalog = file.catalog != nullptr && *file.catalog->catalog;
    file.signatures = isCatalog ? (*file.catalog->catalog)->signatures : ReadSignatures(digests, &signatureCount);
    JudgeCoverage(items[i], digests, &trust, &file);
  }
  return trust;
}

}  // namespace kwa
