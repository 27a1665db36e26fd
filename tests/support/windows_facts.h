#pragma once

// What the Windows under test is, asked in other ways than the installer does.

// The major version number.
unsigned long WindowsMajorVersion();

// Whether this is 64-bit Windows.
bool Is64Bit();
