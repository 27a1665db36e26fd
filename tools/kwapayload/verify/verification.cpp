#include "verify/verification.h"

#include <map>
#include <string>

#include "base/ascii_text.h"
#include "payload/entry_name.h"

namespace kwa {
namespace {

void VerifyItems(const LocatedArchive& located, std::map<std::string, std::string>* known, Findings* findings) {
  std::string previous;
  for (const ArchiveItem& item : located.archive.items) {
    const std::string where = located.Where(item);
    if (!IsZeroFilled(item.padding)) {
      findings->AddWarning(where, "the padding behind its body is not zero", "padding");
    }
    if (const std::string fault = EntryNameFault(item.name); !fault.empty()) {
      findings->AddError(where, fault, "name-unfit");
      continue;
    }
    const std::string upper = UpperCase(item.name);
    if (const auto [other, isNew] = known->emplace(upper, where); !isNew) {
      findings->AddError(where, "has the same name as " + other->second, "name-twice");
    } else if (upper < previous) {
      findings->AddWarning(where, "stands behind a name that sorts after it", "order");
    }
    previous = upper;
  }
}

}  // namespace

void VerifyLayout(const InstallerFile& installer, Findings* findings) {
  findings->AddAll(installer.findings);
  std::map<std::string, std::string> known;  // upper-case name, and where it stands
  for (const LocatedArchive& located : installer.archives) {
    VerifyItems(located, &known, findings);
  }
}

Findings VerifyInstaller(const InstallerFile& installer, const PayloadContents& contents) {
  Findings findings;
  VerifyLayout(installer, &findings);
  // What the files say of each other, or of a list, can be judged only where all of them are there.
  if (installer.IsWhole()) {
    VerifyContents(installer, contents, &findings);
    if (installer.image) {
      VerifyCompanions(installer, contents, &findings);
    }
    if (installer.image || FindInf(installer) != nullptr) {
      VerifyPackage(installer, &findings);
      VerifyVersions(installer, &findings);
    }
    VerifyTrust(installer, &findings);
  }
  VerifyExecutable(installer, &findings);
  return findings;
}

}  // namespace kwa
