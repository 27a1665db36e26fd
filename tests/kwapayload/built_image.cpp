#include "built_image.h"

#include "built_archive.h"

namespace {

constexpr std::size_t kFileAlignment = 512;

std::string HalfBytes(std::uint16_t half) {
  return WordBytes(half).substr(0, 2);
}

void AlignFile(std::string& file) {
  file.resize((file.size() + kFileAlignment - 1) / kFileAlignment * kFileAlignment);
}

std::string OptionalHeader(const BuiltImage& image) {
  std::string header = HalfBytes(image.isPlus ? 0x020B : 0x010B);
  header.resize(image.isPlus ? 112 : 96);
  PutWord(header, image.isPlus ? 24 : 28, 0x400000);
  header.replace(68, 2, HalfBytes(image.subsystem));
  PutWord(header, header.size() - 4, static_cast<std::uint32_t>(image.directories.size()));
  for (const auto& [address, size] : image.directories) {
    header += WordBytes(address) + WordBytes(size);
  }
  return header;
}

}  // namespace

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
    AlignFile(file);
    const std::size_t header = table + i * 40;
    const std::string name = section.name;
    file.replace(header, name.size(), name);
    PutWord(file, header + 8, static_cast<std::uint32_t>(section.bytes.size()));
    PutWord(file, header + 12, SectionAddress(static_cast<std::uint32_t>(i)));
    PutWord(file, header + 16, static_cast<std::uint32_t>(section.bytes.size()));
    PutWord(file, header + 20, static_cast<std::uint32_t>(file.size()));
    PutWord(file, header + 36, section.characteristics);
    file += section.bytes;
  }
  return file;
}
