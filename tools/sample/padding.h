#pragma once

// Brings made content to the size that the list of contents asks for.

#include <cstddef>
#include <string>

namespace kwa {

// Bytes that look random and are the same in every build, so that a comparison notices a byte in the wrong place.
// Different starting values give different bytes.
std::string PaddingBytes(std::size_t count, unsigned seed);

// Throws std::runtime_error when content of at least neededSize bytes cannot have the listed size.
void RequireSize(std::size_t neededSize, std::size_t listedSize);

}  // namespace kwa
