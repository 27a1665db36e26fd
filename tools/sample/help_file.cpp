#include "help_file.h"

#include <cstdint>
#include <vector>

#include "padding.h"

namespace kwa {
namespace {

constexpr std::uint32_t kItsf = 0x46535449;  // "ITSF", and so on
constexpr std::uint32_t kItsp = 0x50535449;
constexpr std::uint32_t kPmgl = 0x4C474D50;
constexpr std::uint32_t kGerman = 0x0407;
constexpr std::uint32_t kNone = 0xFFFFFFFF;
constexpr std::uint32_t kHeaderBytes = 0x60;
constexpr std::uint32_t kSizeSectionBytes = 0x18;
constexpr std::uint32_t kDirectoryHeaderBytes = 0x54;
constexpr std::uint32_t kChunkBytes = 0x1000;
constexpr std::uint32_t kChunkHeaderBytes = 0x14;
constexpr std::uint32_t kDirectoryStart = kHeaderBytes + kSizeSectionBytes;
constexpr std::uint32_t kContentStart = kDirectoryStart + kDirectoryHeaderBytes + kChunkBytes;

// 32-bit numbers, the lowest byte first.
std::string Words(const std::vector<std::uint32_t>& words) {
  std::string bytes;
  for (const std::uint32_t word : words) {
    for (int shift = 0; shift < 32; shift += 8) bytes += static_cast<char>(word >> shift & 0xFF);
  }
  return bytes;
}

// A number of the directory: seven bits a byte, the highest first, all but the last byte marked.
std::string Packed(std::size_t value) {
  std::string bytes(1, static_cast<char>(value & 0x7F));
  while ((value >>= 7) != 0) bytes.insert(bytes.begin(), static_cast<char>((value & 0x7F) | 0x80));
  return bytes;
}

const char kIndexPage[] = R"(<!DOCTYPE html PUBLIC "-//W3C//DTD HTML 4.01//EN">
<html lang="de">
<head><title>Panorama</title></head>
<body>
<h1>Panorama</h1>
<p>Panorama mischt die Ein- und Ausg&auml;nge der KWA-Ger&auml;te. Dies ist die Hilfedatei des Beispielpakets.</p>
</body>
</html>
)";

}  // namespace

std::string MakeHelpFile(std::size_t size) {
  const std::string page = kIndexPage;
  RequireSize(kContentStart + page.size(), size);
  const std::string topics = PaddingBytes(size - kContentStart - page.size(), 2);

  // In the order that the directory demands: by name.
  std::string entries;
  const auto addEntry = [&entries](const std::string& path, std::size_t offset, std::size_t byteCount) {
    entries += Packed(path.size()) + path + Packed(0) + Packed(offset) + Packed(byteCount);
  };
  addEntry("/index.htm", 0, page.size());
  addEntry("/topics.bin", page.size(), topics.size());
  const std::uint32_t free = kChunkBytes - kChunkHeaderBytes - static_cast<std::uint32_t>(entries.size());

  // The header ends with the offsets and sizes, in 64 bits, of the parts behind it.
  const std::string header = Words({kItsf, 3, kHeaderBytes, 1, 0, kGerman}) +
                             Words({0x7C01FD10, 0x11D07BAA, 0xA0000C9E, 0xECE622C9}) +  // identifiers of the format
                             Words({0x7C01FD11, 0x11D07BAA, 0xA0000C9E, 0xECE622C9}) +
                             Words({kHeaderBytes, 0, kSizeSectionBytes, 0, kDirectoryStart, 0}) +
                             Words({kDirectoryHeaderBytes + kChunkBytes, 0, kContentStart, 0});
  const std::string sizeSection = Words({0x01FE, 0, static_cast<std::uint32_t>(size), 0, 0, 0});
  // One chunk and no index of chunks.
  const std::string directoryHeader =
      Words({kItsp, 1, kDirectoryHeaderBytes, 10, kChunkBytes, 2, 1}) + Words({kNone, 0, 0, kNone, 1, kGerman}) +
      Words({0x5D02926A, 0x11D0212E, 0xA000F99D, 0xECE622C9}) + Words({kDirectoryHeaderBytes, kNone, kNone, kNone});
  // The count of entries closes the chunk; a quick reference into so few is empty.
  const std::string chunk = Words({kPmgl, free, 0, kNone, kNone}) + entries + std::string(free - 2, '\0') + '\2' + '\0';
  return header + sizeSection + directoryHeader + chunk + page + topics;
}

}  // namespace kwa
