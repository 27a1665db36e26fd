#pragma once

#include <cstdint>

#include "archive/archive_format.h"

namespace kwa {

// What became of an extraction. ArchivePathError, ArchiveCreateFailed and ArchiveOpenFailed are produced by nothing any
// more and keep their numbers and texts.
enum ArchiveResult : std::uint32_t {
  ArchiveOk = 0,
  ArchiveEmpty = 1,
  ArchivePathError = 2,
  ArchiveCreateFailed = 3,
  ArchiveCorrupt = 4,
  ArchiveExtractFailed = 5,
  ArchiveOpenFailed = 6,
};

// The code's word for anyone who wishes to show it; the installer does not.
extern const char* const ArchiveResultText[7];

// Notifications of an extraction; either may be null.
struct ExtractionCallbacks {
  // Before each file is opened: its entry, valid for this call only, and its size in bytes.
  void (*onFileStart)(const ArchiveEntry* entry, std::uint32_t size);
  // After each chunk: the bytes written so far to the current file.
  void (*onProgress)(std::uint32_t written);
};

// Writes every file of an archive into a folder, front to back. Works once per archive and process: the archive's read
// position is not set back, by success or by failure.
//
// folder        existing folder, 8-bit path with a trailing separator: each entry's name is appended as it stands.
//               folder and name together must stay under 4096 bytes
// callbacks     may be null
// archiveIndex  0: archive A; anything else: archive B
//
// Returns ArchiveOk, ArchiveEmpty, ArchiveCorrupt or ArchiveExtractFailed (a file could not be opened for writing;
// those before it stay on disk, those behind it are not written). A short write or failed close is not noticed. Throws
// std::length_error or std::bad_alloc, having written nothing, when there is no room for the entry table.
ArchiveResult ExtractArchive(const char* folder, const ExtractionCallbacks* callbacks, std::int32_t archiveIndex);

}  // namespace kwa
