#pragma once

#include <cstdint>
#include <map>
#include <string>
#include <vector>

// Windows programs made by hand: the parts of them that a reader looks at.

struct BuiltSection {
  const char* name;
  std::uint32_t characteristics;
  std::string bytes;
  std::uint32_t virtualSize = 0;  // 0: that of the bytes
};

constexpr std::uint32_t kReadOnlyData = 0x40000040;
constexpr std::uint32_t kWritableData = 0xC0000040;
constexpr std::uint32_t kCode = 0x60000020;

struct BuiltImage {
  bool isPlus = false;
  std::uint16_t machine = 0x014C;
  std::uint16_t characteristics = 0x0102;
  std::uint16_t subsystem = 2;
  std::vector<BuiltSection> sections = {};
  // Pairs of address and size, by index of the directory.
  std::vector<std::pair<std::uint32_t, std::uint32_t>> directories =
      std::vector<std::pair<std::uint32_t, std::uint32_t>>(16);
};

// A text in UTF-8 as UTF-16, little-endian, without a terminator.
std::string Utf16(const std::string& text);

// As a linker lays it out, with alignments of 4096 in memory and 512 in the file. Section i is at the address
// SectionAddress(i). In the file it follows the headers and the sections before it, at a multiple of 512.
std::string BuildImage(const BuiltImage& image);

// One branch of a resource tree: a directory with one entry.
std::string ResourceBranch(std::uint32_t id, std::uint32_t target);

// Add a section with a tree of resources: the whole tree, or the resource of one type.
void AddTree(const std::string& tree, BuiltImage& image);
void AddResource(std::uint32_t type, const std::string& resource, BuiltImage& image);

// A version record of version 1.2.3.4 with texts by key, in UTF-8.
std::string BuildVersionRecord(const std::map<std::string, std::string>& texts);

constexpr std::uint32_t SectionAddress(std::uint32_t index) {
  return 0x1000 + index * 0x100000;
}
