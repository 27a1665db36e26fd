#pragma once

#include "base/finding.h"
#include "installer/installer_file.h"
#include "payload/payload_contents.h"

// What `kwapayload verify` looks at, one function an area. Each appends what it finds. A fault is reported by one of
// them only: what lies in an archive that is not sound is left out by the others, since it cannot be told.

namespace kwa {

// Structure of file and archives, and the names as the installer will use them.
void VerifyLayout(const InstallerFile& installer, Findings* findings);

// The files against the list of what an installer must hold.
void VerifyContents(const InstallerFile& installer, const PayloadContents& contents, Findings* findings);

// The files that the installer and its configuration name: both editions of DPInst, licence texts, watermark. Those
// that `contents` lists are left to VerifyContents.
void VerifyCompanions(const InstallerFile& installer, const PayloadContents& contents, Findings* findings);

// The driver package as its INF describes it.
void VerifyPackage(const InstallerFile& installer, Findings* findings);

// What DriverVer says, to Setup and of the drivers' own versions.
void VerifyVersions(const InstallerFile& installer, Findings* findings);

// Whether the package's catalogs cover its files, and whether signatures are sound: the catalogs', those that programs
// carry, and the installer's own. Who may be trusted, and when, is left to Windows.
void VerifyTrust(const InstallerFile& installer, Findings* findings);

// The program itself. Nothing for a file that is a single archive.
void VerifyExecutable(const InstallerFile& installer, Findings* findings);

// All of the above. A file that is a single archive is not held to what only both together can have, but one with an
// INF is held to being a whole driver package.
Findings VerifyInstaller(const InstallerFile& installer, const PayloadContents& contents);

}  // namespace kwa
