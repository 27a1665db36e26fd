#include "built_archive.h"

std::string WordBytes(std::uint32_t word) {
  std::string bytes;
  for (int i = 0; i < 4; ++i) {
    bytes += static_cast<char>(word >> (8 * i) & 0xFF);
  }
  return bytes;
}

void PutWord(std::string& bytes, std::size_t offset, std::uint32_t word) {
  bytes.replace(offset, 4, WordBytes(word));
}

std::string BuildArchive(const std::vector<ArchiveBody>& bodies) {
  std::string archive = "KWAP" + WordBytes(static_cast<std::uint32_t>(bodies.size()));
  for (const ArchiveBody& body : bodies) {
    archive += body.name + std::string(260 - body.name.size(), '\0') + WordBytes(body.size);
  }
  for (const ArchiveBody& body : bodies) {
    archive += body.bytes;
    archive.resize((archive.size() + 3) / 4 * 4);
  }
  return archive + std::string(4, '\0');
}
