#pragma once

#include <optional>
#include <string>
#include <vector>

#include "content/file_kind.h"
#include "installer/installer_file.h"
#include "package/driver_package.h"
#include "pe/pe_resources.h"

namespace kwa {

// A part of the program around the payload: the headers, a section, or the bytes after the last section.
struct ProgramPart {
  std::string name;    // raw
  std::string sha256;  // in lower-case hexadecimal digits

  bool operator==(const ProgramPart& other) const { return name == other.name && sha256 == other.sha256; }
};

// The program of an installer: all bytes of the file but those that another payload or a signature changes. Of a single
// archive, only the bytes after its terminator are a part, if there are any. A folder has no part.
//
// Left out are the archives in the section ".payload", the certificate table at the end of the file, and the values
// that follow from their sizes: SizeOfInitializedData, SizeOfImage, CheckSum, the entry of the security directory, and
// the sizes of ".payload". A relocated address of an archive in ".payload" counts as the letter of the archive. In an
// installer without that section, or whose sizes are not those that a linker writes, the archives are a part of the
// program.
struct Program {
  std::vector<ProgramPart> parts;  // in the order of the file
  std::string fingerprint;         // the digest of all parts: the same for the same program around another payload
};

// The facts about one carried file.
struct InspectedFile {
  ArchiveItem item;
  FileKind kind;
  std::string sha256;                    // in lower-case hexadecimal digits
  std::optional<VersionRecord> version;  // nothing where it has none
  FileTrust trust;
};

// The facts about an installer or archive. Everything in it points into the file's bytes.
struct Inspection {
  InstallerFile installer;
  std::string sha256;                    // of the whole file; "" for a folder
  std::optional<VersionRecord> version;  // of the installer itself
  std::vector<Signature> signatures;     // likewise
  Program program;
  std::string configuration;             // the digest of the wizard's texts, as the version record has it, or ""
  bool hasKnownTexts;                    // see HasKnownTexts
  std::optional<DriverPackage> package;  // nothing where there is no INF
  std::vector<InspectedFile> files;      // one for each item of the installer, in that order
};

// Reads the program alone.
//
// installer  a sound one: its findings have no error
Program ReadProgram(const InstallerFile& installer);

// Reads everything.
//
// installer  likewise
Inspection Inspect(InstallerFile installer);

// The package, or an empty one where there is no INF.
const DriverPackage& PackageOf(const Inspection& inspection);

}  // namespace kwa
