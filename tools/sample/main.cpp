// samplepayload: makes the 14 files of the sample payload, each of the size that the list of contents gives it and of
// the kind that its name promises. The same input makes the same bytes.
#include <CLI/CLI.hpp>
#include <cstdio>
#include <exception>
#include <filesystem>
#include <string>

#include "files/tool_failure.h"
#include "sample_payload.h"

namespace {

constexpr int kExitFailure = 1;
constexpr int kExitMisuse = 2;

int Run(int argc, char** argv) {
  CLI::App app("Makes the files of the sample payload in OUTPUT/a and OUTPUT/b.", "samplepayload");
  app.failure_message([](const CLI::App*, const CLI::Error& error) {
    return std::string("samplepayload: ") + error.what() + "; 'samplepayload --help' tells the usage\n";
  });
  kwa::SampleSources sources;
  std::filesystem::path output;
  app.add_option("--contents", sources.contents, "The list of contents (payload/contents.json)")->required();
  app.add_option("--files", sources.files, "Folder of the licence texts and the signer (tools/sample/files)")
      ->required();
  app.add_option("--programs-x86", sources.programsX86, "Folder of the built 32-bit programs")->required();
  app.add_option("--programs-x64", sources.programsX64, "Folder of the built 64-bit programs")->required();
  app.add_option("OUTPUT", output, "Folder to write to; other files in its a/ and b/ are removed")->required();
  try {
    app.parse(argc, argv);
  } catch (const CLI::ParseError& error) {
    return app.exit(error) == 0 ? 0 : kExitMisuse;
  }
  kwa::MakeSamplePayload(sources, output);
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
