#include "archive/extract_archive.h"

#include <algorithm>
#include <cstdio>
#include <cstring>
#include <vector>

#include "archive/payload_archive.h"

namespace kwa {
namespace {

constexpr std::uint32_t kChunkSize = 4096;

void WriteBody(std::FILE* file, std::uint32_t size, const ExtractionCallbacks* callbacks, char* buffer,
               std::int32_t archiveIndex) {
  std::uint32_t written = 0;
  // The comparison is signed on purpose: a size of 2^31 or more counts as an empty body.
  for (std::uint32_t remaining = size; static_cast<std::int32_t>(remaining) > 0;) {
    const std::uint32_t chunk = std::min(remaining, kChunkSize);
    ReadArchiveBytes(buffer, chunk, archiveIndex);
    std::fwrite(buffer, chunk, 1, file);
    written += chunk;
    remaining -= chunk;
    if (callbacks != nullptr && callbacks->onProgress != nullptr) {
      callbacks->onProgress(written);
    }
  }
}

}  // namespace

const char* const ArchiveResultText[7] = {
    "ok",
    "empty archiv, no files found",
    "error in path",
    "could not create archiv file",
    "corrupt archiv",
    "failed to extract a file",
    "cound not open file",
};

ArchiveResult ExtractArchive(const char* folder, const ExtractionCallbacks* callbacks, std::int32_t archiveIndex) {
  std::uint32_t magic = 0;
  ReadArchiveWord(&magic, archiveIndex);
  if (magic != kArchiveMagic) {
    return ArchiveCorrupt;
  }
  std::uint32_t count = 0;
  ReadArchiveWord(&count, archiveIndex);
  if (count == 0) {
    return ArchiveEmpty;
  }
  std::vector<ArchiveEntry> entries(count);
  ReadArchiveRecords(entries.data(), sizeof(ArchiveEntry), count, archiveIndex);

  for (const ArchiveEntry& entry : entries) {
    if (callbacks != nullptr && callbacks->onFileStart != nullptr) {
      callbacks->onFileStart(&entry, entry.size);
    }
    char buffer[kChunkSize];  // first the output path, then each chunk
    // The copy needs no bound: the caller keeps the path shorter than the buffer.
    std::strcpy(buffer, folder);      // NOLINT(clang-analyzer-security.insecureAPI.strcpy)
    std::strcat(buffer, entry.name);  // NOLINT(clang-analyzer-security.insecureAPI.strcpy)
    std::FILE* const file = std::fopen(buffer, "wb");
    if (file == nullptr) {
      return ArchiveExtractFailed;
    }
    WriteBody(file, entry.size, callbacks, buffer, archiveIndex);
    std::fclose(file);
  }
  return ArchiveOk;
}

}  // namespace kwa
