#pragma once

#include <optional>
#include <string>

#include "base/finding.h"
#include "installer/installer_file.h"
#include "package/driver_package.h"
#include "payload/payload_contents.h"

// What `kwapayload verify` looks at, one function an area. Each adds what it finds. Only one of them reports a fault.
// Nothing is said about the content of archives that are not sound.

namespace kwa {

// Where an item is: "archive A, marlin_usb.inf", or the name alone where it is not known which archive this is.
std::string Where(const ArchiveItem& item);

// The items of one archive against the list of what an installer must hold.
//
// archive  which archive of the list, 'A' or 'B'; other items are ignored
void VerifyContents(const std::vector<ArchiveItem>& items, const PayloadContents& contents, char archive,
                    Findings* findings);

// The driver package as its INF describes it.
void VerifyPackage(const std::vector<ArchiveItem>& items, const std::optional<DriverPackage>& package,
                   Findings* findings);

// What DriverVer says, to Setup and about the drivers' own versions.
void VerifyVersions(const std::vector<ArchiveItem>& items, const DriverPackage& package, Findings* findings);

// Whether the package's catalogs cover its files, and whether signatures hold: those of the catalogs and of the
// programs. Whether a signer is trusted, and when, is left to Windows.
void VerifyTrust(const std::vector<ArchiveItem>& items, const PackageTrust& trust, Findings* findings);

// Whether signatures of a program hold. `code` is for one that does not.
void VerifySignatures(const std::string& where, const std::vector<Signature>& signatures, const char* code,
                      Findings* findings);

// The program itself.
void VerifyExecutable(const PeImage& image, Findings* findings);

struct Verification {
  Findings findings;
  std::vector<Signature> signatures;  // of the installer itself
};

// All of the above. A single archive or package folder need not have what only both archives together have, but if it
// has an INF, it must be a whole driver package.
//
// contents  the list of what the installer must hold; empty for none
Verification VerifyInstaller(const InstallerFile& installer, const PayloadContents& contents);

}  // namespace kwa
