#include "verify/verification.h"

#include <map>

#include "base/ascii_text.h"
#include "payload/entry_name.h"
#include "trust/authenticode.h"

namespace kwa {
namespace {

void VerifyItem(const ArchiveItem& item, std::string* previous, std::map<std::string, std::string>* known,
                Findings* findings) {
  const std::string where = Where(item);
  if (!IsZeroFilled(item.padding)) {
    findings->AddWarning(where, "the padding after its body is not zero", "padding");
  }
  if (const Check name = CheckEntryName(item.name); !name) {
    findings->AddError(where, name.error().what, "name-unfit");
    return;
  }
  const std::string upper = UpperCase(item.name);
  if (const auto [other, isNew] = known->emplace(upper, where); !isNew) {
    findings->AddError(where, "has the same name as " + other->second, "name-twice");
  } else if (upper < *previous) {
    findings->AddWarning(where, "comes after a name that sorts after it", "order");
  }
  *previous = upper;
}

}  // namespace

std::string Where(const ArchiveItem& item) {
  return (item.archive == '-' ? "" : std::string("archive ") + item.archive + ", ") + std::string(item.name);
}

void VerifyLayout(const InstallerFile& installer, Findings* findings) {
  findings->AddAll(installer.findings);
  std::map<std::string, std::string> known;       // upper-case name, and where it is
  std::map<char, std::string> previousOfArchive;  // the upper-case name before
  for (const ArchiveItem& item : installer.items) {
    VerifyItem(item, &previousOfArchive[item.archive], &known, findings);
  }
}

Verification VerifyInstaller(const InstallerFile& installer, const PayloadContents& contents) {
  Verification verification;
  Findings& findings = verification.findings;
  VerifyLayout(installer, &findings);
  // What the files say about each other, or about a list, can be judged only where all of them are there.
  if (installer.IsWhole()) {
    const std::vector<ArchiveItem>& items = installer.items;
    const std::optional<DriverPackage> package = ReadDriverPackage(items);
    const PackageTrust trust = ReadPackageTrust(items, package);
    for (const char archive : {'A', 'B'}) {
      if (installer.HoldsBothArchives() || (!items.empty() && items.front().archive == archive)) {
        VerifyContents(items, contents, archive, &findings);
      }
    }
    if (installer.HoldsBothArchives()) {
      VerifyCompanions(items, contents, &findings);
    }
    if (installer.HoldsBothArchives() || package) {
      VerifyPackage(items, package, &findings);
      VerifyUse(items, package, trust, &findings);
    }
    if (package) {
      VerifyVersions(items, *package, &findings);
    }
    VerifyTrust(items, trust, &findings);
  }
  if (installer.image) {
    FileDigests digests(installer.bytes);
    verification.signatures = ReadEmbeddedSignatures(digests);
    VerifySignatures("executable", verification.signatures, "signature-broken", &findings);
    VerifyExecutable(*installer.image, &findings);
  }
  return verification;
}

}  // namespace kwa
