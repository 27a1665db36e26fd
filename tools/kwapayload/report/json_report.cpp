#include "report/json_report.h"

#include <nlohmann/json.hpp>
#include <utility>

#include "report/escaped_text.h"
#include "report/words.h"

namespace kwa {
namespace {

using nlohmann::ordered_json;

std::string Dumped(const ordered_json& document) {
  return document.dump(2) + '\n';
}

ordered_json TextOrNull(const std::string& text) {
  return text.empty() ? ordered_json() : ordered_json(Escaped(text));
}

ordered_json FaultOrNull(const Check& check) {
  return check ? ordered_json() : ordered_json(Escaped(check.error().what));
}

std::vector<std::string> EscapedLines(const std::vector<std::string>& lines) {
  std::vector<std::string> escaped;
  for (const std::string& line : lines) {
    escaped.push_back(Escaped(line));
  }
  return escaped;
}

ordered_json SignaturesJson(const std::vector<Signature>& signatures) {
  ordered_json list;  // null for none
  for (const Signature& signature : signatures) {
    ordered_json timestamps;  // null for none
    for (const Timestamp& timestamp : signature.timestamps) {
      timestamps.push_back({{"kind", timestamp.isRfc3161 ? "RFC 3161" : "counter-signature"},
                            {"time", TextOrNull(timestamp.time)},
                            {"fault", FaultOrNull(timestamp.check)}});
    }
    list.push_back({{"signer", TextOrNull(signature.signer)},
                    {"certificate", TextOrNull(signature.certificate)},
                    {"nested", signature.isNested},
                    {"timestamps", timestamps},
                    {"fault", FaultOrNull(signature.check)}});
  }
  return list;
}

ordered_json CatalogJson(const PackageCatalog* catalog) {
  if (catalog == nullptr) {
    return {};
  }
  const Result<Catalog>& read = *catalog->catalog;
  return {{"version", read ? ordered_json(read->version) : ordered_json()},
          {"members", read ? ordered_json(read->memberCount) : ordered_json()},
          {"windows", read ? ordered_json(EscapedLines({read->windows.begin(), read->windows.end()})) : ordered_json()},
          {"fault", read ? ordered_json() : ordered_json(Escaped(read.error().what))}};
}

ordered_json FileJson(const InspectedFile& file, const PackageTrust& trust) {
  const std::optional<VersionRecord>& version = file.version;
  const bool isInFile = file.item.fileOffset != 0;  // not in a folder
  return {{"archive", std::string(1, file.item.archive)},
          {"position", isInFile ? ordered_json(file.item.position) : ordered_json()},
          {"fileOffset", isInFile ? ordered_json(file.item.fileOffset) : ordered_json()},
          {"name", Escaped(file.item.name)},
          {"size", file.item.body.Size()},
          {"kind", KindText(file.kind)},
          {"version", TextOrNull(VersionText(version))},
          {"description", TextOrNull(version ? version->Text("FileDescription") : "")},
          {"company", TextOrNull(version ? version->Text("CompanyName") : "")},
          {"sha256", file.sha256},
          {"signatures", SignaturesJson(file.trust.signatures)},
          {"inCatalog", file.trust.isCovered ? ordered_json(*file.trust.isCovered) : ordered_json()},
          {"catalog", CatalogJson(trust.CatalogOf(file.item))}};
}

ordered_json FilesJson(const std::vector<const InspectedFile*>& files, const PackageTrust& trust) {
  ordered_json list = ordered_json::array();
  for (const InspectedFile* const file : files) {
    list.push_back(FileJson(*file, trust));
  }
  return list;
}

ordered_json PlatformsJson(const DriverPackage& package) {
  ordered_json list = ordered_json::array();
  for (const PlatformInf& platform : package.platforms) {
    list.push_back({{"platform", PlatformName(platform.platform)},
                    {"catalog", TextOrNull(platform.catalogName)},
                    {"windows", EscapedLines(platform.windowsVersions)},
                    {"hardwareIds", EscapedLines(platform.hardwareIds)}});
  }
  return list;
}

ordered_json PackageJson(const Inspection& inspection) {
  if (!inspection.package) {
    return {};
  }
  const DeviceFamily* const family = inspection.package->family;
  const auto devices = [family](bool isGerman) {
    return family == nullptr ? ordered_json() : ordered_json(DeviceNames(*family, isGerman));
  };
  return {{"inf", Escaped(inspection.package->inf.name)},
          {"version", TextOrNull(inspection.package->identity.version.text)},
          {"displayName", TextOrNull(inspection.package->identity.displayName.text)},
          {"family", family == nullptr ? ordered_json() : ordered_json(family->key)},
          {"devices", devices(false)},
          {"germanDevices", devices(true)},
          {"platforms", PlatformsJson(*inspection.package)}};
}

ordered_json ChangesJson(const std::vector<Change>& changes) {
  const auto text = [](const std::string& escaped) { return escaped.empty() ? ordered_json() : ordered_json(escaped); };
  ordered_json list = ordered_json::array();
  for (const Change& change : changes) {
    list.push_back({{"what", change.what}, {"before", text(change.before)}, {"after", text(change.after)}});
  }
  return list;
}

ordered_json OrderWord(VersionOrder order) {
  switch (order) {
    case VersionOrder::Older:
      return "older";
    case VersionOrder::Same:
      return "same";
    case VersionOrder::Newer:
      return "newer";
    case VersionOrder::Unknown:
      break;
  }
  return {};
}

}  // namespace

std::string ListJson(const std::string& file, const Inspection& inspection) {
  const bool isInstaller = inspection.installer.image.has_value();
  ordered_json program;
  if (isInstaller) {
    program = {{"fingerprint", inspection.program.fingerprint},
               {"configuration", TextOrNull(inspection.configuration)},
               {"textsKnown", inspection.hasKnownTexts}};
  }
  ordered_json files = ordered_json::array();
  for (const InspectedFile& carried : inspection.files) {
    files.push_back(FileJson(carried, inspection.trust));
  }
  const bool isFolder = inspection.sha256.empty();
  const ordered_json size = isFolder ? ordered_json() : ordered_json(inspection.installer.bytes.Size());
  return Dumped({{"file", {{"name", Escaped(file)}, {"size", size}, {"sha256", TextOrNull(inspection.sha256)}}},
                 {"installer", isInstaller},
                 {"version", TextOrNull(VersionText(inspection.version))},
                 {"program", program},
                 {"signatures", SignaturesJson(inspection.signatures)},
                 {"files", std::move(files)},
                 {"package", PackageJson(inspection)}});
}

std::string CompareJson(const Comparison& comparison) {
  ordered_json changed = ordered_json::array();
  for (const ChangedFile& file : comparison.changed) {
    changed.push_back({{"name", Escaped(file.after->item.name)}, {"changes", ChangesJson(FileChanges(file))}});
  }
  ordered_json hardware = ordered_json::array();
  for (const ChangedHardware& ids : comparison.hardware) {
    hardware.push_back({{"platform", PlatformName(ids.platform)},
                        {"removed", EscapedLines(ids.removed)},
                        {"added", EscapedLines(ids.added)}});
  }
  ordered_json configuration = ordered_json::array();
  for (const ChangedLines& lines : comparison.configuration) {
    configuration.push_back({{"removed", EscapedLines(lines.removed)}, {"added", EscapedLines(lines.added)}});
  }
  return Dumped({{"alike", comparison.IsAlike()},
                 {"removed", FilesJson(comparison.removed, comparison.before->trust)},
                 {"added", FilesJson(comparison.added, comparison.after->trust)},
                 {"changed", changed},
                 {"orderChanged", comparison.isOrderChanged},
                 {"package", ChangesJson(PackageChanges(comparison))},
                 {"driverVersion", OrderWord(comparison.versionOrder)},
                 {"hardwareIds", hardware},
                 {"installer", ChangesJson(InstallerChanges(comparison))},
                 {"programParts", EscapedLines(comparison.programParts)},
                 {"configuration", configuration}});
}

std::string VerifyJson(const std::string& file, const Verification& verification) {
  ordered_json list = ordered_json::array();
  for (const Finding& finding : verification.findings) {
    list.push_back({{"severity", SeverityWord(finding.severity)},
                    {"code", finding.code},
                    {"where", TextOrNull(finding.where)},
                    {"what", Escaped(finding.what)}});
  }
  return Dumped({{"file", Escaped(file)}, {"signatures", SignaturesJson(verification.signatures)}, {"findings", list}});
}

}  // namespace kwa
