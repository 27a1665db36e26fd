#include "installer/listing.h"

#include <algorithm>
#include <array>
#include <nlohmann/json.hpp>
#include <ostream>

#include "base/escaped_text.h"
#include "dpinst/device_families.h"
#include "inf/package_identity.h"
#include "installer/file_kind.h"
#include "pe/version_record.h"
#include "trust/digest.h"

namespace kwa {
namespace {

constexpr std::size_t kColumnCount = 7;
using Row = std::array<std::string, kColumnCount>;

std::vector<std::string> DeviceNames(const char* const* rows, unsigned rowCount) {
  std::vector<std::string> names;
  for (unsigned i = 0; i < rowCount; ++i) {
    const std::string name = rows[i];
    names.push_back(name.substr(name.find_first_not_of('\n')));
  }
  return names;
}

ListedPackage ReadPackage(const ArchiveItem& inf) {
  const PackageIdentity identity = ReadHostPackageIdentity(InfText(inf.body));
  ListedPackage package = {
      EscapedText(inf.name), EscapedText(identity.version), EscapedText(identity.displayName), "", {}, {}};
  if (const DeviceFamily* const family = FindDeviceFamily(identity.displayName.c_str())) {
    package.family = family->key;
    package.devices = DeviceNames(family->rows, family->rowCount);
    package.germanDevices = DeviceNames(family->germanRows, family->rowCount);
  }
  return package;
}

std::string Joined(const std::vector<std::string>& names) {
  std::string text;
  for (const std::string& name : names) {
    text += (text.empty() ? "" : ", ") + name;
  }
  return text;
}

nlohmann::ordered_json TextOrNull(const std::string& text) {
  return text.empty() ? nlohmann::ordered_json() : nlohmann::ordered_json(text);
}

void WriteTable(const std::vector<Row>& rows, std::ostream& stream) {
  Row widest;
  for (const Row& row : rows) {
    for (std::size_t i = 0; i < kColumnCount; ++i) {
      widest[i].resize(std::max(widest[i].size(), row[i].size()));
    }
  }
  for (const Row& row : rows) {
    for (std::size_t i = 0; i < kColumnCount; ++i) {
      const std::string padding(widest[i].size() - row[i].size(), ' ');
      const bool isNumber = i == 1 || i == 3;
      const bool isLast = i + 1 == kColumnCount;
      stream << (isNumber ? padding : "") << row[i] << (isNumber || isLast ? "" : padding) << (isLast ? "\n" : "  ");
    }
  }
}

}  // namespace

Listing MakeListing(const InstallerFile& installer) {
  Listing listing = {};
  listing.isInstaller = installer.image.has_value();
  listing.isSigned = installer.image.has_value() && !installer.image->CertificateTable().Empty();
  for (const LocatedArchive& located : installer.archives) {
    std::size_t order = 0;
    for (const ArchiveItem& item : located.archive.items) {
      VersionRecord record = FileVersionRecord(item.body);
      listing.files.push_back({located.letter, ++order, item.position, located.fileOffset + item.position,
                               EscapedText(item.name), item.size, FileKind(item.body), Sha256Hex(item.body),
                               record.fileVersion, record.texts["FileDescription"], record.texts["CompanyName"]});
    }
  }
  if (const ArchiveItem* const inf = FindInf(installer)) {
    listing.package = ReadPackage(*inf);
  }
  return listing;
}

void WriteListing(const Listing& listing, std::ostream& stream) {
  std::vector<Row> rows = {{"ARCHIVE", "POSITION", "NAME", "SIZE", "VERSION", "KIND", "SHA-256"}};
  for (const ListedFile& file : listing.files) {
    rows.push_back({file.archive, std::to_string(file.position), file.name, std::to_string(file.size), file.version,
                    file.kind, file.sha256});
  }
  WriteTable(rows, stream);
  stream << '\n';
  if (listing.isInstaller) {
    stream << "Signature:         " << (listing.isSigned ? "there is one, not checked" : "none") << '\n';
  }
  if (!listing.package) {
    stream << "Package:           none, there is no INF\n";
    return;
  }
  const ListedPackage& package = *listing.package;
  stream << "Package:           " << package.inf << "\nVersion:           " << package.version
         << "\nDisplay name:      " << package.displayName
         << "\nFamily:            " << (package.family.empty() ? "none" : package.family)
         << "\nDevices:           " << Joined(package.devices) << '\n';
  if (package.germanDevices != package.devices) {
    stream << "Devices (German):  " << Joined(package.germanDevices) << '\n';
  }
}

void WriteListingJson(const Listing& listing, std::ostream& stream) {
  using nlohmann::ordered_json;
  ordered_json files = ordered_json::array();
  for (const ListedFile& file : listing.files) {
    files.push_back({{"archive", file.archive},
                     {"order", file.order},
                     {"position", file.position},
                     {"fileOffset", file.fileOffset},
                     {"name", file.name},
                     {"size", file.size},
                     {"kind", file.kind},
                     {"version", TextOrNull(file.version)},
                     {"description", TextOrNull(file.description)},
                     {"company", TextOrNull(file.company)},
                     {"sha256", file.sha256}});
  }
  ordered_json document = {{"installer", listing.isInstaller}, {"signed", listing.isSigned}, {"files", files}};
  if (listing.package) {
    const ListedPackage& package = *listing.package;
    document["package"] = {{"inf", package.inf},
                           {"version", package.version},
                           {"displayName", package.displayName},
                           {"family", TextOrNull(package.family)},
                           {"devices", package.devices},
                           {"germanDevices", package.germanDevices}};
  } else {
    document["package"] = nullptr;
  }
  stream << document.dump(2) << '\n';
}

}  // namespace kwa
