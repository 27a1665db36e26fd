#pragma once

#include <cstdint>

namespace kwa {

// One archive and its read position.
struct PayloadArchive {
  const std::uint32_t* words;  // the archive in read-only data; see archive_format.h
  std::uint32_t position;      // read position in bytes from the start, a multiple of 4; never moves back
};

// The two archives of the process. embedded_archives.cpp defines them; a test defines its own.
extern PayloadArchive archiveA;  // the maker's driver package
extern PayloadArchive archiveB;  // DPInst, the licence texts and the watermark

// Read primitives. Each reads at the position of the archive that archiveIndex selects (0: A, anything else: B) and
// moves only that position. None checks for the end of the archive.

// Stores the next word in *word.
void ReadArchiveWord(std::uint32_t* word, std::int32_t archiveIndex);

// Copies the next byteCount bytes, rounded up to whole words. destination must have room for the rounded count.
void ReadArchiveBytes(void* destination, std::uint32_t byteCount, std::int32_t archiveIndex);

// Copies recordCount records of recordSize bytes each to destination, without gaps. recordSize is a multiple of 4.
void ReadArchiveRecords(void* destination, std::uint32_t recordSize, std::uint32_t recordCount,
                        std::int32_t archiveIndex);

}  // namespace kwa
