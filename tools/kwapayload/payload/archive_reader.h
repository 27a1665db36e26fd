#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include "base/byte_span.h"
#include "base/finding.h"

namespace kwa {

// One entry of an archive as it stands in a file.
struct ArchiveItem {
  std::string_view name;   // up to the terminator, or the whole field of 260 bytes where there is none
  std::uint32_t size;      // bytes of the body, as the entry says
  std::uint64_t position;  // of the body, in bytes from the archive's first byte
  ByteSpan body;           // what the file has of it: `size` bytes in a readable archive
};

// An archive in a file, sound or damaged.
struct ParsedArchive {
  std::uint64_t offset;  // of the archive's first byte, from the start of the bytes that were searched
  std::uint64_t size;    // bytes up to the end of the last body's padding, the closing word not counted
  std::uint32_t count;   // as the header says
  // The entries that the file bears out: fewer than `count` in a damaged archive.
  std::vector<ArchiveItem> items;
  // What is wrong with the structure: magic, count, name fields (ended, not empty, zero-filled), sizes, bodies,
  // padding, closing word. One damage gives one finding: what merely follows from it is left out. `where` is empty for
  // the archive as a whole, else the item's escaped name. Names themselves (bare, unique, in order) are not judged
  // here.
  std::vector<Finding> findings;

  // Whether every item can be relied upon: no finding is an error.
  bool IsReadable() const;
};

// Told of bytes that are not needed for the time being, such as MappedFile::Forget. May be empty.
using ForgetBytes = std::function<void(ByteSpan)>;

// All archives in an area of an installer (the bytes of a read-only section), in the order of the file. They are told
// from other data by their structure, so that four letters in a payload file or in a program's data do not count, nor
// does an archive within a body of another. One damaged in its magic, its count or some of its entries is found all the
// same, with findings that say so. The search ends with the 16th.
//
// forget  called with parts of the area that the search is through with
std::vector<ParsedArchive> FindArchives(ByteSpan area, const ForgetBytes& forget = nullptr);

// The archive that begins with the first byte, for a file that is an archive. Anything else gives an archive with no
// items and an error among its findings.
ParsedArchive ReadArchiveAt(ByteSpan bytes);

}  // namespace kwa
