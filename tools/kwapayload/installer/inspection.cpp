#include "installer/inspection.h"

#include <utility>

#include "trust/digest.h"

namespace kwa {

Inspection Inspect(InstallerFile installer) {
  Inspection inspection;
  inspection.installer = std::move(installer);
  const std::vector<ArchiveItem>& items = inspection.installer.items;
  inspection.version = FileVersionRecord(inspection.installer.bytes);
  inspection.package = ReadDriverPackage(items);
  inspection.trust = ReadPackageTrust(items, inspection.package);
  for (std::size_t i = 0; i < items.size(); ++i) {
    const ByteSpan body = items[i].body;
    inspection.files.push_back(
        {items[i], ReadFileKind(body), Sha256Hex(body), FileVersionRecord(body), inspection.trust.files[i]});
  }
  return inspection;
}

}  // namespace kwa
