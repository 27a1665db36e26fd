#include <string>

#include "base/ascii_text.h"
#include "report/escaped_text.h"
#include "inf/driver_version.h"
#include "package/package_identity.h"
#include "pe/version_record.h"
#include "verify/verification.h"

namespace kwa {
namespace {

bool IsDriver(const ArchiveItem& item) {
  constexpr std::size_t kExtensionSize = 4;
  return item.name.size() > kExtensionSize && IsSameText(item.name.substr(item.name.size() - kExtensionSize), ".sys");
}

}  // namespace

void VerifyVersions(const InstallerFile& installer, Findings* findings) {
  const ArchiveItem* const inf = FindInf(installer);
  if (inf == nullptr) {
    return;  // reported already
  }
  const PackageIdentity identity = ReadHostPackageIdentity(InfText(inf->body));
  if (identity.version.empty() || !identity.fault.empty()) {
    return;  // reported already
  }
  const std::string version = DriverVersion(identity.version);
  if (version.empty()) {
    findings->AddError("package, " + EscapedText(inf->name),
                       "DriverVer \"" + EscapedText(identity.version) +
                           "\" is no date that exists (mm/dd/yyyy), a comma and one to four numbers up to 65535: "
                           "Setup does not rank the package as meant",
                       "driver-ver");
    return;
  }
  for (const LocatedArchive& located : installer.archives) {
    for (const ArchiveItem& item : located.archive.items) {
      const std::string found = IsDriver(item) ? FileVersionRecord(item.body).fileVersion : "";
      if (!found.empty() && found != version) {
        findings->AddWarning(located.Where(item),
                             "is of version " + found + ", where DriverVer says " + version + ": a stale build",
                             "driver-version");
      }
    }
  }
}

}  // namespace kwa
