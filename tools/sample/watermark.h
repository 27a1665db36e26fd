#pragma once

// The bitmap at the left of the wizard's welcome page.

#include <cstddef>
#include <string>

namespace kwa {

// A Windows bitmap of 51 x 305 pixels, 24 bits each. Throws std::runtime_error unless size is such a bitmap's.
std::string MakeWatermark(std::size_t size);

}  // namespace kwa
