#pragma once

// Brings content to the size that the list of contents gives it.

#include <cstddef>
#include <string>

namespace kwa {

// Bytes that look random and are the same in every build, so that a comparison notices a byte in the wrong place.
// Another variant has other bytes.
std::string PaddingBytes(std::size_t count, unsigned variant);

// The content and padding bytes after it, together size bytes. Throws std::runtime_error when the content is larger.
std::string Padded(const std::string& content, std::size_t size);

// Throws std::runtime_error when content that needs neededSize bytes is larger than the listed size.
void RequireSize(std::size_t neededSize, std::size_t listedSize);

}  // namespace kwa
