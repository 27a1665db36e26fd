#include <algorithm>
#include <cstddef>
#include <set>
#include <string>

#include "base/ascii_text.h"
#include "report/escaped_text.h"
#include "content/text_kind.h"
#include "dpinst/device_families.h"
#include "inf/catalog_names.h"
#include "inf/inf_reader.h"
#include "inf/inf_source_files.h"
#include "package/package_identity.h"
#include "inf/setup_section.h"
#include "payload/entry_name.h"
#include "verify/verification.h"

namespace kwa {
namespace {

// Why a value makes the configuration unreadable, or "": it is written into the XML text as it stands.
std::string XmlFault(const std::string& value) {
  for (const char c : value) {
    if (c == '&' || c == '<') {
      return std::string("holds \"") + c + "\", which breaks the XML of the configuration";
    }
    if (static_cast<unsigned char>(c) < ' ' && c != '\t') {
      return "holds a control character, which breaks the XML of the configuration";
    }
  }
  if (value.find("]]>") != std::string::npos) {
    return "holds \"]]>\", which breaks the XML of the configuration";
  }
  if (!IsUtf8(ByteSpan(value))) {
    return "holds characters beyond ASCII, which the configuration would carry as invalid UTF-8";
  }
  return "";
}

// Judges a value that the installer writes into its configuration. Returns whether it is fit.
bool VerifyValue(const std::string& where, const char* key, const std::string& value, bool isCut, Findings* findings) {
  if (value.empty()) {
    findings->AddError(where, std::string("[Version] has no ") + key, "version-key-missing");
  } else if (isCut) {
    findings->AddError(where,
                       std::string(key) + " has more than " + std::to_string(kInfValueLimit) +
                           " characters, and the installer keeps no more",
                       "value-too-long");
  } else if (const std::string fault = XmlFault(value); !fault.empty()) {
    findings->AddError(where, std::string(key) + " " + fault, "value-breaks-xml");
  } else {
    return true;
  }
  return false;
}

void VerifyIdentity(const std::string& where, const InfText& inf, Findings* findings) {
  const PackageIdentity identity = ReadHostPackageIdentity(inf);
  if (!identity.fault.empty()) {
    findings->AddError(where, identity.fault, "inf-encoding");
    return;
  }
  const auto isCut = [&](const char* key) {
    return ReadInfValue(inf, "Version", key, kInfValueLimit + 1).size() > kInfValueLimit;
  };
  VerifyValue(where, "DriverVer", identity.version, isCut("DriverVer"), findings);
  const bool isNameFit =
      VerifyValue(where, "DriverPackageDisplayName", identity.displayName, isCut("DriverPackageDisplayName"), findings);
  if (isNameFit && FindDeviceFamily(identity.displayName.c_str()) == nullptr) {
    findings->AddError(where,
                       "DriverPackageDisplayName \"" + EscapedText(identity.displayName) +
                           "\" names no device family, so the wizard will list no devices",
                       "no-family");
  }
}

// Whether the INF has models for a platform, such as "x86": its [Manufacturer] says "KWA = Models,NTx86,NTamd64.6.1",
// the section's name and then the platforms.
bool HasModels(const InfText& inf, const std::string& platform) {
  const std::string decoration = UpperCase("nt" + platform);
  for (const SetupLine& line : ReadSetupSection(inf, "Manufacturer")) {
    for (std::size_t i = 1; i < line.values.size(); ++i) {
      if (UpperCase(line.values[i]).rfind(decoration, 0) == 0) {
        return true;
      }
    }
  }
  return false;
}

}  // namespace

void VerifyPackage(const InstallerFile& installer, Findings* findings) {
  std::set<std::string> names;
  for (const LocatedArchive& located : installer.archives) {
    for (const ArchiveItem& item : located.archive.items) {
      names.insert(UpperCase(item.name));
    }
  }
  const ArchiveItem* const item = FindInf(installer);
  if (item == nullptr) {
    findings->AddError("package", "holds no INF", "no-inf");
    return;
  }
  const std::string where = "package, " + EscapedText(item->name);
  for (const std::string& name : names) {
    // The installer's "*.inf" also fits the short name of "about.info", ABOUT~1.INF.
    if (name.compare(std::min(name.rfind('.'), name.size()), 4, ".INF") == 0 && name != UpperCase(item->name)) {
      findings->AddError(where, "is not the only INF: there is " + EscapedText(name), "second-inf");
    }
  }
  const InfText inf(item->body);
  VerifyIdentity(where, inf, findings);
  if (!inf.Fault().empty()) {
    return;  // what else is read of it is as doubtful
  }

  const std::set<std::string> catalogs = {CatalogName(inf, "x86"), CatalogName(inf, "amd64")};
  if (catalogs == std::set<std::string>{""}) {
    findings->AddError(where, "[Version] has no CatalogFile", "version-key-missing");
  }
  for (const char* const platform : {"x86", "amd64"}) {
    if (catalogs.size() == 2 && CatalogName(inf, platform).empty() && HasModels(inf, platform)) {
      findings->AddError(where, std::string("[Version] names no CatalogFile for the models of ") + platform,
                         "version-key-missing");
    }
  }
  for (const std::string& catalog : catalogs) {
    if (!catalog.empty() && names.count(UpperCase(catalog)) == 0) {
      findings->AddError(where, "CatalogFile \"" + EscapedText(catalog) + "\" is not carried", "catalog-missing");
    }
  }
  const std::vector<InfSourceFile> sources = ReadInfSourceFiles(inf);
  if (sources.empty()) {
    findings->AddError(where, "has no [SourceDisksFiles]", "no-source-files");
  }
  for (const InfSourceFile& source : sources) {
    const std::string named = "[SourceDisksFiles] names \"" + EscapedText(source.name) + "\", ";
    if (names.count(UpperCase(source.name)) == 0) {
      findings->AddError(where, named + "which is not carried", "source-file-missing");
    } else if (!source.folder.empty()) {
      findings->AddError(where,
                         named + "which Setup will look for in the folder \"" + EscapedText(source.folder) +
                             "\", and all files lie beside the INF",
                         "source-file-in-folder");
    }
  }
}

}  // namespace kwa
