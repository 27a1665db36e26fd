#pragma once

namespace kwa {

// Whether the running Windows is Vista or later: 1 if so, 0 on an older one and when Windows does not tell.
int IsVistaOrLater();

// Writes dpinst.xml into a folder, replacing one that is there. Nothing is written when it cannot be created; the
// caller is not told.
//
// workFolder            8-bit path with a trailing separator
// version, displayName  the package's identity, zero-terminated; see package_identity.h
void WriteDpinstConfig(const char* workFolder, const char* version, const char* displayName);

}  // namespace kwa
