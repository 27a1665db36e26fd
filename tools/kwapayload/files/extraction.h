#pragma once

#include <filesystem>
#include <string>
#include <vector>

#include "payload/archive_reader.h"

namespace kwa {

struct ExtractionRequest {
  std::filesystem::path folder;    // created when it is missing
  std::vector<std::string> names;  // which files, exactly as they are named; empty: all
  bool mayOverwrite = false;       // whether files in the folder may be replaced
};

// Writes items, byte for byte, into a folder and nowhere else. Throws ToolFailure: with every fault that can be known
// before anything is written (a name that does not exist or is not a bare file name, a name that is there twice, a file
// that exists), or with the first fault of writing. Each file appears complete or not at all.
//
// path  of the installer, for messages
void ExtractFiles(const std::filesystem::path& path, const std::vector<ArchiveItem>& items,
                  const ExtractionRequest& request);

}  // namespace kwa
