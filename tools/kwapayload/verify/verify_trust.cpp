#include <string>

#include "verify/verification.h"

namespace kwa {
namespace {

void VerifyCatalog(const std::string& where, const PackageCatalog& catalog, Findings* findings) {
  const Result<Catalog>& read = *catalog.catalog;
  if (!read) {
    findings->AddError(where, read.error().what, "catalog-unreadable");
    return;
  }
  if (read->signatures.empty()) {
    findings->AddError(where, "is not signed", "catalog-unsigned");
  }
  VerifySignatures(where, read->signatures, "catalog-signature-broken", findings);
  if (catalog.coveredCount == 0) {
    findings->AddWarning(where, "covers no carried file: it is the catalog of other files", "catalog-of-other-files");
  }
}

std::string Uncovered(const FileTrust& file) {
  std::string text = "is not covered by ";
  for (const std::string& name : file.uncoveringNames) {
    text += (&name == &file.uncoveringNames.front() ? "" : ", ") + name;
  }
  if (file.coveringLineEnds) {
    return text + "; would be covered with " + *file.coveringLineEnds + " line ends";
  }
  return text + (file.isNamed ? "; the catalog names it, but with other contents" : "");
}

}  // namespace

void VerifySignatures(const std::string& where, const std::vector<Signature>& signatures, const char* code,
                      Findings* findings) {
  for (const Signature& signature : signatures) {
    const std::string text =
        "its signature" + (signature.signer.empty() ? "" : " by \"" + signature.signer + "\"") + " ";
    if (!signature.check) {
      findings->AddError(where, text + signature.check.error().what, code);
      continue;
    }
    for (const Timestamp& timestamp : signature.timestamps) {
      if (!timestamp.check) {
        findings->AddWarning(where, text + "has a timestamp that " + timestamp.check.error().what, "timestamp-broken");
      }
    }
  }
}

void VerifyTrust(const std::vector<ArchiveItem>& items, const PackageTrust& trust, Findings* findings) {
  for (std::size_t i = 0; i < items.size(); ++i) {
    const std::string where = Where(items[i]);
    const FileTrust& file = trust.files[i];
    if (file.catalog != nullptr) {
      VerifyCatalog(where, *file.catalog, findings);
    } else {
      VerifySignatures(where, file.signatures, "signature-broken", findings);
    }
    if (!file.uncoveringNames.empty()) {
      findings->AddError(where, Uncovered(file), "not-in-catalog");
    }
  }
}

}  // namespace kwa
