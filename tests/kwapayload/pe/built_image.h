#pragma once

#include <utf8.h>

#include <cstdint>
#include <map>
#include <string>
#include <vector>

#include "built_archive.h"

// Windows programs made by hand: the parts of them that a reader looks at.

struct BuiltSection {
  const char* name;
  std::uint32_t characteristics;
  std::string bytes;
  std::size_t virtualSize = bytes.size();
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
  std::vector<std::pair<std::size_t, std::size_t>> directories = std::vector<std::pair<std::size_t, std::size_t>>(16);
};

constexpr std::uint32_t SectionAddress(std::size_t index) {
  return static_cast<std::uint32_t>(0x1000 + index * 0x100000);
}

// A text in UTF-8 as UTF-16, little-endian, without a terminator.
inline std::string Utf16(const std::string& text) {
  std::string bytes;
  for (auto at = text.begin(); at != text.end();) {
    bytes += HalfBytes(utf8::next(at, text.end()));
  }
  return bytes;
}

// As a linker lays it out, with alignments of 4096 in memory and 512 in the file. Section i is at the address
// SectionAddress(i). In the file it follows the headers and the sections before it, at a multiple of 512.
inline std::string BuildImage(const BuiltImage& image) {
  std::string optional = HalfBytes(image.isPlus ? 0x020B : 0x010B);
  optional.resize(image.isPlus ? 112 : 96);
  PutWord(optional, image.isPlus ? 24 : 28, 0x400000);
  PutWord(optional, 32, 0x1000);
  PutWord(optional, 36, 0x200);
  if (!image.sections.empty()) {
    const std::size_t end = SectionAddress(image.sections.size() - 1) + image.sections.back().virtualSize;
    PutWord(optional, 56, (end + 0xFFF) / 0x1000 * 0x1000);
  }
  PutWord(optional, 68, image.subsystem);
  PutWord(optional, optional.size() - 4, image.directories.size());
  for (const auto& [address, size] : image.directories) {
    optional += WordBytes(address) + WordBytes(size);
  }
  std::string file = "MZ";
  file.resize(0x80);
  PutWord(file, 0x3C, 0x80);
  file += std::string("PE\0\0", 4) + HalfBytes(image.machine);
  file += HalfBytes(image.sections.size()) + std::string(12, '\0');
  file += HalfBytes(optional.size()) + HalfBytes(image.characteristics) + optional;
  const std::size_t table = file.size();
  file.resize(table + image.sections.size() * 40);
  for (std::size_t i = 0; i < image.sections.size(); ++i) {
    const BuiltSection& section = image.sections[i];
    file.resize((file.size() + 511) / 512 * 512);
    std::string header = section.name;
    header.resize(8);
    header += WordBytes(section.virtualSize) + WordBytes(SectionAddress(i)) + WordBytes(section.bytes.size()) +
              WordBytes(file.size()) + std::string(12, '\0') + WordBytes(section.characteristics);
    file.replace(table + i * 40, 40, header);
    file += section.bytes;
  }
  return file;
}

// One branch of a resource tree: a directory with one entry.
inline std::string ResourceBranch(std::uint32_t id, std::uint32_t target) {
  return std::string(14, '\0') + HalfBytes(1) + WordBytes(id) + WordBytes(target);
}

// Adds a section with a tree of resources.
inline void AddTree(const std::string& tree, BuiltImage& image) {
  image.directories[2] = {SectionAddress(image.sections.size()), tree.size()};
  image.sections.push_back({".rsrc", kReadOnlyData, tree});
}

// Adds a section with one resource.
inline void AddResource(std::uint32_t type, const std::string& resource, BuiltImage& image) {
  constexpr std::uint32_t kDirectory = 0x80000000;
  AddTree(ResourceBranch(type, kDirectory | 24) + ResourceBranch(1, kDirectory | 48) + ResourceBranch(0x409, 72) +
              WordBytes(SectionAddress(image.sections.size()) + 88) + WordBytes(resource.size()) +
              std::string(8, '\0') + resource,
          image);
}

// A block of a version record: a key, a value and blocks in it.
//
// textUnits  units of the value if it is text, its terminator counted; 0 for other values
inline std::string VersionBlock(const std::string& key, const std::string& value, std::size_t textUnits,
                                const std::string& children) {
  std::string block = std::string(2, '\0') + HalfBytes(textUnits != 0 ? textUnits : value.size()) +
                      HalfBytes(textUnits != 0 ? 1 : 0) + Utf16(key + '\0');
  for (const std::string& part : {value, children}) {
    block.resize((block.size() + 3) / 4 * 4);
    block += part;
  }
  block.replace(0, 2, HalfBytes(block.size()));
  block.resize((block.size() + 3) / 4 * 4);
  return block;
}

// A version record of version 1.2.3.4 with texts by key, in UTF-8.
inline std::string BuildVersionRecord(const std::map<std::string, std::string>& texts) {
  std::string strings;
  for (const auto& [key, text] : texts) {
    const std::string value = Utf16(text + '\0');
    strings += VersionBlock(key, value, value.size() / 2, "");
  }
  const std::string version = WordBytes(0x00010002) + WordBytes(0x00030004);
  const std::string fixed = WordBytes(0xFEEF04BD) + WordBytes(0x00010000) + version + version + std::string(28, '\0');
  return VersionBlock("VS_VERSION_INFO", fixed, 0,
                      VersionBlock("StringFileInfo", "", 0, VersionBlock("040904B0", "", 0, strings)));
}
