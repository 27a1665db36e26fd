#include "pe/pe_image.h"

#include <algorithm>

namespace kwa {
namespace {

constexpr std::uint32_t kImageScnCntInitializedData = 0x00000040;
constexpr std::uint32_t kImageScnMemDiscardable = 0x02000000;

constexpr std::uint32_t kCoffHeaderSize = 20;
constexpr std::uint32_t kSectionHeaderSize = 40;
constexpr std::uint32_t kDirectorySize = 8;
constexpr std::uint32_t kMaxDirectories = 16;
// The most that every Windows loads.
constexpr std::uint32_t kMaxSections = 96;

constexpr std::uint16_t kOptionalMagic32 = 0x010B;
constexpr std::uint16_t kOptionalMagic64 = 0x020B;

PeSection ReadSection(ByteSpan file, ByteSpan header) {
  PeSection section = {};
  section.headerOffset = static_cast<std::uint64_t>(header.Data() - file.Data());
  section.name = header.TextAt(0, 8);
  section.virtualSize = header.U32(8);
  section.virtualAddress = header.U32(12);
  section.fileSize = header.U32(16);
  section.fileOffset = header.U32(20);
  section.characteristics = header.U32(36);
  section.bytes = file.Part(section.fileOffset, section.fileSize);
  return section;
}

void ReadOptionalHeader(ByteSpan optional, PeImage* image) {
  image->entryPoint = optional.U32(16);
  image->sectionAlignment = optional.U32(32);
  image->fileAlignment = optional.U32(36);
  image->imageSize = optional.U32(56);
  image->headersSize = optional.U32(60);
  image->imageBase = image->isPlus ? optional.U64(24) : optional.U32(28);
  image->majorOperatingSystemVersion = optional.U16(40);
  image->majorSubsystemVersion = optional.U16(48);
  image->minorSubsystemVersion = optional.U16(50);
  image->subsystem = optional.U16(68);
  image->dllCharacteristics = optional.U16(70);
  const std::uint32_t tableOffset = image->OptionalHeaderSize();
  const std::uint32_t count = std::min(optional.U32(tableOffset - 4), kMaxDirectories);
  for (std::uint32_t i = 0; i < count && optional.Contains(tableOffset + i * kDirectorySize, kDirectorySize); ++i) {
    const std::uint32_t at = tableOffset + i * kDirectorySize;
    image->directories.push_back({optional.U32(at), optional.U32(at + 4)});
  }
}

}  // namespace

bool PeSection::IsReadOnlyData() const {
  constexpr std::uint32_t kOthers = kImageScnMemDiscardable | kImageScnMemExecute | kImageScnMemWrite;
  return (characteristics & (kImageScnCntInitializedData | kOthers)) == kImageScnCntInitializedData;
}

PeDirectory PeImage::Directory(PeDirectoryIndex index) const {
  return index < directories.size() ? directories[index] : PeDirectory{0, 0};
}

ByteSpan PeImage::At(std::uint32_t address) const {
  for (const PeSection& section : sections) {
    if (address >= section.virtualAddress && address - section.virtualAddress < section.bytes.Size()) {
      return section.bytes.From(address - section.virtualAddress);
    }
  }
  return {};
}

bool PeImage::HasBaseRelocations() const {
  const PeDirectory directory = Directory(kPeBaseRelocationDirectory);
  return (characteristics & kImageFileRelocsStripped) == 0 && directory.size != 0 && !At(directory.address).Empty();
}

ByteSpan PeImage::CertificateTable() const {
  const PeDirectory directory = Directory(kPeSecurityDirectory);
  return directory.address == 0 ? ByteSpan() : file.Part(directory.address, directory.size);
}

Result<PeImage> ReadPeImage(ByteSpan file) {
  PeImage image = {};
  image.file = file;
  if (!file.StartsWith("MZ")) {
    return Failure("is no Windows program");
  }
  image.headerOffset = file.U32(0x3C);
  const ByteSpan coff = file.From(std::uint64_t{image.headerOffset} + 4);
  if (!file.From(image.headerOffset).StartsWith(std::string_view("PE\0\0", 4)) || coff.Size() < kCoffHeaderSize) {
    return Failure("is no Windows program, only a DOS one");
  }
  image.machine = coff.U16(0);
  image.characteristics = coff.U16(18);
  const std::uint32_t sectionCount = coff.U16(2);
  const std::uint32_t optionalSize = coff.U16(16);
  const ByteSpan optional = coff.Part(kCoffHeaderSize, optionalSize);
  const ByteSpan sections = coff.From(std::uint64_t{kCoffHeaderSize} + optionalSize);
  const std::uint16_t magic = optional.U16(0);
  if (magic != kOptionalMagic32 && magic != kOptionalMagic64) {
    return Failure("has no optional header of a Windows program");
  }
  image.isPlus = magic == kOptionalMagic64;
  if (optional.Size() < image.OptionalHeaderSize() ||
      !sections.Contains(0, std::uint64_t{sectionCount} * kSectionHeaderSize)) {
    return Failure("ends within the headers of a Windows program");
  }
  if (sectionCount > kMaxSections) {
    return Failure("has " + std::to_string(sectionCount) + " sections; Windows loads at most 96");
  }
  ReadOptionalHeader(optional, &image);
  for (std::uint32_t i = 0; i < sectionCount; ++i) {
    image.sections.push_back(ReadSection(file, sections.Part(i * kSectionHeaderSize, kSectionHeaderSize)));
  }
  return image;
}

}  // namespace kwa
