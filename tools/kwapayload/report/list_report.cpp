#include "report/list_report.h"

#include <algorithm>
#include <array>

#include "report/escaped_text.h"
#include "report/words.h"

namespace kwa {
namespace {

constexpr std::size_t kColumnCount = 6;
constexpr std::size_t kTableWidth = 120;
using Row = std::array<std::string, kColumnCount>;

std::string Line(const char* label, const std::string& text) {
  constexpr std::size_t kLabelWidth = 19;
  std::string line(label);
  line.resize(std::max(line.size(), kLabelWidth), ' ');
  return line + text + '\n';
}

std::string TableText(const std::vector<Row>& rows) {
  Row widest;
  for (const Row& row : rows) {
    for (std::size_t i = 0; i < kColumnCount; ++i) {
      widest[i].resize(std::max(widest[i].size(), row[i].size()));
    }
  }
  std::string table;
  for (const Row& row : rows) {
    std::string line;
    for (std::size_t i = 0; i < kColumnCount; ++i) {
      const std::string padding(widest[i].size() - row[i].size(), ' ');
      const bool isNumber = i == 2;
      const bool isLast = i + 1 == kColumnCount;
      line += (isNumber ? padding : "") + row[i] + (isNumber || isLast ? "" : padding) + (isLast ? "" : "  ");
    }
    // Only kinds whose end matters little, and names that no package has, are longer.
    table += (line.size() > kTableWidth ? line.substr(0, kTableWidth - 3) + "..." : line) + '\n';
  }
  return table;
}

std::string CatalogText(const InspectedFile& file, const Result<Catalog>& catalog) {
  const std::string name = Escaped(file.item.name) + ", ";
  if (!catalog) {
    return name + "UNREADABLE: " + Escaped(catalog.error().what);
  }
  return name + "catalog version " + std::to_string(catalog->version) + ", " + std::to_string(catalog->memberCount) +
         " members" + (catalog->signatures.empty() ? ", NOT SIGNED" : "");
}

// The catalogs, and who signed what.
std::string TrustText(const Inspection& inspection) {
  std::string text;
  bool isAnySigned = false;
  for (const InspectedFile& file : inspection.files) {
    if (const PackageCatalog* const catalog = inspection.trust.CatalogOf(file.item)) {
      text += Line("Catalog:", CatalogText(file, *catalog->catalog));
    }
    for (const Signature& signature : file.trust.signatures) {
      text += Line("Signed:", Escaped(file.item.name) + ": " + SignatureText(signature));
      isAnySigned = true;
    }
  }
  return text + (isAnySigned
                     ? Line("", "(who may be trusted, revocation and dates are not judged: that is for Windows)")
                     : "");
}

std::string PackageText(const Inspection& inspection) {
  if (!inspection.package) {
    return Line("Package:", "none, there is no INF");
  }
  const DriverPackage& package = *inspection.package;
  // The installer's families and device names are among its texts.
  const char* const doubt = inspection.hasKnownTexts ? "" : " (a guess: the installer has other texts than this tool)";
  std::string text = Line("Package:", Escaped(package.inf.name)) +
                     Line("Version:", Escaped(package.identity.version.text)) +
                     Line("Display name:", Escaped(package.identity.displayName.text));
  if (package.family == nullptr) {
    return text + Line("Family:", std::string("none") + doubt);
  }
  const std::vector<std::string> devices = DeviceNames(*package.family, false);
  const std::vector<std::string> germanDevices = DeviceNames(*package.family, true);
  text += Line("Family:", package.family->key + std::string(doubt)) + Line("Devices:", Joined(devices) + doubt);
  return text + (germanDevices != devices ? Line("Devices (German):", Joined(germanDevices) + doubt) : "");
}

// The file itself, and the program around the payload.
std::string InstallerText(const std::string& file, const Inspection& inspection) {
  std::string text = Line("File:", Escaped(file)) + Line("SHA-256:", inspection.sha256);
  if (!inspection.installer.image) {
    return text;
  }
  text += Line("Installer version:", inspection.version ? VersionText(inspection.version) : "none") +
          Line("Program:", inspection.program.fingerprint + " (its fingerprint)");
  for (const Signature& signature : inspection.signatures) {
    text += Line("Signed by:", SignatureText(signature));
  }
  return text + (inspection.signatures.empty() ? Line("Signed by:", "nobody") : "");
}

}  // namespace

std::string ListText(const std::string& file, const Inspection& inspection) {
  std::vector<Row> rows = {{"ARCHIVE", "NAME", "SIZE", "VERSION", "CATALOG", "KIND"}};
  for (const InspectedFile& carried : inspection.files) {
    rows.push_back({std::string(1, carried.item.archive), Escaped(carried.item.name),
                    std::to_string(carried.item.body.Size()), VersionText(carried.version), CoverageText(carried),
                    KindText(carried.kind)});
  }
  return TableText(rows) + '\n' + InstallerText(file, inspection) + TrustText(inspection) + PackageText(inspection);
}

}  // namespace kwa
