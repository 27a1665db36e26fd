#pragma once

#include <string>

// Facts about the Windows under test, read in other ways than in the installer, and the expected dpinst.xml.

// The major version number.
unsigned long WindowsMajorVersion();

// Whether this is 64-bit Windows.
bool Is64Bit();

// The dpinst.xml of the package "Marlin USB", version 02/13/2014,1.0.42.0: expected/dpinst.xml, in legacy mode with the
// line for old Windows versions.
std::string ExpectedDocument(bool legacyMode = WindowsMajorVersion() <= 5);

void ReplaceAll(std::string& text, const std::string& what, const std::string& by);
