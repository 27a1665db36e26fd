#pragma once

#include <cstddef>
#include <set>
#include <string>
#include <vector>

#include "inf/setup_inf.h"

namespace kwa {

// The platforms that the installer runs on.
enum class InfPlatform { X86, Amd64 };

constexpr InfPlatform kInfPlatforms[] = {InfPlatform::X86, InfPlatform::Amd64};

// The name of a platform as INFs spell it: "x86" or "amd64".
std::string PlatformName(InfPlatform platform);

// A file of the source medium that [SourceDisksFiles] lists.
struct InfSourceFile {
  std::string name;
  std::string disk;    // the number of its disk, as written
  bool isDiskListed;   // whether [SourceDisksNames] has that number
  std::string folder;  // where Setup looks for the file, relative to the INF, up to 260 characters; "": beside the INF
  std::size_t line;
};

// A file that Setup copies when it installs a device.
struct InfCopiedFile {
  std::string target;  // the name after the copy
  std::string source;  // the name on the source medium
  std::size_t line;    // of the CopyFiles entry, or of the file in its list
};

// What an INF says for one platform, on any version of Windows. No text or file occurs twice in a list, without regard
// to case. All is in the order of the INF.
struct PlatformInf {
  InfPlatform platform;
  // The catalog as Setup chooses it: the value of CatalogFile.ntx86 or CatalogFile.ntamd64, else of CatalogFile.nt,
  // else of CatalogFile. "" if there is none.
  std::string catalogName;
  // The decorations in [Manufacturer], such as "NTamd64.6.1". One without models excludes the devices from that
  // version, and is left out.
  std::vector<std::string> windowsVersions;
  std::vector<std::string> installSections;  // without decorations; none if there are no models for the platform
  std::vector<std::string> hardwareIds;      // the hardware ID of each model and the compatible IDs after it
  // The files of [SourceDisksFiles.x86] or [SourceDisksFiles.amd64], then those that only [SourceDisksFiles] lists.
  std::vector<InfSourceFile> sourceFiles;
  std::set<std::string> sourceNames;  // their names in upper case
  // The files that CopyFiles names in the install sections of all models, of their co-installers, and in
  // [ClassInstall32]. What Needs takes from INFs of Windows, and what AddInterface names, is not included.
  std::vector<InfCopiedFile> copiedFiles;
};

PlatformInf ReadPlatformInf(const SetupInf& inf, InfPlatform platform);

}  // namespace kwa
