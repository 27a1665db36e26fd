#include "content/file_kind.h"

#include <cstdint>

#include "content/text_kind.h"
#include "pe/pe_image.h"

namespace kwa {
namespace {

std::string MachineText(std::uint16_t machine) {
  switch (machine) {
    case kImageFileMachineI386:
      return "x86";
    case kImageFileMachineAmd64:
      return "x64";
    case 0x0200:
      return "Itanium";
    case 0x01C4:
      return "ARM";
    case 0xAA64:
      return "ARM64";
    default:
      return "machine " + std::to_string(machine);
  }
}

std::string ProgramText(const PeImage& image) {
  const bool isLibrary = (image.characteristics & kImageFileDll) != 0;
  if (image.subsystem == kImageSubsystemNative) {
    return isLibrary ? "native DLL" : "native";
  }
  if (isLibrary) {
    return "DLL";
  }
  switch (image.subsystem) {
    case kImageSubsystemWindowsGui:
      return "Windows GUI program";
    case kImageSubsystemWindowsCui:
      return "Windows console program";
    default:
      return "subsystem " + std::to_string(image.subsystem);
  }
}

std::string ExecutableKind(ByteSpan file) {
  PeImage image;
  std::string fault;
  if (!ReadPeImage(file, &image, &fault)) {
    return "DOS program";
  }
  return (image.isPlus ? "PE32+, " : "PE32, ") + MachineText(image.machine) + ", " + ProgramText(image) +
         (image.CertificateTable().Empty() ? "" : ", Authenticode-signed");
}

std::string BitmapText(std::uint32_t width, std::uint32_t height, std::uint32_t bits, const std::string& coding) {
  return "Windows bitmap, " + std::to_string(width) + " x " + std::to_string(height) + " pixels, " +
         std::to_string(bits) + " bits per pixel, " + coding;
}

// Empty when the bytes are no bitmap after all.
std::string BitmapKind(ByteSpan file) {
  constexpr std::uint32_t kFileHeaderSize = 14;
  const ByteSpan info = file.From(kFileHeaderSize);
  const std::uint32_t infoSize = info.U32(0);
  if (infoSize == 12 && info.Contains(0, infoSize)) {
    return BitmapText(info.U16(4), info.U16(6), info.U16(10), "uncompressed");
  }
  if (infoSize < 40 || infoSize > 124 || !info.Contains(0, infoSize)) {
    return "";
  }
  // A negative height stands for rows from top to bottom.
  const bool isTopDown = info.U32(8) >> 31 != 0;
  const std::uint32_t height = isTopDown ? 0 - info.U32(8) : info.U32(8);
  const std::uint32_t compression = info.U32(16);
  const std::string coding = compression == 0 ? "uncompressed" : "compression " + std::to_string(compression);
  return BitmapText(info.U32(4), height, info.U16(14), coding) + (isTopDown ? ", top-down" : "");
}

// A sequence in DER or BER that the file has completely and that begins with the identifier of signed data.
bool IsSignedData(ByteSpan file) {
  constexpr std::string_view kIdentifier("\x06\x09\x2A\x86\x48\x86\xF7\x0D\x01\x07\x02", 11);
  constexpr std::uint8_t kSequence = 0x30;
  if (file.U8(0) != kSequence) {
    return false;
  }
  const std::uint8_t first = file.U8(1);
  const unsigned lengthBytes = first > 0x80 ? first - 0x80U : 0;
  std::uint64_t length = first < 0x80 ? first : 0;  // 0x80: ended by a mark instead
  if (lengthBytes > 4) {
    return false;
  }
  for (unsigned i = 0; i < lengthBytes; ++i) {
    length = length << 8 | file.U8(2 + i);
  }
  const ByteSpan content = file.From(2 + lengthBytes);
  return content.Contains(0, length) && content.StartsWith(kIdentifier);
}

}  // namespace

std::string FileKind(ByteSpan file) {
  if (file.Empty()) {
    return "empty";
  }
  if (file.StartsWith("MZ")) {
    return ExecutableKind(file);
  }
  if (file.StartsWith("ITSF")) {
    return "compiled HTML help";
  }
  if (file.StartsWith("BM")) {
    if (const std::string kind = BitmapKind(file); !kind.empty()) {
      return kind;
    }
  }
  if (IsSignedData(file)) {
    return "PKCS #7 signed data";
  }
  const std::string text = TextKind(file);
  return text.empty() ? "unknown data" : text;
}

}  // namespace kwa
