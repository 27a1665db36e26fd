#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "base/byte_span.h"
#include "base/fault.h"

namespace kwa {

// Values of the PE format that more than one reader here needs, named as the platform's headers name them.
constexpr std::uint16_t kImageFileMachineI386 = 0x014C;
constexpr std::uint16_t kImageFileMachineAmd64 = 0x8664;
constexpr std::uint16_t kImageFileRelocsStripped = 0x0001;
constexpr std::uint16_t kImageFileDll = 0x2000;
constexpr std::uint16_t kImageSubsystemNative = 1;
constexpr std::uint16_t kImageSubsystemWindowsGui = 2;
constexpr std::uint16_t kImageSubsystemWindowsCui = 3;
constexpr std::uint16_t kImageDllCharacteristicsDynamicBase = 0x0040;
constexpr std::uint16_t kImageDllCharacteristicsNxCompat = 0x0100;
constexpr std::uint32_t kImageScnMemExecute = 0x20000000;
constexpr std::uint32_t kImageScnMemWrite = 0x80000000;

// Indexes of the data directories.
enum PeDirectoryIndex : unsigned {
  kPeImportDirectory = 1,
  kPeResourceDirectory = 2,
  kPeSecurityDirectory = 4,  // its address is an offset in the file
  kPeBaseRelocationDirectory = 5,
  kPeDelayImportDirectory = 13,
};

struct PeSection {
  std::uint64_t headerOffset;  // of its entry in the table of sections, in the file
  std::string name;            // raw, up to 8 characters
  std::uint32_t virtualSize;   // bytes in memory
  std::uint32_t virtualAddress;
  std::uint32_t fileOffset;
  std::uint32_t fileSize;  // as the header says
  std::uint32_t characteristics;
  ByteSpan bytes;  // what the file really has of it, at most fileSize

  bool IsTruncated() const { return bytes.Size() < fileSize; }
  // Initialized data that the program can neither change nor execute and that stays in memory.
  bool IsReadOnlyData() const;
};

struct PeDirectory {
  std::uint32_t address;  // relative to the image base
  std::uint32_t size;     // bytes
};

// The headers of a Windows program, library or driver. Fields mean what the platform says; none is proven.
struct PeImage {
  ByteSpan file;
  std::uint32_t headerOffset;  // of the "PE" signature
  bool isPlus;                 // PE32+
  std::uint16_t machine;
  std::uint16_t characteristics;
  std::uint16_t subsystem;
  std::uint16_t dllCharacteristics;
  std::uint16_t majorSubsystemVersion;
  std::uint16_t minorSubsystemVersion;
  std::uint16_t majorOperatingSystemVersion;
  std::uint64_t imageBase;
  std::uint32_t entryPoint;        // relative to the image base
  std::uint32_t sectionAlignment;  // bytes
  std::uint32_t fileAlignment;     // bytes
  std::uint32_t imageSize;         // bytes in memory
  std::uint32_t headersSize;       // bytes in the file
  std::vector<PeSection> sections;
  std::vector<PeDirectory> directories;  // 16 at most

  // Without the directories, which follow.
  std::uint32_t OptionalHeaderSize() const { return isPlus ? 112 : 96; }
  // The directory, or zeros where the file has none at that index.
  PeDirectory Directory(PeDirectoryIndex index) const;
  // The bytes at an address relative to the image base, to the end of what the file has of their section. Empty where
  // no section holds it.
  ByteSpan At(std::uint32_t address) const;
  // Whether the image can be moved: relocations are there and not marked as stripped.
  bool HasBaseRelocations() const;
  // The Authenticode signatures, empty in an unsigned file.
  ByteSpan CertificateTable() const;
};

// Reads the headers. Fails when the bytes are no such file or end within the headers, but not when the file is cut off
// within a section: see IsTruncated.
Result<PeImage> ReadPeImage(ByteSpan file);

}  // namespace kwa
