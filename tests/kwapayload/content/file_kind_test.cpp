// Kinds of files in the words of the list of contents: the kinds that no file of the sample payload has.

#include "content/file_kind.h"

#include <gtest/gtest.h>

#include "built_archive.h"
#include "built_image.h"

namespace {

std::string Bitmap(std::uint32_t width, std::uint32_t height, std::uint32_t bits, std::uint32_t compression) {
  std::string file = "BM" + std::string(12, '\0') + WordBytes(40) + WordBytes(width) + WordBytes(height);
  file += WordBytes(1 | bits << 16) + WordBytes(compression);
  file.resize(54);
  return file;
}

TEST(FileKind, ByTheFilesOwnBytes) {
  const std::string signedData("\x30\x82\x00\x0D\x06\x09\x2A\x86\x48\x86\xF7\x0D\x01\x07\x02\xA0\x00", 17);
  const std::string oldBitmap =
      "BM" + std::string(12, '\0') + WordBytes(12) + WordBytes(51 | 305 << 16) + WordBytes(1 | 24 << 16);
  const std::string byteOrderMark = "\xEF\xBB\xBF";
  const std::pair<std::string, const char*> kCases[] = {
      {BuildImage({true, 0xAA64, 0x22, 3}), "PE32+, ARM64, Windows console program"},
      {BuildImage({true, 0x200, 0x2022, 1}), "PE32+, Itanium, native DLL"},
      {BuildImage({false, 0x1C4, 0x22, 9}), "PE32, ARM, subsystem 9"},
      {BuildImage({false, 0x166, 0x22, 2}), "PE32, machine 358, Windows GUI program"},
      {"MZ", "DOS program"},
      {signedData, "PKCS #7 signed data"},
      {signedData.substr(0, 16), "unknown data"},
      {"\x30\x85" + std::string(3, '\0') + signedData.substr(2), "unknown data"},
      {Bitmap(51, 305, 24, 0), "Windows bitmap, 51 x 305 pixels, 24 bits per pixel, uncompressed"},
      {Bitmap(2, 0xFFFFFFFD, 8, 1), "Windows bitmap, 2 x 3 pixels, 8 bits per pixel, compression 1, top-down"},
      {Bitmap(51, 305, 24, 0).substr(0, 50), "unknown data"},
      {oldBitmap, "Windows bitmap, 51 x 305 pixels, 24 bits per pixel, uncompressed"},
      {oldBitmap.substr(0, 25), "unknown data"},
      {"BMW\n", "7-bit ASCII text, LF line ends"},
      {"", "empty"},
      {"a\tb\f~", "7-bit ASCII text, no line ends"},
      {"a\r\nb\r", "7-bit ASCII text, mixed line ends"},
      {"a\rb\r", "7-bit ASCII text, CR line ends"},
      {byteOrderMark + "plain\r\n", "UTF-8 text with byte-order mark, CR LF line ends"},
      {byteOrderMark + "\xFC\r\n", "8-bit text with byte-order mark, CR LF line ends"},
      {"\xC3\xBC \xE2\x82\xAC \xF4\x80\x80\x80\n", "UTF-8 text, LF line ends"},
      {"\xED\xA0\x80", "8-bit text, no line ends"},
      {"\xF4\x90\x80\x80", "8-bit text, no line ends"},
      {std::string("\xFF\xFE\x61\0\r\0\n\0", 8), "UTF-16 text, little-endian, with byte-order mark, CR LF line ends"},
      {std::string("\xFE\xFF\0a\0\n", 6), "UTF-16 text, big-endian, with byte-order mark, LF line ends"},
      {std::string("\xFF\xFE\0\0", 4), "unknown data"},
      {"a\x7F", "unknown data"},
  };
  for (const auto& [bytes, kind] : kCases) {
    EXPECT_EQ(kind, KindText(kwa::ReadFileKind(kwa::ByteSpan(bytes)))) << testing::PrintToString(bytes);
  }
}

}  // namespace
