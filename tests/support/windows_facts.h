#pragma once

#include <string>

// What the Windows under test is, asked in other ways than the installer does, and the dpinst.xml that it must get.

// The major version number.
unsigned long WindowsMajorVersion();

// Whether this is 64-bit Windows.
bool Is64Bit();

// The dpinst.xml of the package "Marlin USB", version 02/13/2014,1.0.42.0: expected/dpinst.xml, with the line for old
// Windows versions put in if asked for.
std::string ExpectedDocument(bool legacyMode = WindowsMajorVersion() <= 5);

void ReplaceAll(std::string& text, const std::string& what, const std::string& by);
