#include "report/words.h"

#include "report/escaped_text.h"
#include "trust/digest.h"

namespace kwa {
namespace {

void Add(const char* what, const std::string& before, const std::string& after, std::vector<Change>* changes) {
  if (before != after) {
    changes->push_back({what, before, after});
  }
}

// "" for zeros, however many the size of the body needs.
std::string PaddingText(const ArchiveItem& item) {
  return IsZeroFilled(item.padding) ? "" : Hex(std::string(item.padding.Text()));
}

}  // namespace

const char* SeverityWord(Severity severity) {
  return severity == Severity::Error ? "error" : "warning";
}

std::string SignersText(const std::vector<Signature>& signatures) {
  std::vector<std::string> signers;
  for (const Signature& signature : signatures) {
    signers.push_back(Escaped(signature.signer) + (signature.check ? "" : " (BROKEN)"));
  }
  return Joined(signers);
}

std::string SignatureText(const Signature& signature) {
  std::string text = signature.signer.empty() ? "a signer without a name" : Escaped(signature.signer);
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

std::vector<std::string> DeviceNames(const DeviceFamily& family, bool isGerman) {
  std::vector<std::string> names;
  for (unsigned i = 0; i < family.rowCount; ++i) {
    const std::string name = (isGerman ? family.germanRows : family.rows)[i];
    names.push_back(name.substr(name.find_first_not_of('\n')));
  }
  return names;
}

std::vector<Change> FileChanges(const ChangedFile& file) {
  const InspectedFile& before = *file.before;
  const InspectedFile& after = *file.after;
  std::vector<Change> changes;
  Add("archive", {before.item.archive}, {after.item.archive}, &changes);
  Add("name", Escaped(before.item.name), Escaped(after.item.name), &changes);
  Add("size", std::to_string(before.item.body.Size()), std::to_string(after.item.body.Size()), &changes);
  Add("version", VersionText(before.version), VersionText(after.version), &changes);
  Add("kind", KindText(before.kind), KindText(after.kind), &changes);
  Add("signer", SignersText(before.trust.signatures), SignersText(after.trust.signatures), &changes);
  Add("in the catalog", CoverageText(before), CoverageText(after), &changes);
  Add("padding", PaddingText(before.item), PaddingText(after.item), &changes);
  if (changes.empty()) {
    Add("content", before.sha256, after.sha256, &changes);
  }
  return changes;
}

std::vector<Change> PackageChanges(const Comparison& comparison) {
  struct Facts {
    std::string inf, version, displayName, family, windows;
  };
  const auto read = [](const std::optional<DriverPackage>& package) {
    Facts facts;
    if (package) {
      facts = {Escaped(package->inf.name), Escaped(package->identity.version.text),
               Escaped(package->identity.displayName.text), package->family != nullptr ? package->family->key : "", ""};
      std::vector<std::string> windows;
      for (const PlatformInf& platform : package->platforms) {
        windows.insert(windows.end(), platform.windowsVersions.begin(), platform.windowsVersions.end());
      }
      facts.windows = Escaped(Joined(windows));
    }
    return facts;
  };
  const Facts before = read(comparison.before->package);
  const Facts after = read(comparison.after->package);
  std::vector<Change> changes;
  Add("INF", before.inf, after.inf, &changes);
  Add("version", before.version, after.version, &changes);
  Add("display name", before.displayName, after.displayName, &changes);
  Add("family", before.family, after.family, &changes);
  Add("Windows versions", before.windows, after.windows, &changes);
  return changes;
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
  std::vector<Change> changes;
  Add("fingerprint", before.program.fingerprint, after.program.fingerprint, &changes);
  Add("texts", Escaped(before.configuration), Escaped(after.configuration), &changes);
  const Change signature = SignatureChange(comparison);
  Add(signature.what, signature.before, signature.after, &changes);
  return changes;
}

std::string Joined(const std::vector<std::string>& texts, const char* separator) {
  std::string joined;
  for (const std::string& text : texts) {
    joined += (&text == &texts.front() ? "" : separator) + text;
  }
  return joined;
}

}  // namespace kwa
