#include "built_image.h"

#include <utf8.h>

#include "built_archive.h"

namespace {

std::uint32_t VirtualSize(const BuiltSection& section) {
  return section.virtualSize != 0 ? section.virtualSize : static_cast<std::uint32_t>(section.bytes.size());
}

std::string OptionalHeader(const BuiltImage& image) {
  std::string header = HalfBytes(image.isPlus ? 0x020B : 0x010B);
  header.resize(image.isPlus ? 112 : 96);
  PutWord(header, image.isPlus ? 24 : 28, 0x400000);
  PutWord(header, 32, 0x1000);
  PutWord(header, 36, 0x200);
  if (!image.sections.empty()) {
    const auto last = static_cast<std::uint32_t>(image.sections.size() - 1);
    PutWord(header, 56, (SectionAddress(last) + VirtualSize(image.sections[last]) + 0xFFF) / 0x1000 * 0x1000);
  }
  header.replace(68, 2, HalfBytes(image.subsystem));
  PutWord(header, header.size() - 4, static_cast<std::uint32_t>(image.directories.size()));
  for (const auto& [address, size] : image.directories) {
    header += WordBytes(address) + WordBytes(size);
  }
  return header;
}

// A block of a version record: a key, a value and blocks in it.
//
// textUnits  units of the value if it is text, its terminator counted; 0 for other values
std::string VersionBlock(const std::string& key, const std::string& value, std::size_t textUnits,
                         const std::string& children) {
  std::string block = std::string(2, '\0') +
                      HalfBytes(static_cast<std::uint16_t>(textUnits ? textUnits : value.size())) +
                      HalfBytes(textUnits ? 1 : 0) + Utf16(key + '\0');
  for (const std::string& part : {value, children}) {
    block.resize((block.size() + 3) / 4 * 4);
    block += part;
  }
  block.replace(0, 2, HalfBytes(static_cast<std::uint16_t>(block.size())));
  block.resize((block.size() + 3) / 4 * 4);
  return block;
}

}  // namespace

std::string Utf16(const std::string& text) {
  std::string bytes;
  for (auto at = text.begin(); at != text.end();) {
    bytes += HalfBytes(static_cast<std::uint16_t>(utf8::next(at, text.end())));
  }
  return bytes;
}

std::string BuildImage(const BuiltImage& image) {
  constexpr std::uint32_t kHeaderOffset = 0x80;
  std::string file = "MZ";
  file.resize(kHeaderOffset);
  PutWord(file, 0x3C, kHeaderOffset);
  const std::string optional = OptionalHeader(image);
  file += std::string("PE\0\0", 4) + HalfBytes(image.machine);
  file += HalfBytes(static_cast<std::uint16_t>(image.sections.size())) + std::string(12, '\0');
  file += HalfBytes(static_cast<std::uint16_t>(optional.size())) + HalfBytes(image.characteristics) + optional;
  const std::size_t table = file.size();
  file.resize(table + image.sections.size() * 40);
  for (std::size_t i = 0; i < image.sections.size(); ++i) {
    const BuiltSection& section = image.sections[i];
    file.resize((file.size() + 511) / 512 * 512);
    const auto size = static_cast<std::uint32_t>(section.bytes.size());
    std::string header = section.name;
    header.resize(8);
    header += WordBytes(VirtualSize(section)) + WordBytes(SectionAddress(static_cast<std::uint32_t>(i))) +
              WordBytes(size) + WordBytes(static_cast<std::uint32_t>(file.size())) + std::string(12, '\0') +
              WordBytes(section.characteristics);
    file.replace(table + i * 40, 40, header);
    file += section.bytes;
  }
  return file;
}

std::string ResourceBranch(std::uint32_t id, std::uint32_t target) {
  return std::string(14, '\0') + HalfBytes(1) + WordBytes(id) + WordBytes(target);
}

void AddTree(const std::string& tree, BuiltImage& image) {
  const auto index = static_cast<std::uint32_t>(image.sections.size());
  image.directories[2] = {SectionAddress(index), static_cast<std::uint32_t>(tree.size())};
  image.sections.push_back({".rsrc", kReadOnlyData, tree});
}

void AddResource(std::uint32_t type, const std::string& resource, BuiltImage& image) {
  constexpr std::uint32_t kDirectory = 0x80000000;
  AddTree(ResourceBranch(type, kDirectory | 24) + ResourceBranch(1, kDirectory | 48) + ResourceBranch(0x409, 72) +
              WordBytes(SectionAddress(static_cast<std::uint32_t>(image.sections.size())) + 88) +
              WordBytes(static_cast<std::uint32_t>(resource.size())) + std::string(8, '\0') + resource,
          image);
}

std::string BuildVersionRecord(const std::map<std::string, std::string>& texts) {
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
