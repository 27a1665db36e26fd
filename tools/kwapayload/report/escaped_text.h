#pragma once

#include <filesystem>
#include <string>
#include <string_view>

namespace kwa {

// Text of unknown origin, fit for a terminal and for one line: all but printable ASCII becomes \xHH, a backslash
// becomes two.
std::string EscapedText(std::string_view text);

// A path that the user gave: only what could break the line is escaped.
std::string ShownPath(const std::filesystem::path& path);

}  // namespace kwa
