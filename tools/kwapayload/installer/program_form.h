#pragma once

#include <string>
#include <vector>

#include "installer/installer_file.h"

namespace kwa {

// A part of an installer's program: its headers or a section.
struct ProgramPart {
  std::string name;    // escaped
  std::string digest;  // of a form that is the same for the same program around another payload

  bool operator==(const ProgramPart& other) const { return name == other.name && digest == other.digest; }
};

// The program of an installer, or nothing for a single archive. The archives, the checksum and the signature are left
// out. So is what the linker makes of the archives' size: where the sections behind them begin, and with that every
// address of something that lies there. An address is told by which of the places pointed at it means, so that other
// code or data shows, but not the same at another place. The compiler's tables for unwinding count from where they lie:
// their size alone is looked at.
std::vector<ProgramPart> ProgramParts(const InstallerFile& installer);

}  // namespace kwa
