#pragma once

#include <cstdint>
#include <string>
#include <vector>

// Archives made by hand, independently of the program's writer.

struct ArchiveBody {
  std::string name;
  std::string bytes;
};

// An archive with its closing zero word.
std::string BuildArchive(const std::vector<ArchiveBody>& bodies);

// Four little-endian bytes.
std::string WordBytes(std::uint32_t word);
void PutWord(std::string& bytes, std::size_t offset, std::uint32_t word);
