#pragma once

#include <cstdint>
#include <iosfwd>
#include <optional>
#include <string>
#include <vector>

#include "installer/installer_file.h"
#include "trust/signature.h"

namespace kwa {

// What a file is as the package's catalog.
struct ListedCatalog {
  std::string fault;  // why it is unreadable; then the others are 0
  unsigned generation;
  std::size_t memberCount;
};

// One file in an installer. Texts are escaped, fit for a terminal.
struct ListedFile {
  std::string archive;       // "A" or "B"; "-" in a file that is a single archive
  std::size_t order;         // place in its archive, from 1
  std::uint64_t position;    // of the body, in bytes from the archive's start
  std::uint64_t fileOffset;  // of the body, in bytes from the file's start
  std::string name;
  std::uint32_t size;  // bytes
  std::string kind;
  std::string sha256;
  // Of the version record, empty where there is none. The texts are in UTF-8 and not escaped.
  std::string version;  // "1.0.0.0"
  std::string description;
  std::string company;
  // What vouches for it.
  std::vector<Signature> signatures;
  std::optional<bool> isInCatalog;  // nothing where no catalog has to cover it, or can be read
  std::optional<ListedCatalog> catalog;

  // Who signed it, such as "Maker, Microsoft (BROKEN)", or "".
  std::string Signers() const;
};

// What the installer will read from the package's INF, and the devices that the wizard will name for it.
struct ListedPackage {
  std::string inf;
  std::string version;
  std::string displayName;
  std::string family;  // empty when the display name chooses none
  std::vector<std::string> devices;
  std::vector<std::string> germanDevices;
};

struct Listing {
  bool isInstaller;  // not a single archive
  bool isSigned;
  std::vector<ListedFile> files;
  std::optional<ListedPackage> package;  // nothing when there is no INF
};

// installer  as ReadSoundInstallerFile reads it
Listing MakeListing(const InstallerFile& installer);

// For people: a table of the files, the signatures, then the package.
void WriteListing(const Listing& listing, std::ostream& stream);

// For programs. The files have all the fields of a list of contents.
void WriteListingJson(const Listing& listing, std::ostream& stream);

}  // namespace kwa
