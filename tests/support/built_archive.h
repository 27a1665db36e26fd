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

// A number as four or as two little-endian bytes.
inline std::string WordBytes(std::size_t word) {
  std::string bytes;
  for (int i = 0; i < 4; ++i) {
    bytes += static_cast<char>(word >> (8 * i) & 0xFF);
  }
  return bytes;
}

inline std::string HalfBytes(std::size_t half) {
  return WordBytes(half).substr(0, 2);
}

inline void PutWord(std::string& bytes, std::size_t offset, std::size_t word) {
  bytes.replace(offset, 4, WordBytes(word));
}

inline std::string Replaced(std::string bytes, std::size_t offset, const std::string& by) {
  return bytes.replace(offset, by.size(), by);
}

inline void ReplaceAll(std::string& text, const std::string& what, const std::string& by) {
  for (std::size_t at = text.find(what); at != std::string::npos; at = text.find(what, at + by.size())) {
    text.replace(at, what.size(), by);
  }
}

inline std::string Repeated(std::size_t count, const std::string& bytes) {
  std::string whole;
  while (count-- > 0) {
    whole += bytes;
  }
  return whole;
}

// An archive with its terminator, the zero word.
inline std::string BuildArchive(const std::vector<ArchiveBody>& bodies) {
  std::string archive = "KWAP" + WordBytes(bodies.size());
  for (const ArchiveBody& body : bodies) {
    archive += body.name + std::string(260 - body.name.size(), '\0') + WordBytes(body.size);
  }
  for (const ArchiveBody& body : bodies) {
    archive += body.bytes;
    archive.resize((archive.size() + 3) / 4 * 4);
  }
  return archive + std::string(4, '\0');
}
