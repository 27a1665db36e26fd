#pragma once

#include <cstddef>
#include <cstdint>

// The payload archive, the same in memory and in a file. All integers are unsigned 32-bit little-endian.
//
//   magic, count                  2 words
//   count x ArchiveEntry          264 bytes each, in extraction order
//   bodies                        in the order of the entries, each padded with zero bytes to a multiple of 4
//   terminator, a zero word       stops a second extraction of the same archive; no correct run reads it
//
// The installer and the build machine's tool share this file, so nothing here depends on the platform.

namespace kwa {

// "KWAP" as one little-endian word.
constexpr std::uint32_t kArchiveMagic = 0x5041574B;

// Bytes of the magic and the count.
constexpr std::size_t kArchiveHeaderSize = 8;

// Bytes of a name field, terminator included.
constexpr std::size_t kEntryNameCapacity = 260;

// The size of a body must be below this number of bytes: the reader counts it down as a signed 32-bit number.
constexpr std::uint32_t kEntrySizeLimit = 0x80000000U;

struct ArchiveEntry {
  char name[kEntryNameCapacity];  // bare file name, zero-terminated; all bytes after the terminator are zero
  std::uint32_t size;             // bytes of the body, padding not counted
};
static_assert(sizeof(ArchiveEntry) == 264, "the entry table is read record by record into this layout");

// Bytes that a body of `size` bytes takes in the archive, padding included. 64 bits hold the sum of many bodies.
constexpr std::uint64_t PaddedSize(std::uint64_t size) {
  return (size + 3) / 4 * 4;
}

}  // namespace kwa
