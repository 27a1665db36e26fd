#pragma once

#include <cstdint>
#include <string>
#include <vector>

// Archives made by hand, independently of the program's writer.

struct ArchiveBody {
  std::string name;
  std::string bytes;
  // What the entry says of the body's size; by default the truth.
  std::uint32_t size = static_cast<std::uint32_t>(bytes.size());
};

// An archive with its closing zero word.
std::string BuildArchive(const std::vector<ArchiveBody>& bodies);

// Four little-endian bytes, and two.
std::string WordBytes(std::uint32_t word);
inline std::string HalfBytes(std::uint32_t half) {
  return WordBytes(half).substr(0, 2);
}
void PutWord(std::string& bytes, std::size_t offset, std::uint32_t word);
