#include "padding.h"

#include <random>
#include <stdexcept>

namespace kwa {

std::string PaddingBytes(std::size_t count, unsigned variant) {
  // The C++ standard defines the numbers of this engine, but not those of its distributions.
  std::mt19937 engine(variant);
  std::string bytes(count, '\0');
  for (char& byte : bytes) {
    byte = static_cast<char>(engine() >> 24);
  }
  return bytes;
}

std::string Padded(const std::string& content, std::size_t size) {
  RequireSize(content.size(), size);
  return content + PaddingBytes(size - content.size(), static_cast<unsigned>(size));
}

void RequireSize(std::size_t neededSize, std::size_t listedSize) {
  if (neededSize > listedSize) {
    throw std::runtime_error("needs " + std::to_string(neededSize) + " bytes, and the list of contents gives it " +
                             std::to_string(listedSize));
  }
}

}  // namespace kwa
