#include <string>

#include "base/ascii_text.h"
#include "inf/driver_version.h"
#include "pe/version_record.h"
#include "verify/verification.h"

namespace kwa {
namespace {

bool IsDriver(const ArchiveItem& item) {
  constexpr std::size_t kExtensionSize = 4;
  return item.name.size() > kExtensionSize && IsSameText(item.name.substr(item.name.size() - kExtensionSize), ".sys");
}

}  // namespace

void VerifyVersions(const std::vector<ArchiveItem>& items, const DriverPackage& package, Findings* findings) {
  const std::string& driverVer = package.identity.version.text;
  if (driverVer.empty() || !package.identity.certainty) {
    return;  // a finding of the package
  }
  const std::optional<DriverVersion> version = ReadDriverVersion(driverVer);
  if (!version) {
    findings->AddError("package, " + std::string(package.inf.name),
                       "DriverVer \"" + driverVer +
                           "\" is not a date that exists (mm/dd/yyyy), a comma and one to four numbers up to 65535: "
                           "Setup does not rank the package as intended",
                       "driver-ver");
    return;
  }
  for (const ArchiveItem& item : items) {
    const std::optional<VersionRecord> record = IsDriver(item) ? FileVersionRecord(item.body) : std::nullopt;
    if (record && record->fileVersion != version->VersionText()) {
      findings->AddWarning(
          Where(item),
          "has version " + record->fileVersion + ", but DriverVer says " + version->VersionText() + ": a stale build",
          "driver-version");
    }
  }
}

}  // namespace kwa
