#include "built_image.h"

#include "built_archive.h"

namespace {

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
    file.resize((file.size() + 511) / 512 * 512);
    const auto size = static_cast<std::uint32_t>(section.bytes.size());
    std::string header = section.name;
    header.resize(8);
    header += WordBytes(size) + WordBytes(SectionAddress(static_cast<std::uint32_t>(i))) + WordBytes(size) +
              WordBytes(static_cast<std::uint32_t>(file.size())) + std::string(12, '\0') +
              WordBytes(section.characteristics);
    file.replace(table + i * 40, 40, header);
    file += section.bytes;
  }
  return file;
}
