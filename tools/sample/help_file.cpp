#include "help_file.h"

#include <cstdint>
#include <vector>

#include "padding.h"

namespace kwa {
namespace {

constexpr std::uint64_t kGerman = 0x0407;
constexpr std::size_t kHeaderBytes = 0x60;
constexpr std::size_t kSizeSectionBytes = 0x18;
constexpr std::size_t kDirectoryHeaderBytes = 0x54;
constexpr std::size_t kChunkBytes = 0x1000;
constexpr std::size_t kChunkHeaderBytes = 0x14;
constexpr std::size_t kContentStart = kHeaderBytes + kSizeSectionBytes + kDirectoryHeaderBytes + kChunkBytes;

struct Page {
  std::string path;
  std::string bytes;
};

std::string Number(std::uint64_t value, int byteCount) {
  std::string bytes;
  for (int i = 0; i < byteCount; ++i) bytes += static_cast<char>(value >> (8 * i) & 0xFF);
  return bytes;
}

// A number of the directory: seven bits a byte, the highest first, all but the last byte marked.
std::string Packed(std::size_t value) {
  std::string bytes(1, static_cast<char>(value & 0x7F));
  while ((value >>= 7) != 0) bytes.insert(bytes.begin(), static_cast<char>((value & 0x7F) | 0x80));
  return bytes;
}

std::string Guid(unsigned data1, unsigned data2, unsigned data3, const char (&data4)[9]) {
  return Number(data1, 4) + Number(data2, 2) + Number(data3, 2) + std::string(data4, 8);
}

std::string Header(std::size_t size) {
  return "ITSF" + Number(3, 4) + Number(kHeaderBytes, 4) + Number(1, 4) + Number(0, 4) + Number(kGerman, 4) +
         Guid(0x7C01FD10, 0x7BAA, 0x11D0, "\x9E\x0C\x00\xA0\xC9\x22\xE6\xEC") +
         Guid(0x7C01FD11, 0x7BAA, 0x11D0, "\x9E\x0C\x00\xA0\xC9\x22\xE6\xEC") + Number(kHeaderBytes, 8) +
         Number(kSizeSectionBytes, 8) + Number(kHeaderBytes + kSizeSectionBytes, 8) +
         Number(kDirectoryHeaderBytes + kChunkBytes, 8) +
         Number(kContentStart, 8) +  // end of the header, start of the size section
         Number(0x01FE, 4) + Number(0, 4) + Number(size, 8) + Number(0, 8);
}

std::string DirectoryHeader() {
  const std::uint64_t kNone = 0xFFFFFFFF;
  return "ITSP" + Number(1, 4) + Number(kDirectoryHeaderBytes, 4) + Number(10, 4) + Number(kChunkBytes, 4) +
         Number(2, 4) + Number(1, 4) +                                        // density, depth of the index
         Number(kNone, 4) + Number(0, 4) + Number(0, 4) + Number(kNone, 4) +  // no index; first and last chunk
         Number(1, 4) + Number(kGerman, 4) + Guid(0x5D02926A, 0x212E, 0x11D0, "\x9D\xF9\x00\xA0\xC9\x22\xE6\xEC") +
         Number(kDirectoryHeaderBytes, 4) + Number(kNone, 4) + Number(kNone, 4) + Number(kNone, 4);
}

std::string DirectoryChunk(const std::vector<Page>& pages) {
  std::string entries;
  std::size_t offset = 0;
  for (const Page& page : pages) {
    entries += Packed(page.path.size()) + page.path + Packed(0) + Packed(offset) + Packed(page.bytes.size());
    offset += page.bytes.size();
  }
  // The entries' count closes the chunk; a quick reference into so few entries is empty.
  const std::size_t free = kChunkBytes - kChunkHeaderBytes - entries.size();
  const std::uint64_t kNone = 0xFFFFFFFF;
  return "PMGL" + Number(free, 4) + Number(0, 4) + Number(kNone, 4) + Number(kNone, 4) + entries +
         std::string(free - 2, '\0') + Number(pages.size(), 2);
}

std::string HtmlPage(const std::string& title, const std::string& text) {
  return "<!DOCTYPE html PUBLIC \"-//W3C//DTD HTML 4.01//EN\">\r\n<html lang=\"de\">\r\n<head><title>" + title +
         "</title></head>\r\n<body>\r\n<h1>" + title + "</h1>\r\n<p>" + text + "</p>\r\n</body>\r\n</html>\r\n";
}

// In the order that the directory demands: by name. The topics' data comes last and fills the file.
std::vector<Page> Pages(std::size_t fillBytes) {
  std::vector<Page> pages = {
      {"/eingaenge.htm", HtmlPage("Eing&auml;nge",
                                  "Jeder Eingang hat einen Regler, einen Pegelmesser und die "
                                  "Tasten <b>Solo</b> und <b>Mute</b>.")},
      {"/index.htm", HtmlPage("Panorama",
                              "Panorama mischt die Ein- und Ausg&auml;nge der KWA-Ger&auml;te. Dies ist "
                              "die Hilfedatei des Beispielpakets.")},
      {"/pegel.htm", HtmlPage("Pegel",
                              "Die Anzeige reicht von -60 dB bis 0 dB; dar&uuml;ber leuchtet die rote "
                              "&Uuml;bersteuerungsanzeige.")},
      {"/wege.htm", HtmlPage("Signalwege", "Ein Klick auf einen Kreuzungspunkt verbindet Eingang und Ausgang.")},
  };
  if (fillBytes > 0) pages.push_back({"/zeichen.bin", PaddingBytes(fillBytes, 2)});
  return pages;
}

}  // namespace

std::string MakeHelpFile(std::size_t size) {
  std::size_t neededBytes = kContentStart;
  for (const Page& page : Pages(0)) neededBytes += page.bytes.size();
  RequireSize(neededBytes, size);

  const std::vector<Page> pages = Pages(size - neededBytes);
  std::string bytes = Header(size) + DirectoryHeader() + DirectoryChunk(pages);
  for (const Page& page : pages) bytes += page.bytes;
  return bytes;
}

}  // namespace kwa
