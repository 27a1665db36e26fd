#include "report/words.h"

#include <utility>

#include "report/escaped_text.h"
#include "trust/digest.h"

namespace kwa {
namespace {

// The facts of a thing, each with its name. All things of a kind have the same names.
using Facts = std::vector<std::pair<const char*, std::string>>;

std::vector<Change> Differences(const Facts& before, const Facts& after) {
  std::vector<Change> changes;
  for (std::size_t i = 0; i < before.size(); ++i) {
    if (before[i].second != after[i].second) {
      changes.push_back({before[i].first, before[i].second, after[i].second});
    }
  }
  return changes;
}

// "" for zeros, however many the size of the body needs.
std::string PaddingText(const ArchiveItem& item) {
  return IsZeroFilled(item.padding) ? "" : Hex(std::string(item.padding.Text()));
}

Facts FileFacts(const InspectedFile& file) {
  return {{"archive", {file.item.archive}},
          {"name", Escaped(file.item.name)},
          {"size", std::to_string(file.item.body.Size())},
          {"version", VersionText(file.version)},
          {"kind", KindText(file.kind)},
          {"signer", SignersText(file.trust.signatures)},
          {"in the catalog", CoverageText(file)},
          {"padding", PaddingText(file.item)}};
}

Facts PackageFacts(const DriverPackage& package) {
  std::vector<std::string> windows;
  for (const PlatformInf& platform : package.platforms) {
    windows.insert(windows.end(), platform.windowsVersions.begin(), platform.windowsVersions.end());
  }
  return {{"INF", Escaped(package.inf.name)},
          {"version", Escaped(package.identity.version.text)},
          {"display name", Escaped(package.identity.displayName.text)},
          {"family", package.family != nullptr ? package.family->key : ""},
          {"Windows versions", Escaped(Joined(windows))}};
}

std::string SignerName(const Signature& signature) {
  return signature.signer.empty() ? "a signer without a name" : Escaped(signature.signer);
}

}  // namespace

const char* SeverityWord(Severity severity) {
  return severity == Severity::Error ? "error" : "warning";
}

std::string SignersText(const std::vector<Signature>& signatures) {
  std::vector<std::string> signers;
  for (const Signature& signature : signatures) {
    signers.push_back(SignerName(signature) + (signature.check ? "" : " (BROKEN)"));
  }
  return Joined(signers);
}

std::string SignatureText(const Signature& signature) {
  std::string text = SignerName(signature);
  for (const Timestamp& timestamp : signature.timestamps) {
    text += ", " + (timestamp.time.empty() ? "at an unreadable time" : timestamp.time);
    text += timestamp.check ? "" : " (BROKEN: " + timestamp.check.error().what + ")";
  }
  return text + (signature.isNested ? ", nested" : "") +
         (signature.check ? "" : ", BROKEN: " + Escaped(signature.check.error().what));
}

std::string CoverageText(const InspectedFile& file) {
  const std::optional<bool>& isCovered = file.trust.isCovered;
  return !isCovered ? "" : *isCovered ? "yes" : "NO";
}

std::string VersionText(const std::optional<VersionRecord>& version) {
  return version ? version->fileVersion : "";
}

std::string RecordText(const std::optional<VersionRecord>& version, const char* key) {
  return version ? version->Text(key) : "";
}

std::vector<std::string> DeviceNames(const DeviceFamily& family, bool isGerman) {
  std::vector<std::string> names;
  for (unsigned i = 0; i < family.rowCount; ++i) {
    const std::string name = (isGerman ? family.germanRows : family.rows)[i];
    names.push_back(name.substr(name.find_first_not_of('\n')));
  }
  return names;
}

std::vector<Change> FileChanges(const ChangedFile& file) {
  std::vector<Change> changes = Differences(FileFacts(*file.before), FileFacts(*file.after));
  if (changes.empty()) {
    changes.push_back({"content", file.before->sha256, file.after->sha256});
  }
  return changes;
}

std::vector<Change> PackageChanges(const Comparison& comparison) {
  return Differences(PackageFacts(PackageOf(*comparison.before)), PackageFacts(PackageOf(*comparison.after)));
}

Change SignatureChange(const Comparison& comparison) {
  Change change = {"signature", SignersText(comparison.before->signatures), SignersText(comparison.after->signatures)};
  if (comparison.areSignersChanged && change.before == change.after) {
    change.after += " (another certificate)";
  }
  return change;
}

std::vector<Change> InstallerChanges(const Comparison& comparison) {
  const Inspection& before = *comparison.before;
  const Inspection& after = *comparison.after;
  const Change signature = SignatureChange(comparison);
  return Differences({{"fingerprint", before.program.fingerprint},
                      {"texts", Escaped(before.configuration)},
                      {signature.what, signature.before}},
                     {{"fingerprint", after.program.fingerprint},
                      {"texts", Escaped(after.configuration)},
                      {signature.what, signature.after}});
}

}  // namespace kwa
