#include "commands/commands.h"

#include <CLI/CLI.hpp>
#include <filesystem>
#include <iostream>
#include <memory>
#include <string>

#include "files/output_file.h"
#include "installer/preview.h"

namespace kwa {
namespace {

int RunConfiguration(const std::filesystem::path& header) {
  const std::string configuration = KnownConfiguration();
  if (header.empty()) {
    std::cout << configuration << '\n';
  } else {
    OutputFile output(header);
    output.Write("#define KWA_CONFIGURATION \"" + configuration + "\"\n");
    output.Commit();
  }
  return kExitInOrder;
}

}  // namespace

Command AddConfigurationCommand(CLI::App& program) {
  const auto header = std::make_shared<std::filesystem::path>();
  CLI::App* const configuration =
      program.add_subcommand("configuration", "Prints the digest of the wizard texts that this program knows");
  configuration->add_option("--header", *header, "Writes it into a C header for the installer's build instead");
  configuration->footer(
      "The build writes the digest into the installer's version record. 'list', 'preview' and\n"
      "'compare' compare it with their own.\n"
      "\n"
      "Example:\n"
      "  kwapayload configuration");
  return {configuration, [header] { return RunConfiguration(*header); }};
}

}  // namespace kwa
