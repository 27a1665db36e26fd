#include "sample_payload.h"

#include <algorithm>
#include <map>
#include <stdexcept>
#include <string>
#include <string_view>

#include "catalog.h"
#include "files/mapped_file.h"
#include "files/output_file.h"
#include "files/payload_folder.h"
#include "padding.h"
#include "program.h"
#include "signer.h"

namespace kwa {

namespace fs = std::filesystem;
using namespace std::string_view_literals;

namespace {

struct ProgramSource {
  bool isX64;
  bool isSigned;  // as in a real payload
  const char* fileName;
};

// Which of the built programs each of the payload's programs is.
const std::map<std::string, ProgramSource> kPrograms = {
    {"marlinusb.exe", {false, false, "settings.exe"}},     {"marlin_usb.sys", {false, false, "driver.sys"}},
    {"marlin_usb_64.sys", {true, false, "driver.sys"}},    {"marlin_usb_asio.dll", {false, false, "asio.dll"}},
    {"marlin_usb_asio_64.dll", {true, false, "asio.dll"}}, {"Panorama.exe", {false, true, "mixer.exe"}},
    {"dpinst.exe", {false, true, "standin.exe"}},          {"dpinst64.exe", {true, true, "standin.exe"}},
};

constexpr char kInfName[] = "marlin_usb.inf";
constexpr char kCatalogName[] = "marlin_usb.cat";

// What differs in the next version, each text as long as the one that it replaces.
constexpr std::pair<std::string_view, std::string_view> kNextVersion[] = {
    {"02/13/2014,1.0.42.0", "02/20/2014,1.0.43.0"},
    // A version record's text in UTF-16 and its numbers, which follow the record's signature.
    {"1\0.\0"
     "0\0.\0"
     "4\0"
     "2\0"sv,
     "1\0.\0"
     "0\0.\0"
     "4\0"
     "3\0"sv},
    {"\xBD\x04\xEF\xFE\0\0\1\0\0\0\1\0\0\0\x2A\0\0\0\1\0\0\0\x2A\0"sv,
     "\xBD\x04\xEF\xFE\0\0\1\0\0\0\1\0\0\0\x2B\0\0\0\1\0\0\0\x2B\0"sv},
};
constexpr std::uint32_t kNextDriverGrowth = 1024;  // bytes

std::string ReadSource(const fs::path& path, bool isNextVersion) {
  std::string bytes(MappedFile(path).Bytes().Text());
  for (const auto& [now, next] : kNextVersion) {
    for (std::size_t at = bytes.find(now); isNextVersion && at != std::string::npos; at = bytes.find(now, at)) {
      bytes.replace(at, now.size(), next);
    }
  }
  return bytes;
}

// The INF and comment lines after it, together size bytes.
std::string WithComment(std::string inf, std::size_t size) {
  constexpr std::size_t kLineSize = 80;
  constexpr std::size_t kSmallestLine = 3;
  RequireSize(inf.size() + kSmallestLine, size);
  while (inf.size() < size) {
    const std::size_t room = size - inf.size();
    inf += ';' + std::string((room < 2 * kLineSize ? room : kLineSize) - kSmallestLine, '-') + "\r\n";
  }
  return inf;
}

std::string MakeContent(const ContentsFile& file, const SampleRequest& request, const Signer& signer) {
  const auto program = kPrograms.find(file.name);
  if (program == kPrograms.end()) {
    const std::string content = ReadSource(request.files / file.name, request.isNextVersion);
    return file.name == kInfName ? WithComment(content, file.size) : Padded(content, file.size);
  }
  const auto& [isX64, isSigned, fileName] = program->second;
  const std::string built =
      ReadSource((isX64 ? request.programsX64 : request.programsX86) / fileName, request.isNextVersion);
  return isSigned ? MakeSignedProgram(built, file.size, signer) : MakeProgram(built, file.size);
}

void WriteFile(const fs::path& path, const std::string& bytes) {
  OutputFile file(path);
  file.Write(bytes);
  file.Commit();
}

}  // namespace

void MakeSamplePayload(const SampleRequest& request) {
  if (request.isNextVersion && fs::exists(request.output) && !fs::is_empty(request.output)) {
    throw std::runtime_error(request.output.string() + ": is not an empty folder");
  }
  const Signer signer = ReadSigner(request.files / "signer.pem");
  PayloadContents list = ReadContentsFile(request.contents);
  for (ContentsFile& file : list) {
    file.size += request.isNextVersion && fs::path(file.name).extension() == ".sys" ? kNextDriverGrowth : 0;
  }
  const std::string listText = ContentsText(list);

  // The catalog is made last: it covers all other files of the driver package.
  std::stable_partition(list.begin(), list.end(), [](const ContentsFile& file) { return file.name != kCatalogName; });
  std::map<char, std::map<std::string, std::string>> contents = {{'A', {}}, {'B', {}}};  // by archive and name
  for (const ContentsFile& file : list) {
    std::map<std::string, std::string>& archive = contents[file.archive];
    try {
      archive[file.name] =
          file.name == kCatalogName ? MakeCatalog(archive, file.size, signer) : MakeContent(file, request, signer);
    } catch (const std::runtime_error& error) {
      throw std::runtime_error(file.name + ": " + error.what());
    }
  }
  for (const auto& [archive, files] : contents) {
    const fs::path folder = request.output / (archive == 'A' ? "a" : "b");
    fs::remove_all(folder);
    fs::create_directories(folder);
    for (const auto& [name, bytes] : files) {
      WriteFile(folder / name, bytes);
    }
  }
  if (request.isNextVersion) {
    WriteFile(request.output / "contents.json", listText);
  }
}

}  // namespace kwa
