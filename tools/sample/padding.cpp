#include "padding.h"

#include <random>
#include <stdexcept>

namespace kwa {

std::string PaddingBytes(std::size_t count, unsigned seed) {
  // The standard fixes this engine's numbers, unlike those of its distributions.
  std::mt19937 engine(seed);
  std::string bytes(count, '\0');
  for (char& byte : bytes) byte = static_cast<char>(engine() >> 24);
  return bytes;
}

void RequireSize(std::size_t neededSize, std::size_t listedSize) {
  if (neededSize > listedSize) {
    throw std::runtime_error("the list of contents asks for " + std::to_string(listedSize) +
                             " bytes, its content needs " + std::to_string(neededSize));
  }
}

}  // namespace kwa
