#include "catalog.h"

#include <initializer_list>
#include <stdexcept>

#include "padding.h"

namespace kwa {
namespace {

// The DER tags that a catalog uses.
enum Tag : unsigned char {
  kInteger = 0x02,
  kOctetString = 0x04,
  kNull = 0x05,
  kObjectId = 0x06,
  kUtcTime = 0x17,
  kSequence = 0x30,
  kSet = 0x31,
  kContext0 = 0xA0,
};

std::string Der(Tag tag, const std::string& content) {
  const std::size_t length = content.size();
  std::string bytes(1, static_cast<char>(tag));
  if (length > 0xFF) {
    bytes += static_cast<char>(0x82);
    bytes += static_cast<char>(length >> 8);
  } else if (length > 0x7F) {
    bytes += static_cast<char>(0x81);
  }
  bytes += static_cast<char>(length & 0xFF);
  return bytes + content;
}

// Arcs after 1.3.6.1.4.1.311, Microsoft's.
std::string MicrosoftObjectId(std::initializer_list<int> arcs) {
  std::string content = "\x2B\x06\x01\x04\x01\x82\x37";
  for (const int arc : arcs) content += static_cast<char>(arc);
  return Der(kObjectId, content);
}

std::string SignedDataObjectId() {
  return Der(kObjectId, "\x2A\x86\x48\x86\xF7\x0D\x01\x07\x02");
}

std::string Utf16(const std::string& ascii) {
  std::string bytes;
  for (const char c : ascii) {
    bytes += c;
    bytes += '\0';
  }
  return bytes + std::string(2, '\0');
}

// A name and a value that the catalog gives a member.
std::string NameValue(const std::string& name, const std::string& value) {
  std::string bigEndianName;
  for (const char c : name) {
    bigEndianName += '\0';
    bigEndianName += c;
  }
  const Tag kBmpString = static_cast<Tag>(0x1E);
  const std::string content =
      Der(kSequence, Der(kBmpString, bigEndianName) + Der(kInteger, std::string("\x10\x01\x00\x01", 4)) +
                         Der(kOctetString, value));
  return Der(kSequence, MicrosoftObjectId({12, 2, 1}) + Der(kSet, content));
}

// One file that the catalog vouches for, under its hash.
std::string Member(unsigned number, const std::string& fileName, const std::string& attributes) {
  static const char kDigits[] = "0123456789ABCDEF";
  std::string hash;
  for (const char byte : PaddingBytes(20, number)) {
    hash += kDigits[static_cast<unsigned char>(byte) >> 4];
    hash += kDigits[static_cast<unsigned char>(byte) & 15];
  }
  return Der(kSequence,
             Der(kOctetString, Utf16(hash)) +
                 Der(kSet, NameValue("File", Utf16(fileName)) +
                               NameValue("OSAttr", Utf16("2:5.00,2:5.1,2:5.2,2:6.0,2:6.1,2:6.2,2:6.3")) + attributes));
}

std::string Catalog(const std::string& members) {
  const std::string list =
      Der(kSequence, Der(kSequence, MicrosoftObjectId({12, 1, 1})) + Der(kOctetString, PaddingBytes(16, 0)) +
                         Der(kUtcTime, "140213120000Z") +
                         Der(kSequence, MicrosoftObjectId({12, 1, 2}) + Der(kNull, "")) + Der(kSequence, members));
  const std::string signedData = Der(
      kSequence, Der(kInteger, "\x01") + Der(kSet, "") +  // version, no digest algorithms
                     Der(kSequence, MicrosoftObjectId({10, 1}) + Der(kContext0, list)) + Der(kSet, ""));  // no signers
  return Der(kSequence, SignedDataObjectId() + Der(kContext0, signedData));
}

// The package's files; a catalog that has room vouches for further revisions of them.
const char* const kFileNames[] = {"marlin_usb.inf",    "marlinusb.exe",       "marlin_usb.sys",
                                  "marlin_usb_64.sys", "marlin_usb_asio.dll", "marlin_usb_asio_64.dll",
                                  "panorama.chm",      "panorama.exe"};
constexpr unsigned kFileCount = sizeof kFileNames / sizeof kFileNames[0];

// The last member, whose remark fills the catalog. Below this remark, lengths would take fewer bytes.
std::string LastMember(std::size_t remarkBytes) {
  return Member(0, "readme.txt", NameValue("Remark", PaddingBytes(remarkBytes, 1)));
}
constexpr std::size_t kSmallestRemark = 256;

}  // namespace

std::string MakeCatalog(std::size_t size) {
  std::string members;
  RequireSize(Catalog(LastMember(kSmallestRemark)).size(), size);
  if (size > 0xFFFF) throw std::runtime_error("the list of contents asks for more than 65535 bytes");
  for (unsigned i = 0;; ++i) {
    const std::string more = members + Member(i + 1, kFileNames[i % kFileCount], "");
    if (Catalog(more + LastMember(kSmallestRemark)).size() > size) break;
    members = more;
  }
  const std::size_t missing = size - Catalog(members + LastMember(kSmallestRemark)).size();
  return Catalog(members + LastMember(kSmallestRemark + missing));
}

}  // namespace kwa
