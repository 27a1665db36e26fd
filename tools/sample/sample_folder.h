#pragma once

#include <filesystem>
#include <map>
#include <string>

namespace kwa {

// Creates the folder if it is missing, and makes the files, contents by name, all that it holds. Leaves a file that
// already holds these bytes alone, so that its time stamp starts no further work in the build. Throws ToolFailure.
void FillFolder(const std::filesystem::path& folder, const std::map<std::string, std::string>& files);

}  // namespace kwa
