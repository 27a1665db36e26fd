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
};

// What FILE of a command turned out to be: an installer, signed or not, or a single archive. Everything in it points
// into the bytes that it was read from.
struct InstallerFile {
  std::optional<PeImage> image;  // nothing for a single archive
  std::vector<LocatedArchive> archives;
  // What is wrong as a whole: an executable that is truncated, or that does not hold exactly two archives. The findings
  // of each archive are kept there.
  std::vector<Finding> findings;
};

// Reads an installer or archive as far as it goes. Throws ToolFailure, naming `path`, when the bytes are neither.
//
// forget  see FindArchives; with a mapped file's, a large one that is searched takes little memory
InstallerFile ReadInstallerFile(ByteSpan bytes, const std::filesystem::path& path, const ForgetBytes& forget = nullptr);

// As above, for commands that need a sound file: throws ToolFailure with every error found.
InstallerFile ReadSoundInstallerFile(ByteSpan bytes, const std::filesystem::path& path,
                                     const ForgetBytes& forget = nullptr);

// The package's INF: of the files whose names end in ".inf" without regard to case, the first by upper-case name, as
// the file system lists them. Null when there is none.
const ArchiveItem* FindInf(const InstallerFile& installer);

}  // namespace kwa
