#include "archive/payload_archive.h"

#include <cstring>

namespace kwa {
namespace {

constexpr std::uint32_t kWordSize = 4;

PayloadArchive& SelectArchive(std::int32_t archiveIndex) {
  return archiveIndex == 0 ? archiveA : archiveB;
}

}  // namespace

void ReadArchiveWord(std::uint32_t* word, std::int32_t archiveIndex) {
  ReadArchiveBytes(word, kWordSize, archiveIndex);
}

void ReadArchiveBytes(void* destination, std::uint32_t byteCount, std::int32_t archiveIndex) {
  PayloadArchive& archive = SelectArchive(archiveIndex);
  const std::uint32_t wordCount = byteCount / kWordSize + (byteCount % kWordSize != 0 ? 1 : 0);
  std::memcpy(destination, archive.words + archive.position / kWordSize, wordCount * kWordSize);
  archive.position += wordCount * kWordSize;
}

void ReadArchiveRecords(void* destination, std::uint32_t recordSize, std::uint32_t recordCount,
                        std::int32_t archiveIndex) {
  auto* record = static_cast<unsigned char*>(destination);
  for (std::uint32_t i = 0; i < recordCount; ++i) {
    ReadArchiveBytes(record, recordSize, archiveIndex);
    record += recordSize;
  }
}

}  // namespace kwa
