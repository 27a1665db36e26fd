// samplepayload: makes the 14 files of the sample payload, each of the size that the list of contents gives it and of
// the kind that its name promises. The same input gives the same bytes.
#include <CLI/CLI.hpp>
#include <cstdio>
#include <exception>
#include <string>

#include "sample_payload.h"

namespace {

constexpr int kExitFailure = 1;
constexpr int kExitMisuse = 2;

int Run(int argc, char** argv) {
  CLI::App app("Makes the files of the sample payload in OUTPUT/a and OUTPUT/b.", "samplepayload");
  app.failure_message([](const CLI::App*, const CLI::Error& error) {
    return std::string("samplepayload: ") + error.what() + "; see 'samplepayload --help'\n";
  });
  kwa::SampleRequest request;
  app.option_defaults()->always_capture_default();
  app.add_option("--contents", request.contents, "The list of contents");
  app.add_option("--files", request.files, "Folder of the files to copy, and of the signer's key");
  app.add_option("--programs-x86", request.programsX86, "Folder of the built 32-bit programs");
  app.add_option("--programs-x64", request.programsX64, "Folder of the built 64-bit programs");
  app.add_flag("--next", request.isNextVersion,
               "Makes the next driver version, with OUTPUT/contents.json; OUTPUT must be new or empty");
  app.add_option("OUTPUT", request.output, "Folder to write to; removes other files from its a/ and b/")->required();
  app.footer(
      "The defaults are paths in the source tree after script/demo.\n"
      "\n"
      "Example:\n"
      "  build/samplepayload --next ../next");
  try {
    app.parse(argc, argv);
  } catch (const CLI::ParseError& error) {
    return app.exit(error) == 0 ? 0 : kExitMisuse;
  }
  kwa::MakeSamplePayload(request);
  return 0;
}

}  // namespace

int main(int argc, char** argv) {
  try {
    return Run(argc, argv);
  } catch (const std::exception& error) {
    std::fprintf(stderr, "samplepayload: %s\n", error.what());
  }
  return kExitFailure;
}
