#include <algorithm>
#include <cstddef>
#include <set>
#include <string>

#include "base/ascii_text.h"
#include "content/text_kind.h"
#include "inf/profile_value.h"
#include "verify/verification.h"

namespace kwa {
namespace {

// Whether the configuration stays readable with a value, which the installer writes into the XML text without escaping.
Check CheckXml(const std::string& value) {
  for (const char c : value) {
    if (c == '&' || c == '<') {
      return Failure(std::string("holds \"") + c + "\", which breaks the XML of the configuration");
    }
    if (static_cast<unsigned char>(c) < ' ' && c != '\t') {
      return Failure("holds a control character, which breaks the XML of the configuration");
    }
  }
  if (value.find("]]>") != std::string::npos) {
    return Failure("holds \"]]>\", which breaks the XML of the configuration");
  }
  if (!IsUtf8(ByteSpan(value))) {
    return Failure("holds characters beyond ASCII, which the configuration would carry as invalid UTF-8");
  }
  return {};
}

// Judges a value that the installer writes into its configuration. Returns whether it is fit.
bool VerifyValue(const std::string& where, const char* key, const IdentityValue& value, Findings* findings) {
  if (value.text.empty()) {
    findings->AddError(where, std::string("[Version] has no ") + key, "version-key-missing");
  } else if (value.isCut) {
    findings->AddError(where,
                       std::string(key) + " has more than " + std::to_string(kProfileValueLimit) +
                           " characters, and the installer keeps no more",
                       "value-too-long");
  } else if (const Check xml = CheckXml(value.text); !xml) {
    findings->AddError(where, std::string(key) + " " + xml.error().what, "value-breaks-xml");
  } else {
    return true;
  }
  return false;
}

void VerifyIdentity(const std::string& where, const DriverPackage& package, Findings* findings) {
  const PackageIdentity& identity = package.identity;
  if (!identity.certainty) {
    findings->AddError(where, identity.certainty.error().what, "inf-encoding");
    return;
  }
  VerifyValue(where, "DriverVer", identity.version, findings);
  if (VerifyValue(where, "DriverPackageDisplayName", identity.displayName, findings) && package.family == nullptr) {
    findings->AddError(where,
                       "DriverPackageDisplayName \"" + identity.displayName.text +
                           "\" names no device family, so the wizard will list no devices",
                       "no-family");
  }
}

void VerifyCatalogNames(const std::string& where, const std::vector<ArchiveItem>& items,
                        const std::vector<PackagePlatform>& platforms, Findings* findings) {
  std::set<std::string> names;
  for (const PackagePlatform& platform : platforms) {
    names.insert(platform.catalogName);
  }
  if (names == std::set<std::string>{""}) {
    findings->AddError(where, "[Version] has no CatalogFile", "version-key-missing");
    return;
  }
  for (const PackagePlatform& platform : platforms) {
    if (platform.catalogName.empty() && !platform.models.installSections.empty()) {
      findings->AddError(where, "[Version] names no CatalogFile for the models of " + PlatformName(platform.platform),
                         "version-key-missing");
    }
  }
  for (const std::string& name : names) {
    if (!name.empty() && FindItem(items, name) == nullptr) {
      findings->AddError(where, "CatalogFile \"" + name + "\" is not carried", "catalog-missing");
    }
  }
}

void VerifySourceFiles(const std::string& where, const std::vector<ArchiveItem>& items,
                       const std::vector<PackagePlatform>& platforms, Findings* findings) {
  std::set<std::string> seen;  // a file of both platforms is one finding
  for (const PackagePlatform& platform : platforms) {
    for (const InfSourceFile& source : platform.sourceFiles) {
      if (!seen.insert(source.name + '\\' + source.folder).second) {
        continue;
      }
      const std::string named = "[SourceDisksFiles] names \"" + source.name + "\", ";
      if (FindItem(items, source.name) == nullptr) {
        findings->AddError(where, named + "which is not carried", "source-file-missing");
      } else if (!source.folder.empty()) {
        findings->AddError(where,
                           named + "for which Setup will look in the folder \"" + source.folder +
                               "\", but all files are beside the INF",
                           "source-file-in-folder");
      }
    }
  }
  if (seen.empty()) {
    findings->AddError(where, "has no [SourceDisksFiles]", "no-source-files");
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
  std::set<std::string> others;
  for (const ArchiveItem& item : items) {
    const std::string name = UpperCase(item.name);
    // The installer's "*.inf" also fits the short name of "about.info", ABOUT~1.INF.
    if (name.compare(std::min(name.rfind('.'), name.size()), 4, ".INF") == 0 && name != UpperCase(package->inf.name)) {
      others.insert(name);
    }
  }
  for (const std::string& name : others) {
    findings->AddError(where, "is not the only INF: there is " + name, "second-inf");
  }
  VerifyIdentity(where, *package, findings);
  if (package->setup) {
    VerifyCatalogNames(where, items, package->setup->platforms, findings);
    VerifySourceFiles(where, items, package->setup->platforms, findings);
  }
}

}  // namespace kwa
