#include "report/words.h"

#include "report/escaped_text.h"

namespace kwa {

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

const char* FieldName(FileField field) {
  switch (field) {
    case FileField::Archive:
      return "archive";
    case FileField::Name:
      return "name";
    case FileField::Size:
      return "size";
    case FileField::Version:
      return "version";
    case FileField::Kind:
      return "kind";
    case FileField::Signers:
      return "signer";
    case FileField::Coverage:
      return "in the catalog";
    case FileField::Content:
      return "content";
  }
  return "";
}

const char* FieldName(PackageField field) {
  switch (field) {
    case PackageField::Inf:
      return "INF";
    case PackageField::Version:
      return "version";
    case PackageField::DisplayName:
      return "display name";
    case PackageField::Family:
      return "family";
  }
  return "";
}

std::string FieldText(FileField field, const InspectedFile& file) {
  switch (field) {
    case FileField::Archive:
      return {file.item.archive};
    case FileField::Name:
      return Escaped(file.item.name);
    case FileField::Size:
      return std::to_string(file.item.body.Size());
    case FileField::Version:
      return VersionText(file.version);
    case FileField::Kind:
      return KindText(file.kind);
    case FileField::Signers:
      return SignersText(file.trust.signatures);
    case FileField::Coverage:
      return CoverageText(file);
    case FileField::Content:
      return file.sha256;
  }
  return "";
}

std::string FieldText(PackageField field, const Inspection& inspection) {
  if (!inspection.package) {
    return "";
  }
  const DriverPackage& package = *inspection.package;
  switch (field) {
    case PackageField::Inf:
      return Escaped(package.inf.name);
    case PackageField::Version:
      return Escaped(package.identity.version.text);
    case PackageField::DisplayName:
      return Escaped(package.identity.displayName.text);
    case PackageField::Family:
      return package.family != nullptr ? package.family->key : "";
  }
  return "";
}

std::string Joined(const std::vector<std::string>& texts) {
  std::string joined;
  for (const std::string& text : texts) {
    joined += (&text == &texts.front() ? "" : ", ") + text;
  }
  return joined;
}

}  // namespace kwa
