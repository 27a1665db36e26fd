#pragma once

#include <filesystem>
#include <string>
#include <vector>

namespace kwa {

// A rule in Make's syntax by which a build tool knows what a file was made from.
std::string MakeDepfile(const std::filesystem::path& target, const std::vector<std::filesystem::path>& sources);

}  // namespace kwa
