#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "base/byte_span.h"

namespace kwa {

// KindText has words for the values of both in this order.
enum class TextEncoding { Ascii, Utf8, EightBit, Utf16LittleEndian, Utf16BigEndian };

enum class LineEnds { None, CrLf, Lf, Cr, Mixed };

struct TextKind {
  TextEncoding encoding;
  bool hasByteOrderMark;  // UTF-16 is recognised by it alone
  LineEnds lineEnds;
};

// The kind of a text. Nothing for bytes with control characters other than tab, line end and page end.
std::optional<TextKind> ReadTextKind(ByteSpan file);

// Whether the bytes are well-formed UTF-8: no overlong form, no surrogate, nothing above U+10FFFF.
bool IsUtf8(ByteSpan bytes);

enum class FileFormat { Empty, Program, DosProgram, CompiledHtmlHelp, Bitmap, SignedData, Text, Unknown };

// A Windows program, library or driver. The numbers are those of its headers.
struct ProgramKind {
  bool isPlus;  // PE32+
  std::uint16_t machine;
  std::uint16_t subsystem;
  bool isDll;
  bool isSigned;  // it has a certificate table; nothing is checked
};

// A Windows bitmap, as its headers describe it.
struct BitmapKind {
  std::uint32_t width;   // pixels
  std::uint32_t height;  // pixels
  std::uint32_t bitsPerPixel;
  std::uint32_t compression;  // 0: none
  bool isTopDown;             // the first row is the top one
};

// What a file is by its own bytes.
struct FileKind {
  FileFormat format;
  std::optional<ProgramKind> program = std::nullopt;  // for FileFormat::Program alone, and so on
  std::optional<BitmapKind> bitmap = std::nullopt;
  std::optional<TextKind> text = std::nullopt;
};

FileKind ReadFileKind(ByteSpan file);

// The words for a kind in lists of contents: "PE32, x86, native", "PKCS #7 signed data", "7-bit ASCII text, CR LF line
// ends", … A list that a user keeps holds them, so they never change.
std::string KindText(const FileKind& kind);

}  // namespace kwa
