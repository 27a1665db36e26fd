#pragma once

#include <cstdint>

namespace kwa {

// One archive as its reader sees it.
struct PayloadArchive {
  const std::uint32_t* words;  // the archive in read-only data; see archive_format.h
  std::uint32_t position;      // read position in bytes from the start, a multiple of 4; only ever moves forward
};

// The two archives of the process. Defined beside the embedded payload, and by a test for itself.
extern PayloadArchive archiveA;  // the maker's driver package
extern PayloadArchive archiveB;  // DPInst, the licence texts and the watermark

// Read primitives. Each reads at the position of the archive that archiveIndex selects (0: A, anything else: B) and
// moves only that position. None knows where the archive ends.

// Stores the next word in *word.
void ReadArchiveWord(std::uint32_t* word, std::int32_t archiveIndex);

// Copies the next byteCount bytes, rounded up to whole words, to destination, which has room for the rounded count.
void ReadArchiveBytes(void* destination, std::uint32_t byteCount, std::int32_t archiveIndex);

// Copies recordCount records of recordSize bytes, a multiple of 4, back to back to destination.
void ReadArchiveRecords(void* destination, std::uint32_t recordSize, std::uint32_t recordCount,
                        std::int32_t archiveIndex);

}  // namespace kwa
