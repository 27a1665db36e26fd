#include "report/json_report.h"

#include <cstddef>
#include <nlohmann/json.hpp>

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

// The list of what a function makes of each element.
template <typename List, typename Function>
ordered_json ListOf(const List& elements, Function function) {
  ordered_json list = ordered_json::array();
  for (const auto& element : elements) {
    list.push_back(function(element));
  }
  return list;
}

template <typename List, typename Function>
ordered_json ListOrNull(const List& elements, Function function) {
  return elements.empty() ? ordered_json() : ListOf(elements, function);
}

ordered_json TimestampJson(const Timestamp& timestamp) {
  return {{"kind", timestamp.isRfc3161 ? "RFC 3161" : "counter-signature"},
          {"time", TextOrNull(timestamp.time)},
          {"fault", FaultOrNull(timestamp.check)}};
}

ordered_json SignatureJson(const Signature& signature) {
  return {{"signer", TextOrNull(signature.signer)},
          {"certificate", TextOrNull(signature.certificate)},
          {"nested", signature.isNested},
          {"timestamps", ListOrNull(signature.timestamps, TimestampJson)},
          {"fault", FaultOrNull(signature.check)}};
}

ordered_json CatalogJson(const PackageCatalog* catalog) {
  if (catalog == nullptr) {
    return {};
  }
  const Result<Catalog>& read = *catalog->catalog;
  if (!read) {
    return {{"version", nullptr}, {"members", nullptr}, {"windows", nullptr}, {"fault", Escaped(read.error().what)}};
  }
  return {{"version", read->version},
          {"members", read->memberCount},
          {"windows", ListOf(read->windows, Escaped)},
          {"fault", nullptr}};
}

ordered_json FileJson(const InspectedFile& file) {
  const bool isInFile = file.item.fileOffset != 0;  // not in a folder
  return {{"archive", std::string(1, file.item.archive)},
          {"position", isInFile ? ordered_json(file.item.position) : ordered_json()},
          {"fileOffset", isInFile ? ordered_json(file.item.fileOffset) : ordered_json()},
          {"name", Escaped(file.item.name)},
          {"size", file.item.body.Size()},
          {"kind", KindText(file.kind)},
          {"version", TextOrNull(VersionText(file.version))},
          {"description", TextOrNull(RecordText(file.version, "FileDescription"))},
          {"company", TextOrNull(RecordText(file.version, "CompanyName"))},
          {"sha256", file.sha256},
          {"signatures", ListOrNull(file.trust.signatures, SignatureJson)},
          {"inCatalog", file.trust.isCovered ? ordered_json(*file.trust.isCovered) : ordered_json()},
          {"catalog", CatalogJson(file.trust.catalog.get())}};
}

ordered_json PlatformJson(const PlatformInf& platform) {
  return {{"platform", PlatformName(platform.platform)},
          {"catalog", TextOrNull(platform.catalogName)},
          {"windows", ListOf(platform.windowsVersions, Escaped)},
          {"hardwareIds", ListOf(platform.hardwareIds, Escaped)}};
}

ordered_json PackageJson(const DriverPackage& package) {
  const DeviceFamily* const family = package.family;
  const auto devices = [family](bool isGerman) {
    return family == nullptr ? ordered_json() : ordered_json(DeviceNames(*family, isGerman));
  };
  return {{"inf", Escaped(package.inf.name)},
          {"version", TextOrNull(package.identity.version.text)},
          {"displayName", TextOrNull(package.identity.displayName.text)},
          {"family", family == nullptr ? ordered_json() : ordered_json(family->key)},
          {"devices", devices(false)},
          {"germanDevices", devices(true)},
          {"platforms", ListOf(package.platforms, PlatformJson)}};
}

ordered_json ChangeJson(const Change& change) {
  const auto text = [](const std::string& escaped) { return escaped.empty() ? ordered_json() : ordered_json(escaped); };
  return {{"what", change.what}, {"before", text(change.before)}, {"after", text(change.after)}};
}

ordered_json ChangedFileJson(const ChangedFile& file) {
  return {{"name", Escaped(file.after->item.name)}, {"changes", ListOf(FileChanges(file), ChangeJson)}};
}

ordered_json ChangedHardwareJson(const ChangedHardware& ids) {
  return {{"platform", PlatformName(ids.platform)},
          {"removed", ListOf(ids.removed, Escaped)},
          {"added", ListOf(ids.added, Escaped)}};
}

ordered_json ChangedLinesJson(const ChangedLines& lines) {
  return {{"removed", ListOf(lines.removed, Escaped)}, {"added", ListOf(lines.added, Escaped)}};
}

ordered_json FindingJson(const Finding& finding) {
  return {{"severity", SeverityWord(finding.severity)},
          {"code", finding.code},
          {"where", TextOrNull(finding.where)},
          {"what", Escaped(finding.what)}};
}

ordered_json OrderJson(VersionOrder order) {
  constexpr const char* kWords[] = {"", "older", "same", "newer"};
  return TextOrNull(kWords[static_cast<std::size_t>(order)]);
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
  const bool isFolder = inspection.sha256.empty();
  const ordered_json size = isFolder ? ordered_json() : ordered_json(inspection.installer.bytes.Size());
  return Dumped({{"file", {{"name", Escaped(file)}, {"size", size}, {"sha256", TextOrNull(inspection.sha256)}}},
                 {"installer", isInstaller},
                 {"version", TextOrNull(VersionText(inspection.version))},
                 {"program", program},
                 {"signatures", ListOrNull(inspection.signatures, SignatureJson)},
                 {"files", ListOf(inspection.files, FileJson)},
                 {"package", inspection.package ? PackageJson(*inspection.package) : ordered_json()}});
}

std::string CompareJson(const Comparison& comparison) {
  const auto fileJson = [](const InspectedFile* file) { return FileJson(*file); };
  return Dumped({{"alike", comparison.IsAlike()},
                 {"removed", ListOf(comparison.removed, fileJson)},
                 {"added", ListOf(comparison.added, fileJson)},
                 {"changed", ListOf(comparison.changed, ChangedFileJson)},
                 {"orderChanged", comparison.isOrderChanged},
                 {"package", ListOf(PackageChanges(comparison), ChangeJson)},
                 {"driverVersion", OrderJson(comparison.versionOrder)},
                 {"hardwareIds", ListOf(comparison.hardware, ChangedHardwareJson)},
                 {"installer", ListOf(InstallerChanges(comparison), ChangeJson)},
                 {"programParts", ListOf(comparison.programParts, Escaped)},
                 {"configuration", ListOf(comparison.configuration, ChangedLinesJson)}});
}

std::string VerifyJson(const std::string& file, const Verification& verification) {
  return Dumped({{"file", Escaped(file)},
                 {"signatures", ListOrNull(verification.signatures, SignatureJson)},
                 {"findings", ListOf(verification.findings, FindingJson)}});
}

}  // namespace kwa
