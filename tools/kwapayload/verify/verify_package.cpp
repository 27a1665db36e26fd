#include <algorithm>
#include <cstddef>
#include <map>
#include <set>
#include <string>

#include "base/ascii_text.h"
#include "content/file_kind.h"
#include "pe/pe_image.h"
#include "pe/pe_resources.h"
#include "verify/verification.h"

namespace kwa {
namespace {

using ItemsByName = std::map<std::string, const ArchiveItem*>;  // by upper-case name

// Whether a value is fit for the configuration, into whose XML the installer writes it without escaping.
Check CheckValue(const std::string& key, const IdentityValue& value) {
  const auto breaksXml = [&key](const std::string& part) {
    return Failure(key + " holds " + part + ", which breaks the XML of the configuration", "value-breaks-xml");
  };
  if (value.text.empty()) {
    return Failure("[Version] has no " + key, "version-key-missing");
  }
  if (value.isCut) {
    const std::string limit = std::to_string(kProfileValueLimit);
    return Failure(key + " has more than " + limit + " characters, and the installer keeps no more", "value-too-long");
  }
  for (const char c : value.text) {
    if (c == '&' || c == '<') {
      return breaksXml(std::string("\"") + c + '"');
    }
    if (static_cast<unsigned char>(c) < ' ' && c != '\t') {
      return breaksXml("a control character");
    }
  }
  if (value.text.find("]]>") != std::string::npos) {
    return breaksXml("\"]]>\"");
  }
  if (!IsUtf8(ByteSpan(value.text))) {
    return Failure(key + " holds characters beyond ASCII, which the configuration would carry as invalid UTF-8",
                   "value-breaks-xml");
  }
  return {};
}

void VerifyIdentity(const std::string& where, const DriverPackage& package, Findings* findings) {
  const PackageIdentity& identity = package.identity;
  if (!identity.certainty) {
    findings->AddError(where, identity.certainty.error().what, "inf-encoding");
    return;
  }
  Check displayName = CheckValue("DriverPackageDisplayName", identity.displayName);
  if (displayName && package.family == nullptr) {
    displayName = Failure("DriverPackageDisplayName \"" + identity.displayName.text +
                              "\" names no device family, so the wizard will list no devices",
                          "no-family");
  }
  for (const Check& check : {CheckValue("DriverVer", identity.version), displayName}) {
    if (!check) {
      findings->AddError(where, check.error().what, check.error().code);
    }
  }
}

void VerifyCatalogNames(const std::string& where, const ItemsByName& items, const std::vector<PlatformInf>& platforms,
                        Findings* findings) {
  std::set<std::string> names;
  for (const PlatformInf& platform : platforms) {
    names.insert(platform.catalogName);
  }
  if (names == std::set<std::string>{""}) {
    findings->AddError(where, "[Version] has no CatalogFile", "version-key-missing");
    return;
  }
  for (const PlatformInf& platform : platforms) {
    if (platform.catalogName.empty() && !platform.installSections.empty()) {
      findings->AddError(where, "[Version] names no CatalogFile for the models of " + PlatformName(platform.platform),
                         "version-key-missing");
    }
  }
  for (const std::string& name : names) {
    if (!name.empty() && items.count(UpperCase(name)) == 0) {
      findings->AddError(where, "CatalogFile \"" + name + "\" is not carried", "catalog-missing");
    }
  }
}

// Microsoft, "INF SourceDisksFiles Section": a file of a package needs an entry there, and its disk one in
// [SourceDisksNames].
void VerifySourceFiles(const std::string& where, const ItemsByName& items, const std::vector<PlatformInf>& platforms,
                       Findings* findings) {
  std::set<std::size_t> seen;  // a line for both platforms is one finding
  for (const PlatformInf& platform : platforms) {
    for (const InfSourceFile& source : platform.sourceFiles) {
      if (!seen.insert(source.line).second) {
        continue;
      }
      const std::string named = "[SourceDisksFiles] names \"" + source.name + "\", ";
      if (items.count(UpperCase(source.name)) == 0) {
        findings->AddError(where, named + "which is not carried", "source-file-missing");
      } else if (!source.folder.empty()) {
        findings->AddError(where,
                           named + "for which Setup will look in the folder \"" + source.folder +
                               "\", but all files are beside the INF",
                           "source-file-in-folder");
      } else if (!source.isDiskListed) {
        findings->AddError(where, named + "on disk \"" + source.disk + "\", which [SourceDisksNames] does not have",
                           "disk-missing");
      }
    }
  }
  if (seen.empty()) {
    findings->AddError(where, "has no [SourceDisksFiles]", "no-source-files");
  }
}

// The files that install sections copy, and whether the drivers among them fit the platform.
void VerifyCopiedFiles(const std::string& where, const ItemsByName& items, const std::vector<PlatformInf>& platforms,
                       Findings* findings) {
  std::set<std::size_t> seen;
  for (const PlatformInf& platform : platforms) {
    std::set<std::string> copiedNames;  // a file may be copied many times
    const std::uint16_t machine =
        platform.platform == InfPlatform::X86 ? kImageFileMachineI386 : kImageFileMachineAmd64;
    for (const InfCopiedFile& copied : platform.copiedFiles) {
      const std::string name = UpperCase(copied.source);
      const auto found = items.find(name);
      const ArchiveItem* const item = found == items.end() ? nullptr : found->second;
      if (platform.sourceNames.count(name) == 0 && seen.insert(copied.line).second) {
        const std::string place = where + ", line " + std::to_string(copied.line);
        const std::string what = "CopyFiles names \"" + copied.source + "\", which [SourceDisksFiles] does not list";
        // A file that is not carried may be one of Windows.
        findings->Add({item != nullptr ? Severity::Error : Severity::Warning, place,
                       what + (item != nullptr ? "" : ": Setup may not find it"), "copied-file-not-listed"});
      }
      if (item == nullptr || !copiedNames.insert(name).second) {
        continue;
      }
      const FileKind kind = ReadFileKind(item->body);
      if (kind.program && kind.program->subsystem == kImageSubsystemNative && kind.program->machine != machine) {
        findings->AddError(Where(*item),
                           "is " + KindText(kind) + ", but is copied on " + PlatformName(platform.platform),
                           "driver-machine");
      }
    }
  }
}

}  // namespace

void VerifyPackage(const std::vector<ArchiveItem>& items, const std::optional<DriverPackage>& package,
                   Findings* findings) {
  if (!package) {
    findings->AddError("package", "holds no INF", "no-inf");
    return;
  }
  const std::string where = "package, " + std::string(package->inf.name);
  ItemsByName itemsByName;
  for (const ArchiveItem& item : items) {
    itemsByName.emplace(UpperCase(item.name), &item);
  }
  for (const auto& [name, item] : itemsByName) {
    // The installer's "*.inf" also fits the short name of "about.info", ABOUT~1.INF.
    if (name.compare(std::min(name.rfind('.'), name.size()), 4, ".INF") == 0 && name != UpperCase(package->inf.name)) {
      findings->AddError(where, "is not the only INF: there is " + name, "second-inf");
    }
  }
  VerifyIdentity(where, *package, findings);
  if (!package->setup) {
    return;
  }
  for (const Finding& fault : package->setup->Faults()) {
    const std::string line = fault.where.empty() ? "" : ", " + fault.where;
    findings->Add({fault.severity, where + line, fault.what, fault.code});
  }
  if (package->setup->Faults().HasError()) {
    return;  // Setup reads nothing of it
  }
  VerifyCatalogNames(where, itemsByName, package->platforms, findings);
  VerifySourceFiles(where, itemsByName, package->platforms, findings);
  VerifyCopiedFiles(where, itemsByName, package->platforms, findings);
}

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
    const bool isDriver = item.name.size() > 4 && IsSameText(item.name.substr(item.name.size() - 4), ".sys");
    const std::optional<VersionRecord> record = isDriver ? FileVersionRecord(item.body) : std::nullopt;
    if (record && record->fileVersion != VersionText(*version)) {
      findings->AddWarning(
          Where(item),
          "has version " + record->fileVersion + ", but DriverVer says " + VersionText(*version) + ": a stale build",
          "driver-version");
    }
  }
}

}  // namespace kwa
