#pragma once

#include <optional>
#include <string>
#include <vector>

#include "content/file_kind.h"
#include "installer/installer_file.h"
#include "installer/program.h"
#include "package/driver_package.h"
#include "pe/pe_resources.h"

namespace kwa {

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

// installer  a sound one: its findings have no error
Inspection Inspect(InstallerFile installer);

// The package, or an empty one where there is no INF.
const DriverPackage& PackageOf(const Inspection& inspection);

}  // namespace kwa
