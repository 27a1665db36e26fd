#pragma once

#include <cstdint>
#include <string>
#include <vector>

// Archives for tests, made without the code under test.

struct ArchiveBody {
  std::string name;
  std::string bytes;
  // The size in the entry (default: the real size).
  std::uint32_t size = static_cast<std::uint32_t>(bytes.size());
};

// An archive with its terminator, the zero word.
std::string BuildArchive(const std::vector<ArchiveBody>& bodies);

// A number as four or as two little-endian bytes.
std::string WordBytes(std::uint32_t word);
inline std::string HalfBytes(std::uint32_t half) {
  return WordBytes(half).substr(0, 2);
}
void PutWord(std::string& bytes, std::size_t offset, std::uint32_t word);
