// Fuzzes the readers of untrusted files: all that kwapayload reads of an installer, an archive or an INF, and all that
// it reports of it.
#include <cstddef>
#include <cstdint>
#include <string>
#include <utility>

#include "content/file_kind.h"
#include "inf/platform_inf.h"
#include "inf/setup_inf.h"
#include "installer/comparison.h"
#include "installer/preview.h"
#include "package/package_identity.h"
#include "payload/payload_contents.h"
#include "pe/pe_imports.h"
#include "pe/pe_resources.h"
#include "report/bill_of_materials.h"
#include "report/json_report.h"
#include "report/list_report.h"
#include "report/text_report.h"
#include "trust/catalog.h"
#include "trust/signature.h"
#include "verify/verification.h"

namespace {

void Require(bool condition) {
  if (!condition) {
    __builtin_trap();
  }
}

// Nothing of a file reaches a terminal but printable text and line feeds.
void RequireClean(const std::string& report) {
  for (const char c : report) {
    Require(c == '\n' || (static_cast<unsigned char>(c) >= ' ' && c != '\x7F'));
  }
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
  const kwa::InfText text(bytes);
  const kwa::PackageIdentity identity = kwa::ReadHostPackageIdentity(text);
  for (const kwa::IdentityValue& value : {identity.version, identity.displayName}) {
    Require(value.text.size() <= kwa::kProfileValueLimit);
  }
  kwa::PreviewDpinstConfig(identity, false);
  const kwa::SetupInf inf(text);
  for (const kwa::InfPlatform platform : kwa::kInfPlatforms) {
    kwa::ReadPlatformInf(inf, platform);
  }
}

// verify leaves these out if something before them is damaged.
void ReadExecutable(const kwa::PeImage& image) {
  kwa::ReadImports(image);
  kwa::ReadResources(image);
  image.CertificateTable();
  image.HasBaseRelocations();
}

void ReadArchives(kwa::ByteSpan bytes) {
  const kwa::FoundArchives found = kwa::FindArchives(bytes);
  for (const kwa::ParsedArchive& archive : found.sound) {
    // A sound archive has every byte that it promises.
    for (const kwa::ArchiveItem& item : archive.items) {
      Require(bytes.Contains(item.fileOffset, item.body.Size() + item.padding.Size()));
    }
  }
}

void Report(kwa::InstallerFile installer) {
  const kwa::Verification verification = kwa::VerifyInstaller(installer, {});
  kwa::VerifyJson("file", verification);
  RequireClean(kwa::VerifyText("file", verification));
  if (installer.findings.HasError()) {
    return;
  }
  const kwa::Inspection inspection = kwa::Inspect(std::move(installer));
  const kwa::Comparison comparison = kwa::Compare(inspection, inspection);
  kwa::ListJson("file", inspection);
  kwa::BillOfMaterials("file", inspection);
  kwa::CompareJson(comparison);
  Require(comparison.IsAlike());
  RequireClean(kwa::ListText("file", inspection, 80));
  RequireClean(kwa::CompareText(comparison));
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const kwa::ByteSpan bytes(data, size);
  kwa::KindText(kwa::ReadFileKind(bytes));
  kwa::ReadPayloadContents(bytes);
  kwa::FileVersionRecord(bytes);
  ReadTrust(bytes);
  ReadInf(bytes);
  ReadArchives(bytes);
  if (kwa::Result<kwa::InstallerFile> installer = kwa::ReadInstallerFile(bytes)) {
    if (installer->image) {
      ReadExecutable(*installer->image);
    }
    Report(std::move(*installer));
  }
  return 0;
}
