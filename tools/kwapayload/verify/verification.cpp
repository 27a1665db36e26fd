#include "verify/verification.h"

#include <algorithm>
#include <map>
#include <string>

#include "base/escaped_text.h"
#include "payload/entry_name.h"

namespace kwa {
namespace {

std::string Where(const LocatedArchive& located, const std::string& item) {
  const std::string archive = located.letter == "-" ? "" : "archive " + located.letter;
  return archive + (archive.empty() || item.empty() ? "" : ", ") + item;
}

bool HasFindingOn(const ParsedArchive& archive, const std::string& item) {
  return std::any_of(archive.findings.begin(), archive.findings.end(),
                     [&](const Finding& finding) { return finding.where == item; });
}

void VerifyNames(const LocatedArchive& located, std::map<std::string, std::string>* known,
                 std::vector<Finding>* findings) {
  std::string previous;
  for (const ArchiveItem& item : located.archive.items) {
    const std::string shown = EscapedText(item.name);
    const std::string where = Where(located, shown);
    if (HasFindingOn(located.archive, shown)) {
      continue;
    }
    if (const std::string fault = EntryNameFault(item.name); !fault.empty()) {
      findings->push_back({Severity::Error, where, fault, "name-unfit"});
      continue;
    }
    const std::string upper = UpperCaseName(item.name);
    if (const auto [other, isNew] = known->emplace(upper, where); !isNew) {
      findings->push_back({Severity::Error, where, "has the same name as " + other->second, "name-twice"});
    } else if (upper < previous) {
      findings->push_back({Severity::Warning, where, "stands behind a name that sorts after it", "order"});
    }
    previous = upper;
  }
}

}  // namespace

void VerifyLayout(const InstallerFile& installer, std::vector<Finding>* findings) {
  findings->insert(findings->end(), installer.findings.begin(), installer.findings.end());
  std::map<std::string, std::string> known;  // upper-case name, and where it stands
  for (const LocatedArchive& located : installer.archives) {
    for (Finding finding : located.archive.findings) {
      finding.where = Where(located, finding.where);
      findings->push_back(std::move(finding));
    }
    VerifyNames(located, &known, findings);
  }
}

std::vector<Finding> VerifyInstaller(const InstallerFile& installer, const PayloadContents& contents) {
  std::vector<Finding> findings;
  VerifyLayout(installer, &findings);
  VerifyContents(installer, contents, &findings);
  const bool isInstaller = installer.image.has_value();
  bool isReadable = true;
  for (const LocatedArchive& located : installer.archives) {
    isReadable = isReadable && located.archive.IsReadable();
  }
  // What the files say of each other can be judged only where all of them are there.
  if (isInstaller && isReadable && installer.archives.size() == 2) {
    VerifyCompanions(installer, contents, &findings);
    VerifyPackage(installer, &findings);
  }
  VerifyExecutable(installer, &findings);
  return findings;
}

}  // namespace kwa
