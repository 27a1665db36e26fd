#pragma once

#include <cstdint>
#include <filesystem>
#include <string>
#include <vector>

#include "files/tool_failure.h"
#include "files/payload_folder.h"

namespace kwa {

// One file that an archive must hold.
struct ContentsFile {
  char archive;         // 'A' or 'B'
  std::uint32_t order;  // place in its archive, from 1
  std::string name;
  std::uint32_t size;  // bytes
  std::string kind;    // as FileKind words it
};

// The list of what both archives must hold, in the order of the archives.
using PayloadContents = std::vector<ContentsFile>;

// Reads a list of contents (payload/contents.json is one). Throws ToolFailure with every fault: not JSON, a field that
// is missing or of the wrong kind, a name that an archive must not hold or that stands twice without regard to case, an
// order other than that of the upper-case names.
PayloadContents ReadPayloadContents(const std::filesystem::path& path);

// A list of contents in the form of payload/contents.json: one line a file, so that a changed file is a changed line.
std::string ContentsText(const PayloadContents& contents);

// The files of one archive.
PayloadContents SelectArchive(const PayloadContents& contents, char archive);

// Every difference between the files of a folder and what its archive must hold: missing, unexpected, other size.
std::vector<Fault> CompareWithContents(const std::filesystem::path& folder, const std::vector<PayloadFile>& files,
                                       const PayloadContents& wanted);

}  // namespace kwa
