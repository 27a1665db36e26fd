#pragma once

#include <string>

#include "package/package_identity.h"

namespace kwa {

// The dpinst.xml that the installer writes for a package, through the installer's own writer, with the line ends that
// Windows gives it.
//
// legacyMode  as on Windows before Vista
std::string PreviewDpinstConfig(const PackageIdentity& identity, bool legacyMode);

}  // namespace kwa
