// samplepayload: makes the 14 files of the sample payload, each of the size that the list of contents gives it and of
// the kind that its name promises. The same input makes the same bytes.
#include <CLI/CLI.hpp>
#include <cstdio>
#include <exception>
#include <filesystem>
#include <map>
#include <set>
#include <stdexcept>
#include <string>

#include "catalog.h"
#include "help_file.h"
#include "inf_text.h"
#include "licence_texts.h"
#include "padding.h"
#include "payload_contents.h"
#include "sample_folder.h"
#include "tool_failure.h"
#include "watermark.h"

namespace {

namespace fs = std::filesystem;

constexpr int kExitFailure = 1;
constexpr int kExitMisuse = 2;

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
std::string PadProgram(std::string program, std::size_t size) {
  kwa::RequireSize(program.size(), size);
  return program + kwa::PaddingBytes(size - program.size(), static_cast<unsigned>(size));
}

std::string MakeContent(const kwa::ContentsFile& file, const fs::path& x86, const fs::path& x64) {
  const std::string& name = file.name;
  const auto program = kPrograms.find(name);
  if (program != kPrograms.end()) {
    const ProgramSource& source = program->second;
    return PadProgram(kwa::ReadWholeFile((source.x64 ? x64 : x86) / source.fileName), file.size);
  }
  if (name == "marlin_usb.inf") return kwa::MakeInf(file.size);
  if (name == "marlin_usb.cat") return kwa::MakeCatalog(file.size);
  if (name == "Panorama.chm") return kwa::MakeHelpFile(file.size);
  if (name == "eula_de.txt") return kwa::MakeLicenceText(kwa::LicenceLanguage::kGerman, file.size);
  if (name == "eula_en.txt") return kwa::MakeLicenceText(kwa::LicenceLanguage::kEnglish, file.size);
  if (name == "kwa.bmp") return kwa::MakeWatermark(file.size);
  throw std::runtime_error("the sample payload has no such file");
}

// Makes everything before it writes anything: a list that cannot be met changes no file.
void MakePayload(const fs::path& contents, const fs::path& x86, const fs::path& x64, const fs::path& output) {
  std::map<fs::path, std::set<std::string>> names = {{output / "a", {}}, {output / "b", {}}};
  std::map<fs::path, std::string> contentOf;
  for (const kwa::ContentsFile& file : kwa::ReadPayloadContents(contents)) {
    const fs::path folder = output / (file.archive == 'A' ? "a" : "b");
    names[folder].insert(file.name);
    try {
      contentOf[folder / file.name] = MakeContent(file, x86, x64);
    } catch (const std::runtime_error& error) {
      throw kwa::ToolFailure(file.name, error.what());
    }
  }
  for (const auto& [folder, kept] : names) kwa::PrepareFolder(folder, kept);
  for (const auto& [path, content] : contentOf) kwa::WriteIfDifferent(path, content);
}

int Run(int argc, char** argv) {
  CLI::App app("Makes the files of the sample payload in OUTPUT/a and OUTPUT/b.", "samplepayload");
  app.failure_message([](const CLI::App*, const CLI::Error& error) {
    return std::string("samplepayload: ") + error.what() + "; 'samplepayload --help' tells the usage\n";
  });
  fs::path contents, x86, x64, output;
  app.add_option("--contents", contents, "The list of contents (payload/contents.json)")->required();
  app.add_option("--programs-x86", x86, "Folder of the built 32-bit programs")->required();
  app.add_option("--programs-x64", x64, "Folder of the built 64-bit programs")->required();
  app.add_option("OUTPUT", output, "Folder to write to; other files in its a/ and b/ are removed")->required();
  try {
    app.parse(argc, argv);
  } catch (const CLI::ParseError& error) {
    return app.exit(error) == 0 ? 0 : kExitMisuse;
  }
  MakePayload(contents, x86, x64, output);
  return 0;
}

}  // namespace

int main(int argc, char** argv) {
  try {
    return Run(argc, argv);
  } catch (const kwa::ToolFailure& failure) {
    for (const kwa::Fault& fault : failure.Faults()) {
      std::fprintf(stderr, "samplepayload: %s: %s\n", fault.file.c_str(), fault.what.c_str());
    }
  } catch (const std::exception& error) {
    std::fprintf(stderr, "samplepayload: %s\n", error.what());
  }
  return kExitFailure;
}
