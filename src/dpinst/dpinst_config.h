#pragma once

namespace kwa {

// Returns 1 on Windows Vista or later. Returns 0 on an older Windows and when the version cannot be read.
int IsVistaOrLater();

// Writes dpinst.xml into a folder and replaces an existing one. When the file cannot be created, nothing is written,
// and the caller does not learn of it.
//
// workFolder            8-bit path with a trailing separator
// version, displayName  the package's identity, zero-terminated; see package_identity.h
void WriteDpinstConfig(const char* workFolder, const char* version, const char* displayName);

}  // namespace kwa
