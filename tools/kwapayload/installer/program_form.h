#pragma once

#include <string>
#include <vector>

#include "installer/installer_file.h"

namespace kwa {

// A part of an installer's program: its headers, its imports, its resources or a section.
struct ProgramPart {
  std::string name;    // raw; the headers have what each section may do
  std::string digest;  // of a form that is the same for the same program around another payload

  bool operator==(const ProgramPart& other) const { return name == other.name && digest == other.digest; }
};

// The program of an installer, or nothing for a single archive. The archives, the checksum and the signature are left
// out, and so is what the archives' size decides: where the sections behind them begin, and with that every address
// that a loader relocates, and how many zeros follow each other in a section with archives. Of the compiler's tables
// for unwinding, which count from where they lie, only the size counts. Where sections overlap, as no linker lays them,
// the whole file is the one part.
std::vector<ProgramPart> ProgramParts(const InstallerFile& installer);

}  // namespace kwa
