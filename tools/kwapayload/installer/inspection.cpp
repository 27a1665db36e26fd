#include "installer/inspection.h"

#include <utility>

#include "installer/preview.h"
#include "trust/digest.h"
#include "trust/signature.h"

namespace kwa {

Inspection Inspect(InstallerFile installer) {
  Inspection inspection = {};
  inspection.installer = std::move(installer);
  const std::vector<ArchiveItem>& items = inspection.installer.items;
  const ByteSpan bytes = inspection.installer.bytes;
  inspection.sha256 = bytes.Empty() ? "" : Sha256Hex(bytes);
  inspection.version = FileVersionRecord(bytes);
  FileDigests digests(bytes);
  inspection.signatures = ReadEmbeddedSignatures(digests);
  inspection.program = ReadProgram(inspection.installer);
  inspection.configuration = inspection.version ? inspection.version->Text("Configuration") : "";
  inspection.hasKnownTexts = HasKnownTexts(inspection.installer);
  inspection.package = ReadDriverPackage(items);
  PackageTrust trust = ReadPackageTrust(items, inspection.package);
  inspection.files.reserve(items.size());
  for (std::size_t i = 0; i < items.size(); ++i) {
    const ByteSpan body = items[i].body;
    inspection.files.push_back(
        {items[i], ReadFileKind(body), Sha256Hex(body), FileVersionRecord(body), std::move(trust.files[i])});
  }
  return inspection;
}

const DriverPackage& PackageOf(const Inspection& inspection) {
  static const DriverPackage kNone = {};
  return inspection.package ? *inspection.package : kNone;
}

}  // namespace kwa
