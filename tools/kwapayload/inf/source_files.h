#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include "inf/inf_platform.h"
#include "inf/setup_inf.h"

namespace kwa {

// A file of the source medium that [SourceDisksFiles] lists.
struct InfSourceFile {
  std::string name;
  std::string disk;    // the number of its disk, as written
  bool isDiskListed;   // whether [SourceDisksNames] has that number
  std::string folder;  // where Setup looks for the file, relative to the INF; "" for the folder of the INF
  std::size_t line;
};

// The files for a platform: those of [SourceDisksFiles.x86] or [SourceDisksFiles.amd64], then those that only
// [SourceDisksFiles] lists. A name occurs once, without regard to case.
std::vector<InfSourceFile> ReadSourceFiles(const SetupInf& inf, InfPlatform platform);

}  // namespace kwa
