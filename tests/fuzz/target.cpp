// Fuzzes the readers of untrusted files: all that kwapayload reads of an installer, an archive or an INF.
#include <cstddef>
#include <cstdint>
#include <string>

#include "files/tool_failure.h"
#include "inf/catalog_names.h"
#include "inf/inf_reader.h"
#include "inf/inf_source_files.h"
#include "package/package_identity.h"
#include "content/file_kind.h"
#include "installer/installer_file.h"
#include "installer/listing.h"
#include "installer/program_form.h"
#include "pe/pe_imports.h"
#include "pe/pe_resources.h"
#include "pe/version_record.h"
#include "trust/authenticode.h"
#include "trust/catalog.h"
#include "verify/verification.h"

namespace {

void ReadExecutable(const kwa::PeImage& image) {
  kwa::ReadImports(image);
  const auto resources = kwa::ReadResources(image);
  kwa::VersionRecord record;
  kwa::ReadVersionRecord(kwa::FirstResource(resources, kwa::kResourceTypeVersion), &record);
  image.CertificateTable();
  image.HasBaseRelocations();
}

void ReadTrust(kwa::ByteSpan bytes) {
  kwa::FileDigests digests(bytes);
  kwa::ReadEmbeddedSignatures(digests);
  if (const kwa::Result<kwa::Catalog> catalog = kwa::ReadCatalog(bytes)) {
    kwa::Covers(*catalog, digests);
    kwa::CoveringLineEnds(*catalog, bytes);
  }
}

void ReadInf(kwa::ByteSpan bytes) {
  const kwa::InfText inf(bytes);
  const kwa::PackageIdentity identity = kwa::ReadHostPackageIdentity(inf);
  if (identity.version.size() > kwa::kInfValueLimit || identity.displayName.size() > kwa::kInfValueLimit) {
    __builtin_trap();
  }
  kwa::ReadInfSourceFiles(inf);
  kwa::CatalogName(inf, "amd64");
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const kwa::ByteSpan bytes(data, size);
  kwa::ReadFileKind(bytes);
  ReadTrust(bytes);
  ReadInf(bytes);
  // Whatever surrounds an archive: also as the read-only data of a program.
  for (const kwa::ParsedArchive& archive : kwa::FindArchives(bytes)) {
    // A sound archive has every byte that it promises.
    for (const kwa::ArchiveItem& item : archive.items) {
      if (item.body.Size() != item.size) {
        __builtin_trap();
      }
    }
  }
  kwa::FindBrokenArchives(bytes);
  try {
    const kwa::InstallerFile installer = kwa::ReadInstallerFile(bytes, "file");
    kwa::VerifyInstaller(installer, {});
    // verify leaves these out where something before them is damaged.
    if (installer.image) {
      ReadExecutable(*installer.image);
    }
    kwa::FindInf(installer);
    kwa::MakeListing(installer);
    kwa::ProgramParts(installer);
    for (const kwa::LocatedArchive& located : installer.archives) {
      for (const kwa::ArchiveItem& item : located.archive.items) {
        kwa::ReadFileKind(item.body);
      }
    }
  } catch (const kwa::ToolFailure&) {
  }
  return 0;
}
