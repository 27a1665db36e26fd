#include "content/file_kind.h"

#include <utf8.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <string_view>

#include "base/ascii_text.h"
#include "pe/pe_image.h"

namespace kwa {
namespace {

bool IsControl(std::uint8_t character) {
  const bool isLayout = character == '\t' || character == '\n' || character == '\r' || character == '\f';
  return (character < 0x20 && !isLayout) || character == 0x7F;
}

LineEnds LineEndsOf(ByteSpan text) {
  LineEnds found = LineEnds::None;
  for (std::size_t at = 0; at < text.Size(); ++at) {
    const bool isLf = text.U8(at) == '\n';
    if (!isLf && (text.U8(at) != '\r' || text.U8(at + 1) == '\n')) {
      continue;
    }
    const bool isAfterCr = at > 0 && text.U8(at - 1) == '\r';
    const LineEnds lineEnd = !isLf ? LineEnds::Cr : isAfterCr ? LineEnds::CrLf : LineEnds::Lf;
    found = found == LineEnds::None || found == lineEnd ? lineEnd : LineEnds::Mixed;
  }
  return found;
}

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

std::string ProgramText(const ProgramKind& program) {
  std::string text = (program.isPlus ? "PE32+, " : "PE32, ") + MachineText(program.machine) + ", ";
  if (program.subsystem == kImageSubsystemNative) {
    text += program.isDll ? "native DLL" : "native";
  } else if (program.isDll) {
    text += "DLL";
  } else if (program.subsystem == kImageSubsystemWindowsGui) {
    text += "Windows GUI program";
  } else if (program.subsystem == kImageSubsystemWindowsCui) {
    text += "Windows console program";
  } else {
    text += "subsystem " + std::to_string(program.subsystem);
  }
  return text + (program.isSigned ? ", Authenticode-signed" : "");
}

std::string BitmapText(const BitmapKind& bitmap) {
  return "Windows bitmap, " + std::to_string(bitmap.width) + " x " + std::to_string(bitmap.height) + " pixels, " +
         std::to_string(bitmap.bitsPerPixel) + " bits per pixel, " +
         (bitmap.compression == 0 ? "uncompressed" : "compression " + std::to_string(bitmap.compression)) +
         (bitmap.isTopDown ? ", top-down" : "");
}

std::string TextKindText(const TextKind& text) {
  constexpr const char* kEncodings[] = {"7-bit ASCII text", "UTF-8 text", "8-bit text", "UTF-16 text, little-endian,",
                                        "UTF-16 text, big-endian,"};
  constexpr const char* kLineEnds[] = {"no line ends", "CR LF line ends", "LF line ends", "CR line ends",
                                       "mixed line ends"};
  return std::string(kEncodings[static_cast<std::size_t>(text.encoding)]) +
         (text.hasByteOrderMark ? " with byte-order mark, " : ", ") +
         kLineEnds[static_cast<std::size_t>(text.lineEnds)];
}

std::optional<BitmapKind> ReadBitmapKind(ByteSpan file) {
  constexpr std::uint32_t kFileHeaderSize = 14;
  const ByteSpan info = file.From(kFileHeaderSize);
  const std::uint32_t infoSize = info.U32(0);
  if (infoSize == 12 && info.Contains(0, infoSize)) {
    return BitmapKind{info.U16(4), info.U16(6), info.U16(10), 0, false};
  }
  if (infoSize < 40 || infoSize > 124 || !info.Contains(0, infoSize)) {
    return std::nullopt;
  }
  // A negative height means that rows go from top to bottom.
  const bool isTopDown = info.U32(8) >> 31 != 0;
  const std::uint32_t height = isTopDown ? 0 - info.U32(8) : info.U32(8);
  return BitmapKind{info.U32(4), height, info.U16(14), info.U32(16), isTopDown};
}

// Whether the file begins with a whole sequence, in DER or BER, that begins with the identifier of signed data.
bool IsSignedData(ByteSpan file) {
  constexpr std::string_view kIdentifier("\x06\x09\x2A\x86\x48\x86\xF7\x0D\x01\x07\x02", 11);
  constexpr std::uint8_t kSequence = 0x30;
  if (file.U8(0) != kSequence) {
    return false;
  }
  const std::uint8_t first = file.U8(1);
  const unsigned lengthBytes = first > 0x80 ? first - 0x80U : 0;
  std::uint64_t length = first < 0x80 ? first : 0;  // 0x80: the length is indefinite
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

bool IsUtf8(ByteSpan bytes) {
  return utf8::is_valid(bytes.begin(), bytes.end());
}

std::optional<TextKind> ReadTextKind(ByteSpan file) {
  const bool isBigEndian = file.StartsWith("\xFE\xFF");
  const bool isWide = isBigEndian || file.StartsWith("\xFF\xFE");
  const bool isMarkedUtf8 = file.StartsWith("\xEF\xBB\xBF");
  const std::string narrowed = isWide ? NarrowedUtf16(file.From(2), '?', isBigEndian) : "";
  const ByteSpan text = isWide ? ByteSpan(narrowed) : file.From(isMarkedUtf8 ? 3 : 0);
  if (std::any_of(text.begin(), text.end(), IsControl)) {
    return std::nullopt;
  }
  const bool isAscii = std::none_of(text.begin(), text.end(), [](std::uint8_t byte) { return byte >= 0x80; });
  const TextEncoding encoding = isBigEndian                ? TextEncoding::Utf16BigEndian
                                : isWide                   ? TextEncoding::Utf16LittleEndian
                                : !IsUtf8(text)            ? TextEncoding::EightBit
                                : isMarkedUtf8 || !isAscii ? TextEncoding::Utf8
                                                           : TextEncoding::Ascii;
  return TextKind{encoding, isWide || isMarkedUtf8, LineEndsOf(text)};
}

FileKind ReadFileKind(ByteSpan file) {
  if (file.Empty()) {
    return {FileFormat::Empty};
  }
  if (file.StartsWith("MZ")) {
    const Result<PeImage> image = ReadPeImage(file);
    if (!image) {
      return {FileFormat::DosProgram};
    }
    const bool isDll = (image->characteristics & kImageFileDll) != 0;
    const bool isSigned = !image->CertificateTable().Empty();
    return {FileFormat::Program, ProgramKind{image->isPlus, image->machine, image->subsystem, isDll, isSigned}};
  }
  if (file.StartsWith("ITSF")) {
    return {FileFormat::CompiledHtmlHelp};
  }
  if (file.StartsWith("BM")) {
    if (const std::optional<BitmapKind> bitmap = ReadBitmapKind(file)) {
      return {FileFormat::Bitmap, {}, bitmap};
    }
  }
  if (IsSignedData(file)) {
    return {FileFormat::SignedData};
  }
  const std::optional<TextKind> text = ReadTextKind(file);
  return {text ? FileFormat::Text : FileFormat::Unknown, {}, {}, text};
}

std::string KindText(const FileKind& kind) {
  switch (kind.format) {
    case FileFormat::Empty:
      return "empty";
    case FileFormat::Program:
      return ProgramText(*kind.program);
    case FileFormat::DosProgram:
      return "DOS program";
    case FileFormat::CompiledHtmlHelp:
      return "compiled HTML help";
    case FileFormat::Bitmap:
      return BitmapText(*kind.bitmap);
    case FileFormat::SignedData:
      return "PKCS #7 signed data";
    case FileFormat::Text:
      return TextKindText(*kind.text);
    case FileFormat::Unknown:
      break;
  }
  return "unknown data";
}

}  // namespace kwa
