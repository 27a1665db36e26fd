#pragma once

#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>
#include <vector>

#include "base/byte_span.h"
#include "base/finding.h"
#include "payload/archive_reader.h"
#include "pe/pe_image.h"

namespace kwa {

// An archive with its place in an installer.
struct LocatedArchive {
  std::string letter;        // "A" or "B"; "-" for a file that is a single archive
  std::uint64_t fileOffset;  // of its first byte, in the file
  ParsedArchive archive;

  // Where something is found: "archive A, marlin_usb.inf", or the name alone in a file that is a single archive.
  std::string Where(const ArchiveItem& item) const;
};

// What FILE of a command turned out to be: an installer, signed or not, or a single archive. Everything in it points
// into the bytes that it was read from.
struct InstallerFile {
  std::optional<PeImage> image;          // nothing for a single archive
  std::vector<LocatedArchive> archives;  // the sound ones: two in a sound installer
  // What is wrong with the structure: an executable that is truncated or does not hold exactly two sound archives, and
  // then what keeps others from being sound; a single archive that is not sound.
  Findings findings;

  // Whether all archives that there must be are there.
  bool IsWhole() const { return archives.size() == (image ? 2U : 1U); }
};

// Reads an installer or archive as far as it goes. Throws ToolFailure, naming `path`, when the bytes are neither.
InstallerFile ReadInstallerFile(ByteSpan bytes, const std::filesystem::path& path);

// As above, for commands that need a sound file: throws ToolFailure with every error found.
InstallerFile ReadSoundInstallerFile(ByteSpan bytes, const std::filesystem::path& path);

// The package's INF: of the files whose names end in ".inf" without regard to case, the first by upper-case name, as
// the file system lists them. Null when there is none.
const ArchiveItem* FindInf(const InstallerFile& installer);

}  // namespace kwa
