#pragma once

#include <string>
#include <vector>

#include "installer/installer_file.h"

namespace kwa {

// A part of the program around the payload: the headers, a section, or the bytes after the last section.
struct ProgramPart {
  std::string name;    // raw
  std::string sha256;  // in lower-case hexadecimal digits

  bool operator==(const ProgramPart& other) const { return name == other.name && sha256 == other.sha256; }
};

// The program of an installer: all bytes of the file but those that another payload or a signature changes.
struct Program {
  std::vector<ProgramPart> parts;  // in the order of the file
  std::string fingerprint;         // the digest of all parts: the same for the same program around another payload
};

// Of a single archive, only the bytes after its terminator are a part, if there are any. A folder has no part.
//
// Left out are the archives in the section ".payload", the certificate table at the end of the file, and the values
// that follow from their sizes: SizeOfInitializedData, SizeOfImage, CheckSum, the entry of the security directory, and
// the sizes of ".payload". A relocated address of an archive in ".payload" counts as the letter of the archive. In an
// installer without that section, or whose sizes are not those that a linker writes, the archives are a part of the
// program.
Program ReadProgram(const InstallerFile& installer);

}  // namespace kwa
