#pragma once

// The sample's driver package INF.

#include <cstddef>
#include <string>

namespace kwa {

// The INF of a family of USB audio interfaces: 7-bit text with CR LF line ends, filled up to size bytes with presets
// of the devices' equaliser. Throws std::runtime_error when size is too small.
std::string MakeInf(std::size_t size);

}  // namespace kwa
