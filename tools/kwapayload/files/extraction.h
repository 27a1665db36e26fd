#pragma once

#include <filesystem>
#include <string>
#include <vector>

#include "installer/installer_file.h"

namespace kwa {

struct ExtractionRequest {
  std::filesystem::path folder;    // created when it is missing
  std::vector<std::string> names;  // which files, exactly as they are named; empty: all
  bool mayOverwrite = false;       // whether files of the folder may be replaced
};

// Writes files of an installer, byte for byte, into a folder and nowhere else. Throws ToolFailure: with every fault
// that can be known before anything is written (a name that is not there, one that is no bare file name, one that
// stands twice, a file that exists), or with the first that writing meets; each file appears complete or not at all.
//
// path       of the installer, for messages
// installer  as ReadSoundInstallerFile reads it
void ExtractFiles(const std::filesystem::path& path, const InstallerFile& installer, const ExtractionRequest& request);

}  // namespace kwa
