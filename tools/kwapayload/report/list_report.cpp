#include "report/list_report.h"

#include <utf8.h>

#include <algorithm>
#include <array>
#include <numeric>
#include <sstream>

#include "report/escaped_text.h"
#include "report/words.h"

namespace kwa {
namespace {

constexpr std::size_t kColumnCount = 6;
constexpr std::size_t kNameColumn = 1;
constexpr std::size_t kSizeColumn = 2;
constexpr std::size_t kGap = 2;  // blanks between columns
using Row = std::array<std::string, kColumnCount>;

std::string Line(std::string label, const std::string& text) {
  constexpr std::size_t kLabelWidth = 19;
  label.resize(std::max(label.size(), kLabelWidth), ' ');
  return label + text + '\n';
}

// The width in a terminal. Escaped text has no character of another width but wide ones, which no package's names have.
std::size_t WidthOf(const std::string& text) {
  return static_cast<std::size_t>(utf8::unchecked::distance(text.begin(), text.end()));
}

std::string Shortened(const std::string& text, std::size_t width) {
  if (WidthOf(text) <= width) {
    return text;
  }
  auto end = text.begin();
  utf8::unchecked::advance(end, std::max<std::size_t>(width, 3) - 3);
  return std::string(text.begin(), end) + "...";
}

// width  that the table must fit: long names are shortened first, then the kinds in the last column
std::string TableText(const std::vector<Row>& rows, std::size_t width) {
  std::array<std::size_t, kColumnCount> widths = {};
  for (const Row& row : rows) {
    for (std::size_t i = 0; i < kColumnCount; ++i) {
      widths[i] = std::max(widths[i], WidthOf(row[i]));
    }
  }
  const auto shorten = [&](std::size_t column, std::size_t least) {
    const std::size_t total = std::accumulate(widths.begin(), widths.end(), (kColumnCount - 1) * kGap);
    const std::size_t excess = total - std::min(total, width);
    widths[column] = std::min(widths[column], std::max(widths[column] - std::min(widths[column], excess), least));
  };
  shorten(kNameColumn, 24);
  shorten(kColumnCount - 1, 12);
  std::string table;
  for (const Row& row : rows) {
    std::string line;
    for (std::size_t i = 0; i < kColumnCount; ++i) {
      const std::string cell = Shortened(row[i], widths[i]);
      const std::string padding(widths[i] - std::min(widths[i], WidthOf(cell)), ' ');
      line += (i == kSizeColumn ? padding + cell : cell + padding) + std::string(kGap, ' ');
    }
    table += line.substr(0, line.find_last_not_of(' ') + 1) + '\n';
  }
  return table;
}

std::string CatalogText(const InspectedFile& file, const Result<Catalog>& catalog) {
  const std::string name = Escaped(file.item.name) + ", ";
  if (!catalog) {
    return name + "UNREADABLE: " + Escaped(catalog.error().what);
  }
  return name + "catalog version " + std::to_string(catalog->version) + ", " + std::to_string(catalog->memberCount) +
         " members" + (catalog->signatures.empty() ? ", NOT SIGNED" : "") +
         (catalog->windows.empty() ? "" : ", for Windows " + Escaped(Joined(catalog->windows)));
}

// The catalogs, and who signed what.
std::string TrustText(const Inspection& inspection) {
  std::string text;
  bool isAnySigned = false;
  for (const InspectedFile& file : inspection.files) {
    if (file.trust.catalog != nullptr) {
      text += Line("Catalog:", CatalogText(file, *file.trust.catalog->catalog));
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

// What the INF says for each platform: the Windows versions, and at most ten hardware IDs.
std::string HardwareText(const DriverPackage& package) {
  constexpr std::size_t kMaxIds = 10;
  std::string text;
  for (const PlatformInf& platform : package.platforms) {
    const std::string name = "(" + PlatformName(platform.platform) + "):";
    std::vector<std::string> ids = platform.hardwareIds;
    const std::size_t more = ids.size() - std::min(ids.size(), kMaxIds);
    ids.resize(ids.size() - more);
    if (!ids.empty() && !platform.windowsVersions.empty()) {
      text += Line("Windows " + name, Escaped(Joined(platform.windowsVersions)));
    }
    if (!ids.empty()) {
      text +=
          Line("Hardware " + name, Escaped(Joined(ids)) + (more == 0 ? "" : " and " + std::to_string(more) + " more"));
    }
  }
  return text;
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
    return text + Line("Family:", std::string("none") + doubt) + HardwareText(package);
  }
  const std::vector<std::string> devices = DeviceNames(*package.family, false);
  const std::vector<std::string> germanDevices = DeviceNames(*package.family, true);
  text += Line("Family:", package.family->key + std::string(doubt)) + Line("Devices:", Joined(devices) + doubt);
  text += germanDevices != devices ? Line("Devices (German):", Joined(germanDevices) + doubt) : "";
  return text + HardwareText(package);
}

// The file itself, and the program around the payload.
std::string InstallerText(const std::string& file, const Inspection& inspection) {
  std::string text = Line("File:", Escaped(file));
  text += inspection.sha256.empty() ? "" : Line("SHA-256:", inspection.sha256);
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

std::string ListText(const std::string& file, const Inspection& inspection, std::size_t terminalWidth) {
  const std::size_t width = terminalWidth == 0 ? std::string::npos : terminalWidth;
  std::vector<Row> rows = {{"ARCHIVE", "NAME", "SIZE", "VERSION", "CATALOG", "KIND"}};
  for (const InspectedFile& carried : inspection.files) {
    rows.push_back({std::string(1, carried.item.archive), Escaped(carried.item.name),
                    std::to_string(carried.item.body.Size()), VersionText(carried.version), CoverageText(carried),
                    KindText(carried.kind)});
  }
  std::string text = TableText(rows, width) + '\n';
  std::istringstream facts(InstallerText(file, inspection) + TrustText(inspection) + PackageText(inspection));
  for (std::string line; std::getline(facts, line);) {
    text += Wrapped(line, width) + '\n';
  }
  return text;
}

}  // namespace kwa
