#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include "inf/inf_platform.h"
#include "inf/setup_inf.h"

namespace kwa {

// A file that Setup copies when it installs a device.
struct InfCopiedFile {
  std::string target;  // the name after the copy
  std::string source;  // the name on the source medium
  std::size_t line;    // of the CopyFiles entry, or of the file in its list
};

// The files that the CopyFiles entries of an INF name for a platform: those of the install sections of all its models,
// of their co-installers, and of [ClassInstall32]. A pair of names occurs once, without regard to case. What Needs
// takes from INFs of Windows, and what AddInterface names, is not included.
std::vector<InfCopiedFile> ReadCopiedFiles(const SetupInf& inf, InfPlatform platform);

}  // namespace kwa
