#pragma once

#include <filesystem>
#include <string>
#include <vector>

#include "installer/installer_file.h"

namespace kwa {

struct ExtractionRequest {
  std::filesystem::path folder;    // created when it is missing
  std::vector<std::string> names;  // which files, without regard to case; empty: all
  bool asPayload = false;     // into the folders a and b, and with a list of contents: what a release is built from
  bool mayOverwrite = false;  // whether files in the folder may be replaced
};

// Writes files of an installer, byte for byte, into a folder and nowhere else. Throws ToolFailure: with every fault
// that can be known before anything is written (a name that does not exist, is not a bare file name, is too long or is
// there twice, a file that exists), or with the first fault of writing. Each file appears complete or not at all.
//
// path  of the installer, for messages
void ExtractFiles(const std::filesystem::path& path, const InstallerFile& installer, const ExtractionRequest& request);

}  // namespace kwa
