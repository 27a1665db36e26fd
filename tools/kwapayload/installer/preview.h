#pragma once

#include <string>

#include "installer/installer_file.h"
#include "package/package_identity.h"

namespace kwa {

// The dpinst.xml that the installer writes for a package, through the installer's own writer, with the line ends that
// Windows gives it.
//
// legacyMode  as on Windows before Vista
std::string PreviewDpinstConfig(const PackageIdentity& identity, bool legacyMode);

// The digest (SHA-256, hexadecimal) of what PreviewDpinstConfig gives for a fixed set of packages: one of each device
// family and one of none, on both kinds of Windows. The build writes it into the installer's version record, so that
// another build of this program can tell whether its texts are those of an installer.
std::string KnownConfiguration();

// Whether an installer has the wizard's texts that this program has: only then is a preview what it writes. An archive
// without an installer around it has no other texts.
bool HasKnownTexts(const InstallerFile& installer);

}  // namespace kwa
