#pragma once

#include <cstdio>

namespace kwa {

// Writes dpinst.xml, the configuration of DPInst, to a stream. Lines end with "\n", which a text-mode stream of Windows
// turns into CR LF. The same arguments give the same bytes on every machine.
//
// version, displayName  zero-terminated 8-bit text, written unchanged and without escaping for XML
// legacyMode            whether DPInst accepts unsigned packages; true before Windows Vista
//
// Write errors are not noticed.
void WriteDpinstDocument(std::FILE* stream, const char* version, const char* displayName, bool legacyMode);

}  // namespace kwa
