// Files on the build machine's disk. Every failure is thrown as ToolFailure.
#pragma once

#include <filesystem>
#include <set>
#include <string>

namespace kwa {

std::string ReadWholeFile(const std::filesystem::path& path);

// Leaves a file that already holds these bytes alone, so that its time stamp starts no further work in the build.
void WriteIfDifferent(const std::filesystem::path& path, const std::string& bytes);

// Creates the folder if it is missing, and removes from it all but the named files.
void PrepareFolder(const std::filesystem::path& folder, const std::set<std::string>& names);

}  // namespace kwa
