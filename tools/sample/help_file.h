#pragma once

// The mixer's help file.

#include <cstddef>
#include <string>

namespace kwa {

// A compiled HTML help file in German: its header, a directory of one chunk, an uncompressed page, and topics of no
// meaning that fill it up to size bytes. Throws std::runtime_error when size is too small.
std::string MakeHelpFile(std::size_t size);

}  // namespace kwa
