#pragma once

#include <cstdint>

#include "archive/archive_format.h"

namespace kwa {

// The result of an extraction. Nothing returns ArchivePathError, ArchiveCreateFailed and ArchiveOpenFailed any more;
// they keep their numbers and texts.
enum ArchiveResult : std::uint32_t {
  ArchiveOk = 0,
  ArchiveEmpty = 1,
  ArchivePathError = 2,
  ArchiveCreateFailed = 3,
  ArchiveCorrupt = 4,
  ArchiveExtractFailed = 5,
  ArchiveOpenFailed = 6,
};

// A text for each result. The installer itself shows none.
extern const char* const ArchiveResultText[7];

// Functions that an extraction calls; each may be null.
struct ExtractionCallbacks {
  // Called before a file is opened. The entry is valid during the call only; size is in bytes.
  void (*onFileStart)(const ArchiveEntry* entry, std::uint32_t size);
  // Called after each chunk with the number of bytes written to the current file so far.
  void (*onProgress)(std::uint32_t written);
};

// Writes all files of an archive into a folder, in their order. Works once for each archive in a process: neither
// success nor failure resets the read position.
//
// folder        existing folder, 8-bit path with a trailing separator; the name of each entry is appended unchanged.
//               folder and name together, with the terminator, must not exceed 4096 bytes
// callbacks     may be null
// archiveIndex  0: archive A; anything else: archive B
//
// Returns ArchiveOk, ArchiveEmpty, ArchiveCorrupt or ArchiveExtractFailed. The last means that a file could not be
// opened for writing: the files before it stay on disk, the files after it are not written. A short write or a failed
// close is not noticed. Throws std::length_error or std::bad_alloc when there is no memory for the entry table; no file
// is written then.
ArchiveResult ExtractArchive(const char* folder, const ExtractionCallbacks* callbacks, std::int32_t archiveIndex);

}  // namespace kwa
