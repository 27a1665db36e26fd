#include "installer/listing.h"

#include <algorithm>
#include <array>
#include <nlohmann/json.hpp>
#include <ostream>

#include "report/escaped_text.h"
#include "dpinst/device_families.h"
#include "package/package_identity.h"
#include "content/file_kind.h"
#include "package/package_trust.h"
#include "pe/version_record.h"
#include "trust/digest.h"

namespace kwa {
namespace {

constexpr std::size_t kColumnCount = 6;
constexpr std::size_t kTableWidth = 120;
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

std::string SignatureText(const Signature& signature) {
  std::string text = signature.signer.empty() ? "a signer without a name" : signature.signer;
  if (signature.timestamp) {
    const Timestamp& timestamp = *signature.timestamp;
    text += ", " + (timestamp.time.empty() ? "at a time that is unreadable" : timestamp.time);
    text += timestamp.fault.empty() ? "" : " (BROKEN: " + timestamp.fault + ")";
  }
  return text + (signature.isNested ? ", nested" : "") +
         (signature.fault.empty() ? "" : ", BROKEN: " + signature.fault);
}

// The catalogs, then who signed what.
void WriteTrust(const Listing& listing, std::ostream& stream) {
  bool isAnySigned = false;
  for (const ListedFile& file : listing.files) {
    if (file.catalog) {
      const ListedCatalog& catalog = *file.catalog;
      stream << "Catalog:           " << file.name << ", ";
      if (catalog.fault.empty()) {
        stream << "generation " << catalog.generation << ", " << catalog.memberCount << " members"
               << (file.signatures.empty() ? ", NOT SIGNED" : "") << '\n';
      } else {
        stream << "UNREADABLE: " << catalog.fault << '\n';
      }
    }
    for (const Signature& signature : file.signatures) {
      stream << "Signed:            " << file.name << ": " << SignatureText(signature) << '\n';
      isAnySigned = true;
    }
  }
  if (isAnySigned) {
    stream << "                   (who may be trusted, revocation and dates are not judged: that is for Windows)\n";
  }
}

nlohmann::ordered_json TextOrNull(const std::string& text) {
  return text.empty() ? nlohmann::ordered_json() : nlohmann::ordered_json(text);
}

nlohmann::ordered_json SignaturesJson(const std::vector<Signature>& signatures) {
  nlohmann::ordered_json list;  // null for none
  for (const Signature& signature : signatures) {
    nlohmann::ordered_json timestamp;
    if (signature.timestamp) {
      timestamp = {{"kind", signature.timestamp->isRfc3161 ? "RFC 3161" : "counter-signature"},
                   {"time", TextOrNull(signature.timestamp->time)},
                   {"fault", TextOrNull(signature.timestamp->fault)}};
    }
    list.push_back({{"signer", TextOrNull(signature.signer)},
                    {"nested", signature.isNested},
                    {"timestamp", timestamp},
                    {"fault", TextOrNull(signature.fault)}});
  }
  return list;
}

nlohmann::ordered_json CatalogJson(const ListedCatalog& catalog) {
  return {{"generation", catalog.generation}, {"members", catalog.memberCount}, {"fault", TextOrNull(catalog.fault)}};
}

void WriteTable(const std::vector<Row>& rows, std::ostream& stream) {
  Row widest;
  for (const Row& row : rows) {
    for (std::size_t i = 0; i < kColumnCount; ++i) {
      widest[i].resize(std::max(widest[i].size(), row[i].size()));
    }
  }
  for (const Row& row : rows) {
    std::string line;
    for (std::size_t i = 0; i < kColumnCount; ++i) {
      const std::string padding(widest[i].size() - row[i].size(), ' ');
      const bool isNumber = i == 2;
      const bool isLast = i + 1 == kColumnCount;
      line += (isNumber ? padding : "") + row[i] + (isNumber || isLast ? "" : padding) + (isLast ? "" : "  ");
    }
    // Longer are only kinds whose end matters little, and names that no package has.
    stream << (line.size() > kTableWidth ? line.substr(0, kTableWidth - 3) + "..." : line) << '\n';
  }
}

}  // namespace

std::string ListedFile::Signers() const {
  std::vector<std::string> signers;
  for (const Signature& signature : signatures) {
    signers.push_back(signature.signer + (signature.fault.empty() ? "" : " (BROKEN)"));
  }
  return Joined(signers);
}

Listing MakeListing(const InstallerFile& installer) {
  Listing listing = {};
  listing.isInstaller = installer.image.has_value();
  listing.isSigned = installer.image.has_value() && !installer.image->CertificateTable().Empty();
  const PackageTrust trust = ReadPackageTrust(installer);
  for (const FileTrust& file : trust.files) {
    const LocatedArchive& archive = *file.archive;
    const ArchiveItem& item = *file.item;
    const bool isFirst = listing.files.empty() || listing.files.back().archive != archive.letter;
    VersionRecord record = FileVersionRecord(item.body);
    listing.files.push_back({archive.letter,
                             isFirst ? 1 : listing.files.back().order + 1,
                             item.position,
                             archive.fileOffset + item.position,
                             EscapedText(item.name),
                             item.size,
                             FileKind(item.body),
                             Sha256Hex(item.body),
                             record.fileVersion,
                             record.texts["FileDescription"],
                             record.texts["CompanyName"],
                             file.signatures,
                             file.isCovered,
                             {}});
    for (const PackageCatalog& catalog : trust.catalogs) {
      if (catalog.item == &item) {
        listing.files.back().catalog = {catalog.fault, catalog.catalog.generation, catalog.catalog.memberCount};
        listing.files.back().signatures = catalog.catalog.signatures;
      }
    }
  }
  if (const ArchiveItem* const inf = FindInf(installer)) {
    listing.package = ReadPackage(*inf);
  }
  return listing;
}

void WriteListing(const Listing& listing, std::ostream& stream) {
  std::vector<Row> rows = {{"ARCHIVE", "NAME", "SIZE", "VERSION", "CATALOG", "KIND"}};
  for (const ListedFile& file : listing.files) {
    const char* const isCovered = !file.isInCatalog ? "" : *file.isInCatalog ? "yes" : "NO";
    rows.push_back({file.archive, file.name, std::to_string(file.size), file.version, isCovered, file.kind});
  }
  WriteTable(rows, stream);
  stream << '\n';
  WriteTrust(listing, stream);
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
                     {"sha256", file.sha256},
                     {"signature", SignaturesJson(file.signatures)},
                     {"inCatalog", file.isInCatalog ? ordered_json(*file.isInCatalog) : ordered_json()},
                     {"catalog", file.catalog ? CatalogJson(*file.catalog) : ordered_json()}});
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
