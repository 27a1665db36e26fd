#pragma once

#include <string>

#include "package/package_identity.h"

namespace kwa {

// The dpinst.xml that the installer will write for a package, byte for byte, through the installer's own writer.
//
// legacyMode  as on Windows before Vista
//
// Throws ToolFailure when there is no room for a temporary file.
std::string PreviewDpinstConfig(const PackageIdentity& identity, bool legacyMode);

}  // namespace kwa
