#include "sample_payload.h"

#include <map>
#include <set>
#include <stdexcept>
#include <string>

#include "base/tool_failure.h"
#include "catalog.h"
#include "help_file.h"
#include "inf_text.h"
#include "licence_texts.h"
#include "padding.h"
#include "payload/payload_contents.h"
#include "sample_folder.h"
#include "watermark.h"

namespace kwa {

namespace fs = std::filesystem;

namespace {

struct ProgramSource {
  bool x64;
  const char* fileName;
};

// Which of the built programs each of the payload's programs is.
const std::map<std::string, ProgramSource> kPrograms = {
    {"marlinusb.exe", {false, "settings.exe"}},     {"marlin_usb.sys", {false, "driver.sys"}},
    {"marlin_usb_64.sys", {true, "driver.sys"}},    {"marlin_usb_asio.dll", {false, "asio.dll"}},
    {"marlin_usb_asio_64.dll", {true, "asio.dll"}}, {"Panorama.exe", {false, "mixer.exe"}},
    {"dpinst.exe", {false, "standin.exe"}},         {"dpinst64.exe", {true, "standin.exe"}},
};

// The loader ignores what stands behind a program's end.
std::string PadProgram(const std::string& program, std::size_t size) {
  RequireSize(program.size(), size);
  return program + PaddingBytes(size - program.size(), static_cast<unsigned>(size));
}

std::string MakeContent(const ContentsFile& file, const SampleSources& sources) {
  const std::string& name = file.name;
  const auto program = kPrograms.find(name);
  if (program != kPrograms.end()) {
    const auto& [x64, fileName] = program->second;
    return PadProgram(ReadWholeFile((x64 ? sources.programsX64 : sources.programsX86) / fileName), file.size);
  }
  if (name == "marlin_usb.inf") return MakeInf(file.size);
  if (name == "marlin_usb.cat") return MakeCatalog(file.size);
  if (name == "Panorama.chm") return MakeHelpFile(file.size);
  if (name == "eula_de.txt") return MakeLicenceText(LicenceLanguage::kGerman, file.size);
  if (name == "eula_en.txt") return MakeLicenceText(LicenceLanguage::kEnglish, file.size);
  if (name == "kwa.bmp") return MakeWatermark(file.size);
  throw std::runtime_error("the sample payload has no such file");
}

}  // namespace

void MakeSamplePayload(const SampleSources& sources, const fs::path& output) {
  std::map<fs::path, std::set<std::string>> names = {{output / "a", {}}, {output / "b", {}}};
  std::map<fs::path, std::string> contentOf;
  for (const ContentsFile& file : ReadPayloadContents(sources.contents)) {
    const fs::path folder = output / (file.archive == 'A' ? "a" : "b");
    names[folder].insert(file.name);
    try {
      contentOf[folder / file.name] = MakeContent(file, sources);
    } catch (const std::runtime_error& error) {
      throw ToolFailure(file.name, error.what());
    }
  }
  for (const auto& [folder, kept] : names) PrepareFolder(folder, kept);
  for (const auto& [path, content] : contentOf) WriteIfDifferent(path, content);
}

}  // namespace kwa
