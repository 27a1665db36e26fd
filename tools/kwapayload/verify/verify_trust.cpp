#include <string>

#include "report/escaped_text.h"
#include "package/package_trust.h"
#include "trust/authenticode.h"
#include "verify/verification.h"

namespace kwa {
namespace {

void AddBrokenSignatures(const std::string& where, const std::vector<Signature>& signatures, const char* code,
                         Findings* findings) {
  for (const Signature& signature : signatures) {
    const std::string text =
        "its signature" + (signature.signer.empty() ? "" : " by \"" + signature.signer + "\"") + " ";
    if (!signature.fault.empty()) {
      findings->AddError(where, text + signature.fault, code);
    } else if (signature.timestamp && !signature.timestamp->fault.empty()) {
      findings->AddWarning(where, text + "has a timestamp that " + signature.timestamp->fault, "timestamp-broken");
    }
  }
}

void VerifyCatalog(const std::string& where, const PackageCatalog& catalog, Findings* findings) {
  if (!catalog.fault.empty()) {
    findings->AddError(where, catalog.fault, "catalog-unreadable");
    return;
  }
  if (catalog.catalog.signatures.empty()) {
    findings->AddError(where, "is not signed", "catalog-unsigned");
  }
  AddBrokenSignatures(where, catalog.catalog.signatures, "catalog-signature-broken", findings);
  if (catalog.coveredCount == 0) {
    findings->AddWarning(where, "covers nothing that is carried: it is one of other files", "catalog-of-other-files");
  }
}

std::string Uncovered(const FileTrust& file) {
  std::string text = "is not covered by ";
  for (const std::string& name : file.uncoveringNames) {
    text += (&name == &file.uncoveringNames.front() ? "" : ", ") + EscapedText(name);
  }
  if (!file.coveringLineEnds.empty()) {
    return text + "; would be covered with " + file.coveringLineEnds + " line ends";
  }
  return text + (file.isNamed ? "; the catalog names it, but with other contents" : "");
}

}  // namespace

void VerifyTrust(const InstallerFile& installer, Findings* findings) {
  if (installer.image) {
    FileDigests digests(installer.image->file);
    AddBrokenSignatures("executable", ReadEmbeddedSignatures(&digests), "signature-broken", findings);
  }
  const PackageTrust trust = ReadPackageTrust(installer);
  for (const FileTrust& file : trust.files) {
    const std::string where = file.archive->Where(*file.item);
    for (const PackageCatalog& catalog : trust.catalogs) {
      if (catalog.item == file.item) {
        VerifyCatalog(where, catalog, findings);
      }
    }
    AddBrokenSignatures(where, file.signatures, "signature-broken", findings);
    if (!file.uncoveringNames.empty()) {
      findings->AddError(where, Uncovered(file), "not-in-catalog");
    }
  }
}

}  // namespace kwa
