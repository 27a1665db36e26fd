#pragma once

#include <cstdio>

namespace kwa {

// Writes the whole of dpinst.xml, DPInst's configuration, to a stream. Lines end in "\n"; a text-mode stream of the
// platform makes them CR LF. Pure: the same arguments give the same bytes on every machine.
//
// version, displayName  zero-terminated 8-bit text, written as it stands, with no escaping for XML
// legacyMode            whether DPInst shall accept unsigned packages, as it must before Windows Vista
//
// Write errors are not noticed.
void WriteDpinstDocument(std::FILE* stream, const char* version, const char* displayName, bool legacyMode);

}  // namespace kwa
