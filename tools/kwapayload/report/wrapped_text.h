#pragma once

#include <cstddef>
#include <string>

namespace kwa {

// Breaks a line at blanks to at most `width` bytes, where it has blanks. A text that two or more blanks separate from
// the words before it, such as a description, goes on in its own column. There is no line feed at the end.
std::string Wrapped(std::string line, std::size_t width);

}  // namespace kwa
