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
  std::string text = Line("Package:", FieldText(PackageField::Inf, inspection)) +
                     Line("Version:", FieldText(PackageField::Version, inspection)) +
                     Line("Display name:", FieldText(PackageField::DisplayName, inspection));
  if (package.family == nullptr) {
    return text + Line("Family:", "none") + Line("Devices:", "");
  }
  const std::vector<std::string> devices = DeviceNames(*package.family, false);
  const std::vector<std::string> germanDevices = DeviceNames(*package.family, true);
  text += Line("Family:", package.family->key) + Line("Devices:", Joined(devices));
  return text + (germanDevices != devices ? Line("Devices (German):", Joined(germanDevices)) : "");
}

}  // namespace

std::string ListText(const Inspection& inspection) {
  std::vector<Row> rows = {{"ARCHIVE", "NAME", "SIZE", "VERSION", "CATALOG", "KIND"}};
  for (const InspectedFile& file : inspection.files) {
    rows.push_back({FieldText(FileField::Archive, file), FieldText(FileField::Name, file),
                    FieldText(FileField::Size, file), FieldText(FileField::Version, file), CoverageText(file),
                    KindText(file.kind)});
  }
  std::string text = TableText(rows) + '\n' + TrustText(inspection);
  if (const std::optional<PeImage>& image = inspection.installer.image) {
    text += Line("Signature:", image->CertificateTable().Empty() ? "none" : "there is one, not checked");
  }
  return text + PackageText(inspection);
}

}  // namespace kwa
