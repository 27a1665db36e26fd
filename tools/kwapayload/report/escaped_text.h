#pragma once

#include <string>
#include <string_view>

namespace kwa {

// Text of unknown origin as one line of UTF-8 that is safe for a terminal, a ticket and a JSON file. Each byte of a
// control character, of a character that is invisible or changes the direction of the text around it, and of malformed
// UTF-8 becomes \xHH; a backslash becomes two. All other characters stay as they are.
std::string Escaped(std::string_view text);

}  // namespace kwa
