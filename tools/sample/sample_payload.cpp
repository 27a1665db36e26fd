#include "sample_payload.h"

#include <algorithm>
#include <map>
#include <stdexcept>
#include <string>
#include <vector>

#include "files/mapped_file.h"
#include "files/tool_failure.h"
#include "catalog.h"
#include "help_file.h"
#include "inf_text.h"
#include "payload/payload_contents.h"
#include "program.h"
#include "sample_folder.h"
#include "signer.h"
#include "watermark.h"

namespace kwa {

namespace fs = std::filesystem;

namespace {

struct ProgramSource {
  bool x64;
  bool isSigned;  // as the file is that it stands for
  const char* fileName;
};

// Which of the built programs each of the payload's programs is.
const std::map<std::string, ProgramSource> kPrograms = {
    {"marlinusb.exe", {false, false, "settings.exe"}},     {"marlin_usb.sys", {false, false, "driver.sys"}},
    {"marlin_usb_64.sys", {true, false, "driver.sys"}},    {"marlin_usb_asio.dll", {false, false, "asio.dll"}},
    {"marlin_usb_asio_64.dll", {true, false, "asio.dll"}}, {"Panorama.exe", {false, true, "mixer.exe"}},
    {"dpinst.exe", {false, true, "standin.exe"}},          {"dpinst64.exe", {true, true, "standin.exe"}},
};

constexpr char kCatalogName[] = "marlin_usb.cat";

std::string MakeContent(const ContentsFile& file, const SampleSources& sources, const Signer& signer) {
  const std::string& name = file.name;
  const auto program = kPrograms.find(name);
  if (program != kPrograms.end()) {
    const auto& [x64, isSigned, fileName] = program->second;
    const std::string built(MappedFile((x64 ? sources.programsX64 : sources.programsX86) / fileName).Bytes().Text());
    return isSigned ? MakeSignedProgram(built, file.size, signer) : MakeProgram(built, file.size);
  }
  if (name == "marlin_usb.inf") return MakeInf(file.size);
  if (name == "Panorama.chm") return MakeHelpFile(file.size);
  if (name == "kwa.bmp") return MakeWatermark(file.size);
  if (name != "eula_de.txt" && name != "eula_en.txt") throw std::runtime_error("the sample payload has no such file");
  const std::string text(MappedFile(sources.files / name).Bytes().Text());
  if (text.size() != file.size) {
    throw std::runtime_error("the list of contents asks for " + std::to_string(file.size) + " bytes, this text has " +
                             std::to_string(text.size()));
  }
  return text;
}

}  // namespace

void MakeSamplePayload(const SampleSources& sources, const fs::path& output) {
  const Signer signer = ReadSigner(sources.files / "signer.pem");
  std::map<char, std::map<std::string, std::string>> contents = {{'A', {}}, {'B', {}}};  // by archive and name
  std::vector<ContentsFile> files = ReadPayloadContents(sources.contents);
  // The catalog comes last: it covers all other files of the driver package.
  std::stable_partition(files.begin(), files.end(), [](const ContentsFile& file) { return file.name != kCatalogName; });
  for (const ContentsFile& file : files) {
    std::map<std::string, std::string>& archive = contents[file.archive];
    try {
      archive[file.name] =
          file.name == kCatalogName ? MakeCatalog(archive, file.size, signer) : MakeContent(file, sources, signer);
    } catch (const std::runtime_error& error) {
      throw ToolFailure(file.name, error.what());
    }
  }
  FillFolder(output / "a", contents['A']);
  FillFolder(output / "b", contents['B']);
}

}  // namespace kwa
