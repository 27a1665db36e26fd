#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace kwa {

// Text of unknown origin as one line of UTF-8 that is safe for a terminal, a ticket and a JSON file. Each byte of a
// control character, of a character that is invisible or changes the direction of the text around it, and of malformed
// UTF-8 becomes \xHH. In a text with such bytes, or with "\x" itself, a backslash becomes two. All else stays as it is,
// so that a path or a hardware ID can be copied.
std::string Escaped(std::string_view text);

// Breaks a line at blanks to at most `width` bytes, where it has blanks. A text that two or more blanks separate from
// the words before it, such as a description, goes on in its own column. There is no line feed at the end.
std::string Wrapped(std::string line, std::size_t width);

}  // namespace kwa
